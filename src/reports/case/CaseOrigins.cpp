#include "reports/case/CaseOrigins.h"

#include "base/Text.h"
#include "db/sql/SqliteErrors.h"
#include "reports/case/CaseRow.h"
#include "reports/case/CaseTables.h"
#include "reports/case/CaseText.h"
#include "reports/report/Html.h"
#include "views/explain/Explain.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace nv {

namespace {

constexpr std::string_view kCut = "\u2026"; ///< at the end of bytes that aren't shown whole
constexpr std::string_view kNotShown = "not shown: what is redacted could be in it";

/// Digests tell whoever guesses the value that the guess was right.
bool isDigest(std::string_view field) {
    constexpr std::array<std::string_view, 4> kDigests = {"HashedURL", "ThumbnailMD5Hash",
                                                          "ThumbnailBLOB", "etag"};
    return tellsContent(field) || std::ranges::find(kDigests, field) != kDigests.end();
}

/// Zeros are shown as signs of their own, which would part the letters of UTF-16.
std::string asStored(std::string_view shown) {
    return replaceAll(shown, "\u2400", std::string_view("\0", 1));
}

std::string headings() {
    std::string row = "<thead><tr>";
    for (const char *heading :
         {"Field", "Value", "Lies at", "As it lies", "Rule and zone", "Check"})
        row += fmt::format("<th scope=\"col\">{}</th>", heading);
    return row + "</tr></thead>\n<tbody>\n";
}

} // namespace

void CaseOrigins::choose(RowIds ids) {
    m_asked = ids.size();
    std::vector<std::pair<std::int64_t, std::int32_t>> byFile;
    byFile.reserve(ids.size());
    onProject([&] {
        SQLite::Statement row(m_ctx.rebuild.project,
                              "SELECT SourceFile_ID FROM URLs WHERE URL_ID = ?");
        for (const std::int32_t id : ids) {
            row.bind(1, id);
            if (row.executeStep())
                byFile.emplace_back(row.getColumn(0).getInt64(), id);
            row.reset();
        }
    });
    std::ranges::sort(byFile);
    byFile.resize(std::min(byFile.size(), kMostCaseOrigins));
    m_ids.reserve(byFile.size());
    for (const auto &[file, id] : byFile) {
        m_places.emplace(id, m_ids.size());
        m_ids.push_back(id);
    }
}

std::string CaseOrigins::placeOf(UrlId id) const {
    const auto found = m_places.find(static_cast<std::int32_t>(number(id)));
    return found == m_places.end()
               ? std::string()
               : fmt::format("{}#o{}", m_section.page(found->second / m_section.rowsAPage + 1), id);
}

bool CaseOrigins::write(const std::filesystem::path &folder, TaskMonitor &task) {
    const RebuildContext &rebuild = m_ctx.rebuild;
    Explainer explainer({rebuild.project, rebuild.records, rebuild.evidence, rebuild.tempFolderPath,
                         m_ctx.gmtZone, m_ctx.settings.dates, rebuild.log});
    for (std::size_t at = 0; at < m_ids.size(); ++at) {
        if (!task.advance(static_cast<double>(at) / static_cast<double>(m_ids.size())))
            return false;
        if (at % m_section.rowsAPage == 0)
            begin(folder, at / m_section.rowsAPage + 1);
        const UrlId id{m_ids[at]};
        if (isWithheld(id)) {
            m_page << fmt::format("<section data-r id=\"o{0}\"><h2>Row {0}</h2>\n<p class=\"note\">"
                                  "Not told: the host or the picture of this row is redacted.</p>"
                                  "</section>\n",
                                  id);
        } else if (const auto origin = onProject([&] { return explainer.explain(id); })) {
            writeRow(*origin);
        }
        if (at + 1 == m_ids.size() || (at + 1) % m_section.rowsAPage == 0)
            end(at / m_section.rowsAPage + 1);
    }
    return true;
}

void CaseOrigins::begin(const std::filesystem::path &folder, std::size_t number) {
    m_path = folder / m_section.page(number);
    m_page.open(m_path, std::ios::binary | std::ios::trunc);
    m_frame.writeHead(m_page, m_section.page(number), m_section.title);
    m_page << m_frame.pager(m_section, number) << findLine()
           << "<p class=\"dim\">Where the values of rows come from: the place in the evidence, the "
              "bytes as they lie there, and the rule that makes the value. \"same\": the evidence "
              "was read again for this report and gives it.</p>\n";
    if (m_asked > m_ids.size())
        m_page << fmt::format("<p class=\"dim\">The first {} of {} rows are told, in the order of "
                              "their files.</p>\n",
                              grouped(m_ids.size()), grouped(m_asked));
}

void CaseOrigins::end(std::size_t number) {
    m_page << m_frame.pager(m_section, number);
    m_frame.writeTail(m_page);
    checkWritten(m_page, m_path);
    m_page.close();
}

/// What such a row is about isn't told by its card either.
bool CaseOrigins::isWithheld(UrlId id) {
    if (!m_redactor.isOn())
        return false;
    const auto record = m_ctx.rebuild.records.getURL(id);
    return !record || m_redactor.pictureOf(id) || m_redactor.isOfHost(hostOf(*record));
}

/// As texts of rows are, and not at all when a coded form of a word stands in it.
std::string CaseOrigins::safe(const std::string &text) {
    if (!m_redactor.isOn())
        return text;
    std::string plain = m_redactor.text(text);
    if (!m_redactor.holdsCoded(asStored(text)) && !m_redactor.holds(asStored(plain)))
        return plain;
    ++m_redactor.counts.placesBlurred;
    return std::string(kRedacted);
}

/// Of bytes that are cut nobody can tell whether they end amid a word.
std::string CaseOrigins::safeBytes(const ValueOrigin &value, bool isRedacted) {
    if (!m_redactor.isOn() || value.stored.empty())
        return caseText(value.stored);
    if (isRedacted)
        return htmlText(kRedacted);
    return value.stored.ends_with(kCut) ? htmlText(kNotShown) : caseText(safe(value.stored));
}

std::string CaseOrigins::valueRow(const ValueOrigin &value) {
    if (m_redactor.isOn() && isDigest(value.field))
        return {};
    const std::string shown = safe(value.value);
    const std::string place = safe(value.place);
    std::string rule = safe(value.rule);
    if (!value.zone.empty())
        rule += (rule.empty() ? "" : "; ") + safe(value.zone);
    std::string check(checkWord(value.check));
    if (!value.note.empty())
        check += ": " + safe(value.note);
    return "<tr>" + caseCell("Field", caseText(safe(value.field))) +
           caseCell("Value", "<bdi>" + caseText(shown) + "</bdi>") +
           caseCell("Lies at", caseText(place)) +
           caseCell("As it lies", safeBytes(value, shown != value.value), "hash") +
           caseCell("Rule", caseText(rule)) + caseCell("Check", caseText(check)) + "</tr>\n";
}

void CaseOrigins::writeRow(const RecordOrigin &origin) {
    m_page << fmt::format("<section data-r id=\"o{0}\"><h2>Row {0}</h2>\n<dl>\n", origin.id);
    RecordOrigin told = origin;
    if (m_redactor.isOn()) // a digest of a file that holds nothing but the content
        told.further.clear();
    for (const auto &[name, words] : linesOf(told))
        m_page << caseField(name, caseText(safe(words)));
    m_page << "</dl>\n<div class=\"wide\"><table class=\"origin\">" << headings();
    // What the evidence says comes before what the program made.
    std::stable_partition(told.values.begin(), told.values.end(), [](const ValueOrigin &value) {
        return value.check != OriginCheck::derived && value.check != OriginCheck::examiner;
    });
    for (const ValueOrigin &value : told.values)
        m_page << valueRow(value);
    m_page << "</tbody></table></div>\n</section>\n";
}

} // namespace nv
