#include "reports/report/CardText.h"

#include "base/Text.h"
#include "readers/RecordKind.h"
#include "rebuild/LocalNames.h"
#include "rebuild/RebuildMethod.h"
#include "reports/report/Html.h"
#include "reports/report/ReportValues.h"

#include <fmt/format.h>

namespace nv {

namespace {

constexpr std::string_view kLabelCell =
    "             <td width='150' valign='top' style='font-size:11px;'>";
constexpr std::string_view kValueCell =
    "<td valign='top' style='font-size:11px;overflow-wrap:anywhere;'>";
constexpr std::string_view kDivider =
    "   <td height='100' valign='middle' width='1' bgcolor='#c0c0c0'></td>\r\n";

/// `value` is HTML.
std::string row(std::string_view label, std::string_view value) {
    return fmt::format("          <tr>\r\n{}<strong>{}</strong></td>\r\n             {}{}</td>\r\n"
                       "          </tr>\r\n",
                       kLabelCell, label, kValueCell, value);
}

std::string picture(const ReportCard &card, const ReportWriter &report) {
    const std::string_view text = card.record.IsHistory
                                      ? "This is a HISTORY record. No file to display."
                                      : "Click to display a full size version of the file.";
    const std::string image =
        fmt::format("<img src='{}' width='{}' alt='{}' border='2' style='border-color: #000080;'>",
                    report.imageRelativePath, card.width, text);
    // Without a local copy there is nowhere to go to.
    return report.href.empty()
               ? image
               : fmt::format("<a href='{}' target='_new'>{}</a>", report.href, image);
}

std::string leftCell(const ReportCard &card, const ReportWriter &report) {
    return fmt::format(
        "   <td width='240' align='center' valign='middle' style='font-size:11px;padding:6px;'>"
        "{}<br>URL ID #{}</td>\r\n",
        picture(card, report), card.record.URLID);
}

std::string rebuiltRow(const UrlRecord &record, const ReportWriter &report) {
    if (!report.includeTimeRebuilt)
        return {};
    const bool isExact = shownMethod(record) == RebuildMethod::exact;
    const char *const method = isRebuiltExactly(record) ? " (exact method)"
                               : isExact                ? " (template of the exact method)"
                                                        : "";
    return row("Time Rebuilt:", report.rebuiltDateTime.empty()
                                    ? "Not rebuilt (default)"
                                    : htmlText(report.rebuiltDateTime + method));
}

std::string dateRows(const UrlRecord &record, const ReportContext &ctx) {
    const ZoneDate date = actionDate(record, ctx);
    const std::string value =
        date.text.empty() ? "&nbsp;"
                          : fmt::format("<font color='{}'>{}</font> [{} {}]", dateColour(record),
                                        htmlText(date.text), date.bias, date.daylight);
    const std::string label =
        isWeekly(record) ? fmt::format("          <tr>\r\n             <td width='150' "
                                       "valign='top' style='font-size:11px;color:{};'>\r\n"
                                       "             <strong>Action Date [Local]:</strong><br>"
                                       "<font style='font-size:8pt'>(see <i>WEEKLY</i> info at "
                                       "bottom)</font></td>\r\n",
                                       kWeeklyColour)
                         : fmt::format("          <tr>\r\n             <td width='150' "
                                       "valign='top' style='font-size:11px;color:{};'>"
                                       "<strong>Action Date [Local]:</strong></td>\r\n",
                                       kZoneColour);
    const std::string utc = htmlText(utcCell(record.ActionDateUTC, ctx.settings.dates));
    return fmt::format("{}             {}{}</td>\r\n          </tr>\r\n", label, kValueCell,
                       value) +
           row("<font color='#000080'>Action Date [UTC]:</font>",
               utc.empty() ? "&nbsp;" : utc + " UTC");
}

/// Kinds of history have no browser of their own in the table of names: the record's kind is added.
std::string sourceRow(const UrlRecord &record, const ReportWriter &report) {
    std::string value = report.browser + " Version " + htmlText(record.HistoryVersion);
    if (groupOf(record.cacheType) != RecordGroup::cache)
        value += fmt::format(" ({})", htmlText(record.cacheType));
    return row("Data Source:", value);
}

std::string addressRow(const ReportWriter &report) {
    const std::string text = htmlText(report.originalURL);
    if (!isLink(report.originalURL))
        return row("Original URL:", text);
    return row("Original URL:",
               fmt::format("<a href='{}' target='_new' title='Click to go to this URL now'>{}</a>",
                           htmlAddress(report.originalURL), text));
}

std::string fileRow(const ReportCard &card, const ReportWriter &report) {
    const std::string_view changed =
        card.isChanged ? " <font color='#C00000'><strong>The content is NOT what was imported: its "
                         "SHA-256 is another one.</strong></font>"
                       : "";
    if (report.href.empty())
        return row("Local Evidence File:", fmt::format("{}{}", card.absence, changed));
    return row("Local Evidence File:",
               fmt::format("<a href='{0}' target='_new'>{0}</a>{1}{2}", report.href,
                           card.incomplete ? " Not all parts of the rebuilt page could be brought; "
                                             "the log of the program says why."
                                           : "",
                           changed));
}

std::string facts(const ReportCard &card, const ReportWriter &report, const ReportContext &ctx) {
    const auto orBlank = [](std::string_view value) {
        return value.empty() ? std::string("&nbsp;") : htmlText(value);
    };
    return "   <td valign='top' style='padding:4px;'>\r\n       <table name='TABLE2' width='100%' "
           "border='0' "
           "cellspacing='0' cellpadding='2'>\r\n" +
           row("Title:", orBlank(report.pageTitle)) +
           row("Cache File Name:", orBlank(report.pageFileName)) +
           row("Parent Folder:", orBlank(report.pageParentFolderName)) +
           row("User:", orBlank(report.user)) + row("Visits:", orBlank(report.visits)) +
           rebuiltRow(card.record, report) + row("Action:", orBlank(card.record.Action)) +
           dateRows(card.record, ctx) + sourceRow(card.record, report) + addressRow(report) +
           fileRow(card, report) + "       </table>\r\n   </td>\r\n";
}

} // namespace

std::string cardText(const ReportWriter &report, const ReportCard &card, const ReportContext &ctx) {
    std::string text = "<table width='760' border='0' cellspacing='0' cellpadding='0' "
                       "style='font-family:Tahoma,sans-serif;border-bottom:1px solid #c0c0c0;"
                       "page-break-inside:avoid;'>\r\n<tr>\r\n" +
                       leftCell(card, report) + std::string(kDivider) + facts(card, report, ctx) +
                       "</tr>\r\n";
    if (report.includeLinkAnalysis)
        text += linkSection(card, ctx);
    text += tagsSection(card, report.includeNotes, ctx);
    if (report.includeNotes)
        text += notesSection(card);
    if (report.includeAudit)
        text += auditSection(card, report.reportFolderPath, ctx);
    return text + "</table>";
}

std::string brokenCard(UrlId id) {
    return fmt::format("<table width='760' style='font-family:Tahoma,sans-serif;font-size:11px;'>"
                       "<tr><td>URL ID #{}: <font color='red'>this record could not be written; "
                       "the log of the program says why.</font></td></tr></table>",
                       id);
}

} // namespace nv
