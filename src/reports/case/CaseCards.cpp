#include "reports/case/CaseCards.h"

#include "base/Succeeds.h"
#include "base/Text.h"
#include "reports/case/CaseTables.h"
#include "reports/case/CaseText.h"
#include "reports/report/Html.h"

#include <fmt/format.h>

#include <vector>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ReportClass.CreateCaseReport()";
constexpr std::size_t kMostFacts = 60; ///< on a card

/// The picture, leading to the file beside it. Empty where there is nothing to see.
std::string figureOf(const ReportCard &card) {
    if (card.thumbnail.empty())
        return {};
    const bool isBlurred = card.thumbnail.ends_with("-blurred.jpg");
    const std::string image =
        fmt::format("<img src=\"{}\" alt=\"{}\"{} loading=\"lazy\">", htmlAddress(card.thumbnail),
                    isBlurred ? "Blurred picture" : "Picture of the content",
                    isBlurred ? " class=\"blurred\"" : "");
    return fmt::format("<figure>{}<figcaption>{}</figcaption></figure>\n",
                       card.target.empty()
                           ? image
                           : fmt::format("<a href=\"{}\">{}</a>", htmlAddress(card.target), image),
                       isBlurred ? "Blurred" : "");
}

std::string contentOf(const ReportCard &card) {
    std::string text = htmlText(card.absence);
    if (!card.target.empty())
        text = fmt::format("<a href=\"{0}\">{0}</a>", htmlAddress(card.target));
    if (card.incomplete)
        text += " <span class=\"warn\">Not all parts of the page could be brought.</span>";
    if (card.isChanged)
        text += " <span class=\"warn\">The content is NOT what was imported: its SHA-256 is "
                "another one.</span>";
    return text;
}

std::string factsOf(const CaseRow &row) {
    std::string text;
    std::size_t shown = 0;
    for (const auto &[name, value] : row.facts) {
        if (++shown > kMostFacts) {
            text += caseField("", fmt::format("<span class=\"dim\">and {} more</span>",
                                              row.facts.size() - kMostFacts));
            break;
        }
        text += caseField(name, caseText(value));
    }
    return text.empty() ? text
                        : fmt::format("<details><summary>All that the record tells ({})</summary>"
                                      "<dl>\n{}</dl></details>\n",
                                      row.facts.size(), text);
}

std::string fieldsOf(const CaseRow &row, const ReportCard &card) {
    return "<dl>\n" + caseField("Address", caseAddress(row.address)) +
           caseField("Date", caseText(row.local)) + caseField("Date in UTC", row.utc) +
           caseField("Kind",
                     caseText(row.action.empty() ? row.kind : row.kind + ", " + row.action)) +
           caseField("Whose", caseText(row.who())) + caseField("Visits", row.visits) +
           caseField("Led here from", caseAddress(row.referrer)) +
           caseField("Status", caseText(row.status)) +
           caseField("Source", row.source.empty()
                                   ? ""
                                   : fmt::format("<span class=\"hash\">{}</span>{}",
                                                 caseText(row.source), caseText(row.place))) +
           caseField("Cached file", caseText(row.cacheFile)) +
           caseField("Rebuilt", caseText(row.rebuilt)) + caseField("Content", contentOf(card)) +
           "</dl>\n";
}

} // namespace

CaseCardPages::CaseCardPages(const ReportContext &ctx, const ReportFolder &folder,
                             const CaseFrame &frame, const CaseSection &section, Redactor &redactor)
    : rows(ctx, redactor), m_ctx(ctx), m_folder(folder), m_frame(frame), m_section(section),
      m_evidence(ctx, folder), m_redacted(ctx, folder, redactor) {}

ReportCard CaseCardPages::bring(UrlId id, std::size_t place, TaskMonitor &task) {
    ReportCard card;
    auto record = m_ctx.rebuild.records.getURL(id);
    if (!record)
        return card;
    card.record = std::move(*record);
    const bool isBrought =
        succeeds(m_ctx.rebuild.log, Severity::Serious, kProcedure, kContactSupport, [&] {
            m_evidence.bring(card, place, task);
            m_redacted.redact(card);
        });
    if (!isBrought) {
        // What was brought so far may hold what is redacted.
        std::error_code none;
        std::filesystem::remove_all(m_folder.path / (rowNameOf(id) + ".NVR"), none);
        if (!card.target.empty())
            std::filesystem::remove(m_folder.path / card.target, none);
        card.target.clear();
        card.thumbnail.clear();
        card.drawing.reset();
        card.absence = "The cached file could not be read; the log of the program says why.";
        ++failures.files;
    }
    failures.files += card.isGone ? 1 : 0;
    failures.pagesIncomplete += card.incomplete ? 1 : 0;
    if (card.isChanged)
        noteUnread(failures.changed, id);
    return card;
}

bool CaseCardPages::add(std::span<const std::int32_t> ids, TaskMonitor &task) {
    std::vector<ReportCard> cards;
    cards.reserve(ids.size());
    for (const std::int32_t id : ids) {
        if (!task.advance(static_cast<double>(cards.size()) / static_cast<double>(ids.size())))
            return false;
        cards.push_back(bring(UrlId{id}, cards.size(), task));
        for (std::string *text : {&cards.back().record.RebuiltSourceCode,
                                  &cards.back().record.HTMLBody, &cards.back().record.Links})
            std::string().swap(*text);
        Bytes().swap(cards.back().record.CacheFileRebuiltBLOB);
        Bytes().swap(cards.back().record.ThumbnailBLOB);
    }
    SubTask drawing(task, 1, 1);
    if (!succeeds(m_ctx.rebuild.log, Severity::Serious, kProcedure, kContactSupport,
                  [&] { m_evidence.draw(cards, drawing); }))
        ++failures.files;
    for (std::size_t at = 0; at < cards.size(); ++at)
        write(cards[at], UrlId{ids[at]});
    checkWritten(m_page, m_path);
    return task.advance(1);
}

void CaseCardPages::write(ReportCard &card, UrlId id) {
    m_redacted.settle(card);
    beginCard();
    if (card.record.URLID != id) {
        noteUnread(failures.rows, id);
        m_page << fmt::format("<article class=\"card bare\" data-r><p class=\"warn\">Row {}: this "
                              "record could not be read; the log of the program says why.</p>"
                              "</article>\n",
                              id);
        return;
    }
    const CaseRow row = rows.rowOf(card.record, RowFacts::with);
    const std::string figure = figureOf(card);
    m_page << fmt::format("<article class=\"card{}\" data-r id=\"r{}\">\n",
                          figure.empty() ? " bare" : "", id)
           << figure << "<div>\n<h3><bdi>"
           << (row.title.empty() ? fmt::format("Row {}", id) : caseText(row.title))
           << fmt::format("</bdi></h3>\n<p class=\"dim\">Row {}{}</p>\n", id,
                          row.ticked ? ", ticked" : "")
           << caseTags(row);
    if (!row.notes.empty())
        m_page << "<div class=\"note\">" << htmlLines(row.notes) << "</div>\n";
    m_page << fieldsOf(row, card) << factsOf(row);
    if (const std::string target = originOf ? originOf(id) : std::string(); !target.empty())
        m_page << fmt::format("<p><a href=\"{}\">How each value is known</a></p>\n", target);
    m_page << "</div>\n</article>\n";
}

void CaseCardPages::beginCard() {
    if (m_number == 0 || m_cards == m_section.rowsAPage) {
        endPage();
        m_path = m_folder.path / m_section.page(++m_number);
        m_page.open(m_path, std::ios::binary | std::ios::trunc);
        m_frame.writeHead(m_page, m_section.page(m_number), m_section.title);
        m_page << m_frame.pager(m_section, m_number) << findLine();
        m_cards = 0;
    }
    ++m_cards;
}

void CaseCardPages::endPage() {
    if (m_number == 0)
        return;
    m_page << m_frame.pager(m_section, m_number);
    m_frame.writeTail(m_page);
    checkWritten(m_page, m_path);
    m_page.close();
}

void CaseCardPages::finish() {
    endPage();
}

} // namespace nv
