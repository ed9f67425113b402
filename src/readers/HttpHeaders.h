#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// The lines of an answer's headers, which caches part by zeros: with "\r\n" after each.
std::string headersInLines(std::string_view partedByZeros);

/// The values of all lines of that name, which is given in lower case, without blanks around them.
std::vector<std::string_view> headerValues(std::string_view headers, std::string_view name);

/// What the line "Content-Type" says, lower-case and without its parameters; empty without one.
std::string mimeTypeOf(std::string_view headers);
/// Its parameter "charset" as it stands; empty without one.
std::string charsetOf(std::string_view headers);
/// The number of a status line, "HTTP/1.1 200 OK", with which the headers begin; 0 without one.
int statusOf(std::string_view headers);

/// The answer's head as caches keep it in a record's texts, beginning with its status line; what
/// stands around it, as in caches of Firefox, is left out. Empty when there is none.
std::string_view answerHeadIn(std::string_view stored);

} // namespace nv
