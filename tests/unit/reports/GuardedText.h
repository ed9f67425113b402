#pragma once

#include "reports/pages/SafePage.h"

#include <string>
#include <string_view>

namespace nv {

inline const PageFolder kFolder{
    {"0000001.htm", PartKind::page},  {"0000002.gif", PartKind::picture},
    {"0000003.css", PartKind::style}, {"0000004.htm", PartKind::page},
    {"0000005.txt", PartKind::plain}, {"0000006.mp4", PartKind::media}};

inline std::string guarded(std::string_view html, PageForm form = PageForm::html) {
    return guardedPage(html, form, References(kFolder));
}

/// What stands in the body, which is what most of these tests are about.
inline std::string body(std::string_view html) {
    const std::string page = guarded(html);
    const std::size_t begin = page.find("<body");
    const std::size_t end = page.find("</body>");
    return begin == std::string::npos ? page : page.substr(begin + 6, end - begin - 6);
}

} // namespace nv
