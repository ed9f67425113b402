#include "reports/case/CaseTables.h"

#include "base/Storage.h"
#include "base/Text.h"
#include "base/TextRows.h"
#include "reports/case/CaseText.h"
#include "reports/exports/ExportWriter.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <utility>
#include <vector>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// Rows that a browser lays out together once they come into view.
constexpr std::size_t kChunk = 250;

constexpr std::string_view kHeadings =
    "<thead><tr><th class=\"w1\" scope=\"col\">Row</th><th class=\"w2\" scope=\"col\">Date</th>"
    "<th class=\"w3\" scope=\"col\">Kind</th><th scope=\"col\">Title and address</th>"
    "<th class=\"w5\" scope=\"col\">Whose</th><th class=\"w6\" scope=\"col\">Visits</th></tr>"
    "</thead>\n<tbody>\n";

constexpr std::array<std::string_view, 24> kColumns = {
    "id",      "ticked",      "date_utc",      "date_local", "kind",    "group",
    "action",  "url",         "host",          "title",      "browser", "profile",
    "person",  "user",        "visits",        "referrer",   "status",  "cache_file",
    "rebuilt", "source_file", "source_offset", "notes",      "tags",    "tag_notes"};

/// A list is opened in a spreadsheet by a click: none of its cells may be a formula there.
std::string cellOf(std::string_view value) {
    std::string text = decodeText(value);
    return looksLikeFormula(text) ? "'" + text : text;
}

/// Of tags without a note nothing stands among the notes.
std::string tagsIn(const CaseRow &row, std::string CaseTag::*part) {
    std::string text;
    for (const CaseTag &tag : row.tags)
        if (!(tag.*part).empty())
            text += (text.empty() ? "" : ", ") + tag.*part;
    return text;
}

std::string listLine(const CaseRow &row) {
    const std::array<std::string, kColumns.size()> cells = {std::to_string(number(row.id)),
                                                            row.ticked ? "True" : "False",
                                                            row.utc,
                                                            cellOf(row.local),
                                                            cellOf(row.kind),
                                                            std::string(groupWord(row.group)),
                                                            cellOf(row.action),
                                                            cellOf(row.address),
                                                            cellOf(row.host),
                                                            cellOf(row.title),
                                                            cellOf(row.browser),
                                                            cellOf(row.profile),
                                                            cellOf(row.person),
                                                            cellOf(row.user),
                                                            row.visits,
                                                            cellOf(row.referrer),
                                                            cellOf(row.status),
                                                            cellOf(row.cacheFile),
                                                            cellOf(row.rebuilt),
                                                            cellOf(row.source),
                                                            row.sourceOffset,
                                                            cellOf(row.notes),
                                                            cellOf(tagsIn(row, &CaseTag::name)),
                                                            cellOf(tagsIn(row, &CaseTag::note))};
    return csvLine(cells);
}

std::string whatOf(const CaseRow &row) {
    std::string what;
    if (!row.title.empty())
        what = fmt::format("<bdi>{}</bdi><br>", caseText(row.title));
    what += caseAddress(row.address);
    what += caseTags(row);
    if (!row.notes.empty())
        what += fmt::format("<br><i>{}</i>", caseText(row.notes));
    return what;
}

} // namespace

std::string caseTags(const CaseRow &row) {
    std::string text;
    for (const CaseTag &tag : row.tags)
        text +=
            fmt::format("<li>{}<bdi>{}</bdi>{}</li>\n", caseSwatch(tag.color), caseText(tag.name),
                        tag.note.empty() ? std::string()
                                         : fmt::format(" <span class=\"dim\"><bdi>{}</bdi>"
                                                       "</span>",
                                                       caseText(tag.note)));
    return text.empty() ? text : fmt::format("<ul class=\"tags\">\n{}</ul>\n", text);
}

void checkWritten(std::ostream &file, const fs::path &path) {
    errno = 0;
    if (!file.flush())
        failStorage("cannot write the report", path, errno == 0 ? ENOSPC : errno);
}

CaseTable::CaseTable(const CaseFrame &frame, const CaseSection &section, const fs::path &folder)
    : m_frame(frame), m_section(section), m_folder(folder),
      m_list(folder / section.list(), std::ios::binary | std::ios::trunc) {
    const std::vector<std::string> headings(kColumns.begin(), kColumns.end());
    m_list << csvLine(headings);
}

void CaseTable::begin() {
    m_path = m_folder / m_section.page(++m_number);
    m_page.open(m_path, std::ios::binary | std::ios::trunc);
    m_frame.writeHead(m_page, m_section.page(m_number), m_section.title);
    m_page << m_frame.pager(m_section, m_number) << findLine()
           << fmt::format("<p class=\"dim\">{} {}; all of them as a list: <a href=\"{}\">{}</a>. "
                          "Dates are in the zone of the case and, below, in UTC.</p>\n",
                          grouped(m_section.rows), m_section.rows == 1 ? "row" : "rows",
                          m_section.list(), m_section.list());
    m_rows = 0;
}

void CaseTable::beginRow() {
    if (m_number == 0 || m_rows == m_section.rowsAPage) {
        endPage();
        begin();
    }
    if (m_rows % kChunk == 0)
        m_page << (m_rows > 0 ? "</tbody></table></div>\n" : "") << "<div class=\"chunk\"><table>"
               << kHeadings;
    ++m_rows;
}

void CaseTable::add(const CaseRow &row) {
    beginRow();
    std::string dates = fmt::format("<span class=\"n\">{}</span>", caseText(row.local));
    if (!row.utc.empty())
        dates += fmt::format("<br><span class=\"n dim\">{}</span>", row.utc);
    m_page << "<tr data-r>" << caseCell("Row", fmt::format("{}{}", row.id, row.ticked ? " ✓" : ""))
           << caseCell("Date", row.local.empty() && row.utc.empty() ? "" : dates)
           << caseCell("Kind", caseText(row.kind)) << caseCell("", whatOf(row))
           << caseCell("Whose", caseText(row.who())) << caseCell("Visits", row.visits, "num")
           << "</tr>\n";
    m_list << listLine(row);
}

void CaseTable::addBroken(UrlId id) {
    beginRow();
    m_page << fmt::format("<tr data-r><td data-h=\"Row\">{}</td><td class=\"warn\" colspan=\"5\">"
                          "This record could not be read; the log of the program says why.</td>"
                          "</tr>\n",
                          id);
    std::vector<std::string> cells(kColumns.size());
    cells.front() = std::to_string(number(id));
    cells.back() = "could not be read";
    m_list << csvLine(cells);
}

void CaseTable::endPage() {
    if (m_number == 0)
        return;
    m_page << "</tbody></table></div>\n" << m_frame.pager(m_section, m_number);
    m_frame.writeTail(m_page);
    checkWritten(m_page, m_path);
    m_page.close();
}

void CaseTable::finish() {
    endPage();
    checkWritten(m_list, m_folder / m_section.list());
    m_list.close();
}

} // namespace nv
