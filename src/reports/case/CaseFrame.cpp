#include "reports/case/CaseFrame.h"

#include "reports/case/CaseStyle.h"
#include "reports/case/CaseText.h"
#include "reports/report/Html.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

std::string link(std::string_view target, std::string_view text, std::string_view count,
                 bool isHere, std::string_view color = {}) {
    return fmt::format("<li><a href=\"{}\"{}><span>{}{}</span><b>{}</b></a></li>\n", target,
                       isHere ? " aria-current=\"page\"" : "", caseSwatch(color), htmlText(text),
                       count);
}

std::string sectionLinks(const CaseSections &sections, CaseSection::Part part,
                         std::string_view heading, std::string_view page) {
    std::string links;
    for (const CaseSection &section : sections) {
        if (section.part != part || section.rows == 0)
            continue;
        bool isHere = false;
        for (std::size_t number = 1; number <= section.pages() && !isHere; ++number)
            isHere = page == section.page(number);
        links += link(section.page(1), section.title, grouped(section.rows), isHere, section.color);
    }
    return links.empty() ? links : fmt::format("<h2>{}</h2>\n<ul>\n{}</ul>\n", heading, links);
}

} // namespace

std::string CaseSection::page(std::size_t number) const {
    return fmt::format("{}-{}.htm", name, number);
}

void CaseFrame::writeHead(std::ostream &file, std::string_view page,
                          std::string_view heading) const {
    const bool isIndex = page == kCaseIndex;
    file << "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
         << casePolicy() << "\n<meta name=\"referrer\" content=\"no-referrer\">\n"
         << "<meta http-equiv=\"x-dns-prefetch-control\" content=\"off\">\n"
         << "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>"
         << (isIndex ? "" : htmlText(heading) + " - ") << htmlText(title) << "</title>\n<style>"
         << caseStyle() << "</style>\n</head>\n<body>\n<nav aria-label=\"Parts of the report\">\n"
         << "<ul>\n"
         << link(kCaseIndex, "Overview", "", isIndex) << "</ul>\n"
         << sectionLinks(sections, CaseSection::Part::cards, "Cards", page)
         << sectionLinks(sections, CaseSection::Part::kind, "Kinds", page)
         << sectionLinks(sections, CaseSection::Part::tag, "Tags", page)
         << sectionLinks(sections, CaseSection::Part::appendix, "Appendix", page)
         << "</nav>\n<main>\n";
    if (!isIndex)
        file << "<h1>" << htmlText(heading) << "</h1>\n";
}

void CaseFrame::writeTail(std::ostream &file) const {
    file << "<footer>" << htmlText(title) << ". Made with Norvelane " << htmlText(version)
         << ". Addresses are text: nothing in this report leads out of its folder.</footer>\n"
         << "</main>\n<script>" << caseScript() << "</script>\n</body>\n</html>\n";
}

std::string CaseFrame::pager(const CaseSection &section, std::size_t number) const {
    if (section.pages() < 2)
        return {};
    std::string text = fmt::format("<p class=\"pager\"><span>Page {} of {}</span>", grouped(number),
                                   grouped(section.pages()));
    const auto to = [&](std::size_t target, std::string_view word) {
        if (target != number && target >= 1 && target <= section.pages())
            text += fmt::format("<a href=\"{}\">{}</a>", section.page(target), word);
    };
    to(1, "First");
    to(number - 1, "Previous");
    to(number + 1, "Next");
    to(section.pages(), "Last");
    return text + "</p>\n";
}

std::string_view findLine() {
    return "<div id=\"find\" class=\"find\" role=\"search\" hidden><label for=\"findtext\">Search "
           "in this page</label><input id=\"findtext\" type=\"search\" autocomplete=\"off\">"
           "<output aria-live=\"polite\"></output></div>\n";
}

} // namespace nv
