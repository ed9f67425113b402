#pragma once

#include <string>
#include <string_view>

namespace nv {

// How values of evidence enter a report. None of them can become markup, a script or a link that
// leads elsewhere than it says.

/// One line of text, for an element or an attribute in quotes of either kind. Control characters
/// and marks of direction are written out.
std::string htmlText(std::string_view value);

/// The same for a text of several lines, which it keeps.
std::string htmlLines(std::string_view value);

/// A value as the target of a link, unchanged but for its quoting.
std::string htmlAddress(std::string_view value);

/// Whether a URL may be a link: http, https, ftp and file. A "javascript:" is no place to go to.
bool isLink(std::string_view url);

} // namespace nv
