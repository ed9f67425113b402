#include "reports/report/ReportFrame.h"

#include "reports/report/Html.h"
#include "reports/report/ReportWriter.h"
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

void ReportFrame::writeHead(std::ostream &file, const std::function<std::string()> &logo) const {
    const auto print = [&file](std::string_view entry) { ReportWriter::printEntry(file, entry); };
    print("<!DOCTYPE HTML PUBLIC '-//W3C//DTD HTML 4.0 Transitional//EN'>");
    print("<html>");
    print(kPolicy);
    print("   <head><title>Norvelane 2.0 Internet Cache and History Analysis "
          "Report</title></head>");
    print("<body style='margin-top:10px;margin-bottom:10px;margin-left:10px;"
          "margin-right:10px;' bgcolor='white'>");
    print("<!-- report table -->");
    print(kBlock);
    print(fmt::format("<strong><font color='#000066'>{}</font></strong></div>",
                      m_report.reportTitle.empty()
                          ? "Norvelane Internet Cache &amp; History Analysis Report"
                          : htmlText(m_report.reportTitle)));
    print(customerOptions(logo));
    print(zoneNote());
}

std::string ReportFrame::customerOptions(const std::function<std::string()> &logo) const {
    const std::string date =
        fmt::format("<strong>Report Date:</strong>&nbsp;&nbsp;{}", htmlText(m_report.reportDate));
    if (m_report.skipHeader)
        return fmt::format("<div style='font-family:Tahoma,sans-serif;font-size:10px;'>{}</div>",
                           date);
    return fmt::format(
        "<!-- customer options -->\r\n<table width='760' border='0' cellspacing='0' "
        "cellpadding='4' style='font-family:Tahoma,sans-serif;font-size:12px;'>\r\n<tr>"
        "<td valign='top'>{}<br>\r\n<strong>Report Prepared By: </strong>&nbsp;{}<br>\r\n"
        "<strong>Organization: </strong>&nbsp;{}<br>\r\n<strong>Case Number: </strong>&nbsp;{}"
        "</td>\r\n<td align='right' valign='top'><img src='{}' alt='' "
        "style='max-width:240px;max-height:120px;'></td></tr>\r\n</table>",
        date, htmlText(m_report.reportedBy), htmlText(m_report.organization),
        htmlText(m_report.caseNumber), logo());
}

std::string ReportFrame::zoneNote() const {
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

void ReportFrame::writeTail(std::ostream &file) const {
    ReportWriter::printEntry(file, "<br><br>");
    ReportWriter::printEntry(
        file, fmt::format("<table width='760' bgcolor='#E0E0E0' style='font-family:Tahoma,"
                          "sans-serif;font-size:10px;'><tr><td>Report created using Norvelene<SUP>"
                          "<FONT style='font-size: 8pt;'>&reg;</FONT></SUP> Version {}</td></tr>"
                          "</table>",
                          m_ctx.settings.version));
    ReportWriter::printEntry(file, "</body>");
    ReportWriter::printEntry(file, "</html>");
}

} // namespace nv
