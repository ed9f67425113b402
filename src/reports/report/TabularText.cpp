#include "reports/report/TabularText.h"

#include "base/Text.h"
#include "db/marks/RecordTags.h"
#include "db/sql/SqliteErrors.h"
#include "readers/RecordKind.h"
#include "reports/report/Html.h"
#include "reports/report/ReportValues.h"

#include <fmt/format.h>

namespace nv {

namespace {

std::string cell(std::string_view html) {
    return fmt::format("<td valign='top'>{}</td>", html.empty() ? "&nbsp;" : html);
}

std::string typeCell(const UrlRecord &record) {
    const BrowserFamily *family = familyOf(record.cacheType);
    if (!family)
        return cell("");
    const RecordKind *kind = recordKind(record.cacheType);
    return cell(fmt::format("<img src='images/{0}' alt='{1}' title='{1}'>", family->image,
                            kind && !kind->title.empty() ? kind->title : family->title));
}

std::string dateCell(const UrlRecord &record, const ReportContext &ctx) {
    const ZoneDate date = actionDate(record, ctx);
    if (date.text.empty())
        return cell("");
    return cell(fmt::format("<font color='{}'>{}</font> [<font style='color:#C00000;'>{}</font> "
                            "{}]",
                            dateColour(record), htmlText(date.text), date.bias, date.daylight));
}

/// A line of its own below the address; none without tags.
std::string tagsLine(UrlId id, const ReportContext &ctx) {
    const std::string names =
        onProject([&] { return namesOf(RowTagReader(ctx.rebuild.project).of(id)); });
    return names.empty() ? "" : fmt::format("<br><strong>Tags:</strong> {}", htmlText(names));
}

std::string addressCell(const ReportWriter &report, const std::string &tags) {
    const std::string text = htmlText(report.originalURL);
    const std::string width =
        report.urlColWidth > 0 ? fmt::format(" width='{}'", report.urlColWidth) : "";
    const std::string link = isLink(report.originalURL)
                                 ? fmt::format("<a href='{}' target='_new'>{}</a>",
                                               htmlAddress(report.originalURL), text)
                                 : text;
    return fmt::format("<td valign='top'{} style='overflow-wrap:anywhere;'>{}{}</td>", width,
                       link.empty() ? "&nbsp;" : link, tags);
}

} // namespace

std::string tabularHead(const ReportWriter &report) {
    std::string text = "   <table border='1' cellspacing='0' cellpadding='3' style='font-family:"
                       "Tahoma,sans-serif;font-size:11px;border-collapse:collapse;'>\r\n   <tr "
                       "bgcolor='#E0E0E0'>";
    const auto head = [&text](std::string_view label) {
        text += fmt::format("<td><strong>{}</strong></td>", label);
    };
    for (const std::string_view label : {"&nbsp;", "Index", "URL_ID", "Type", "Visits"})
        head(label);
    if (report.includeDataSource)
        head("Data Source");
    head("Last Visited [Local]");
    if (report.includeUser)
        head("User");
    head("Universal Resource Locator (URL)");
    return text + "</tr>";
}

std::string tabularRow(const ReportWriter &report, const UrlRecord &record,
                       const ReportContext &ctx) {
    std::string text =
        fmt::format("   <tr><td><input type='checkbox' name='box{}'></td>", report.recordIndex) +
        cell(std::to_string(report.recordIndex)) + cell(fmt::format("{}", record.URLID)) +
        typeCell(record) + cell(report.visits);
    if (report.includeDataSource)
        text += cell(htmlText(record.cacheType));
    text += dateCell(record, ctx);
    if (report.includeUser)
        text += cell(htmlText(report.user));
    return text + addressCell(report, tagsLine(record.URLID, ctx)) + "</tr>";
}

std::string brokenRow(UrlId id, std::size_t index) {
    return fmt::format("   <tr><td>&nbsp;</td><td>{}</td><td>{}</td><td colspan='6'><font "
                       "color='red'>this record could not be written; the log of the program says "
                       "why.</font></td></tr>",
                       index, id);
}

} // namespace nv
