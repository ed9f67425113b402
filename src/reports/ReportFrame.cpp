// Head and tail of a report's page.
#include "base/Trap.h"
#include "reports/Html.h"
#include "reports/ReportClass.h"
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

void ReportClass::CreateHeader(std::ostream &file) {
    HeaderFailed = !trapped(
        m_ctx.rebuild.log, Severity::Serious, "ReportClass.CreateHeader()",
        "Error Creating Report Header", false, [&] {
            PrintEntry(file, "<!DOCTYPE HTML PUBLIC '-//W3C//DTD HTML 4.0 Transitional//EN'>");
            PrintEntry(file, "<html>");
            PrintEntry(file, kPolicy);
            PrintEntry(file, "   <head><title>Norvelane 2.0 Internet Cache and History Analysis "
                             "Report</title></head>");
            PrintEntry(file, "<body style='margin-top:10px;margin-bottom:10px;margin-left:10px;"
                             "margin-right:10px;' bgcolor='white'>");
            PrintEntry(file, "<!-- report table -->");
            PrintEntry(file, kBlock);
            PrintEntry(file,
                       fmt::format("<strong><font color='#000066'>{}</font></strong></div>",
                                   ReportTitle.empty()
                                       ? "Norvelane Internet Cache &amp; History Analysis Report"
                                       : htmlText(ReportTitle)));
            PrintEntry(file, customerOptions());
            PrintEntry(file, zoneNote());
            return true;
        });
}

std::string ReportClass::customerOptions() {
    const std::string date =
        fmt::format("<strong>Report Date:</strong>&nbsp;&nbsp;{}", htmlText(ReportDate));
    if (SkipHeader)
        return fmt::format("<div style='font-family:Tahoma,sans-serif;font-size:10px;'>{}</div>",
                           date);
    return fmt::format(
        "<!-- customer options -->\r\n<table width='760' border='0' cellspacing='0' "
        "cellpadding='4' style='font-family:Tahoma,sans-serif;font-size:12px;'>\r\n<tr>"
        "<td valign='top'>{}<br>\r\n<strong>Report Prepared By: </strong>&nbsp;{}<br>\r\n"
        "<strong>Organization: </strong>&nbsp;{}<br>\r\n<strong>Case Number: </strong>&nbsp;{}"
        "</td>\r\n<td align='right' valign='top'><img src='{}' alt='' "
        "style='max-width:240px;max-height:120px;'></td></tr>\r\n</table>",
        date, htmlText(ReportedBy), htmlText(Organization), htmlText(CaseNumber), logo());
}

std::string ReportClass::ownPicture(const std::filesystem::path &picture, const std::string &name) {
    const std::string own = m_folder.takePicture(picture, name, m_ctx.rebuild.log);
    if (own.empty())
        PicturesFailed.insert(picture);
    return own;
}

std::string ReportClass::logo() {
    std::string own;
    if (UseCustomLogo && !AgencyLogoPath.empty())
        own = ownPicture(AgencyLogoPath, "agency-logo");
    return own.empty() ? "images/norvelane-logo.png" : own;
}

std::string ReportClass::zoneNote() const {
    const TimeZoneClass &zone = m_ctx.GMTZone;
    std::string note = fmt::format(
        "<div style='font-family:Tahoma,sans-serif;font-size:10px;width:760px;'>Results are "
        "displayed in Coordinated Universal Time (UTC).<br>\r\nThe active time bias is set to: "
        "{} {}",
        htmlText(zone.tzBiasAsText), htmlText(zone.DaylightCode));
    if (zone.tzName != "DEFAULT")
        note += fmt::format("<br>\r\nTime Zone Setting: {}", htmlText(zone.tzName));
    if (zone.exact)
        note += fmt::format(" (the law of each date, by the time zone database of version {})",
                            htmlText(zone.exact->version()));
    return note + "</div>";
}

void ReportClass::CreateFooter(std::ostream &file) {
    FooterFailed = !trapped(
        m_ctx.rebuild.log, Severity::Serious, "ReportClass.CreateFooter()",
        "Error Creating Report Footer", false, [&] {
            PrintEntry(file, "<br><br>");
            PrintEntry(file,
                       fmt::format(
                           "<table width='760' bgcolor='#E0E0E0' style='font-family:Tahoma,"
                           "sans-serif;font-size:10px;'><tr><td>Report created using Norvelene<SUP>"
                           "<FONT style='font-size: 8pt;'>&reg;</FONT></SUP> Version {}</td></tr>"
                           "</table>",
                           m_ctx.settings.version));
            PrintEntry(file, "</body>");
            PrintEntry(file, "</html>");
            return true;
        });
}

} // namespace nv
