// Head and tail of a report's page.
#include "base/Succeeds.h"
#include "reports/Html.h"
#include "reports/ReportWriter.h"
#include "time/ExactZone.h"

#include <fmt/format.h>

namespace nv {

namespace {

// Nothing but the report's own pictures is fetched, and no name is asked for before a link is
// followed. It stands in front of the head, whose text is laid down.
constexpr std::string_view kPolicy =
    R"(<meta http-equiv='Content-Type' content='text/html; charset=utf-8'>)"
    "\r\n"
    R"(<meta http-equiv='Content-Security-Policy' content="default-src 'none'; img-src 'self'; )"
    R"(style-src 'unsafe-inline'; base-uri 'none'; form-action 'none'">)"
    "\r\n"
    R"(<meta http-equiv='x-dns-prefetch-control' content='off'>)"
    R"(<meta name='referrer' content='no-referrer'>)";

constexpr std::string_view kBlock =
    "<div style='font-family:Tahoma,sans-serif;font-size:18px;width:760px;'>";

} // namespace

void ReportWriter::createHeader(std::ostream &file) {
    headerFailed = !succeeds(
        m_ctx.rebuild.log, Severity::Serious, "ReportClass.CreateHeader()",
        "Error Creating Report Header", [&] {
            printEntry(file, "<!DOCTYPE HTML PUBLIC '-//W3C//DTD HTML 4.0 Transitional//EN'>");
            printEntry(file, "<html>");
            printEntry(file, kPolicy);
            printEntry(file, "   <head><title>Norvelane 2.0 Internet Cache and History Analysis "
                             "Report</title></head>");
            printEntry(file, "<body style='margin-top:10px;margin-bottom:10px;margin-left:10px;"
                             "margin-right:10px;' bgcolor='white'>");
            printEntry(file, "<!-- report table -->");
            printEntry(file, kBlock);
            printEntry(file,
                       fmt::format("<strong><font color='#000066'>{}</font></strong></div>",
                                   reportTitle.empty()
                                       ? "Norvelane Internet Cache &amp; History Analysis Report"
                                       : htmlText(reportTitle)));
            printEntry(file, customerOptions());
            printEntry(file, zoneNote());
        });
}

std::string ReportWriter::customerOptions() {
    const std::string date =
        fmt::format("<strong>Report Date:</strong>&nbsp;&nbsp;{}", htmlText(reportDate));
    if (skipHeader)
        return fmt::format("<div style='font-family:Tahoma,sans-serif;font-size:10px;'>{}</div>",
                           date);
    return fmt::format(
        "<!-- customer options -->\r\n<table width='760' border='0' cellspacing='0' "
        "cellpadding='4' style='font-family:Tahoma,sans-serif;font-size:12px;'>\r\n<tr>"
        "<td valign='top'>{}<br>\r\n<strong>Report Prepared By: </strong>&nbsp;{}<br>\r\n"
        "<strong>Organization: </strong>&nbsp;{}<br>\r\n<strong>Case Number: </strong>&nbsp;{}"
        "</td>\r\n<td align='right' valign='top'><img src='{}' alt='' "
        "style='max-width:240px;max-height:120px;'></td></tr>\r\n</table>",
        date, htmlText(reportedBy), htmlText(organization), htmlText(caseNumber), logo());
}

std::string ReportWriter::ownPicture(const std::filesystem::path &picture,
                                     const std::string &name) {
    const std::string own = m_folder.takePicture(picture, name, m_ctx.rebuild.log);
    if (own.empty())
        picturesFailed.insert(picture);
    return own;
}

std::string ReportWriter::logo() {
    std::string own;
    if (useCustomLogo && !agencyLogoPath.empty())
        own = ownPicture(agencyLogoPath, "agency-logo");
    return own.empty() ? "images/norvelane-logo.png" : own;
}

std::string ReportWriter::zoneNote() const {
    const TimeZone &zone = m_ctx.gmtZone;
    std::string note = fmt::format(
        "<div style='font-family:Tahoma,sans-serif;font-size:10px;width:760px;'>Results are "
        "displayed in Coordinated Universal Time (UTC).<br>\r\nThe active time bias is set to: "
        "{} {}",
        htmlText(zone.tzBiasAsText), htmlText(zone.daylightCode));
    if (zone.tzName != "DEFAULT")
        note += fmt::format("<br>\r\nTime Zone Setting: {}", htmlText(zone.tzName));
    if (zone.exact)
        note += fmt::format(" (the law of each date, by the time zone database of version {})",
                            htmlText(zone.exact->version()));
    return note + "</div>";
}

void ReportWriter::createFooter(std::ostream &file) {
    footerFailed = !succeeds(
        m_ctx.rebuild.log, Severity::Serious, "ReportClass.CreateFooter()",
        "Error Creating Report Footer", [&] {
            printEntry(file, "<br><br>");
            printEntry(file,
                       fmt::format(
                           "<table width='760' bgcolor='#E0E0E0' style='font-family:Tahoma,"
                           "sans-serif;font-size:10px;'><tr><td>Report created using Norvelene<SUP>"
                           "<FONT style='font-size: 8pt;'>&reg;</FONT></SUP> Version {}</td></tr>"
                           "</table>",
                           m_ctx.settings.version));
            printEntry(file, "</body>");
            printEntry(file, "</html>");
        });
}

} // namespace nv
