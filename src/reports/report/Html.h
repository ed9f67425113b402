#pragma once

#include <initializer_list>
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

/// A value as the target of a link, unchanged but for its quoting; control characters and marks of
/// direction are percent-coded, as browsers would ask for them.
std::string htmlAddress(std::string_view value);

/// Whether a URL may be a link: http, https, ftp and file. A "javascript:" is no place to go to.
bool isLink(std::string_view url);

/// The beginning of a table with its line of headings; "</table>" ends it.
std::string htmlTable(std::string_view name, std::initializer_list<std::string_view> columns);
/// The cells are HTML.
std::string htmlRow(std::initializer_list<std::string> cells);

} // namespace nv
