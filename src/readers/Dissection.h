#pragma once

#include <string>
#include <string_view>

namespace nv {

// Every reader passes its raw text through these. None of them fails: bad text gives an empty
// result.

/// The URL part of a raw text: from "https:", "http:", "file:" or "res:", whichever stands first in
/// it; where none does, after ":host: " or else after the first "@"; otherwise the text whole.
std::string parseURLFromRawURL(std::string_view raw);

/// The user part of a raw text such as "Visited: user@http://host/", or empty.
std::string parseUserFromURL(std::string_view raw);

/// The word before ":", such as "http"; empty when it is longer than 8 characters.
std::string getURLProtocol(std::string_view url);

/// The host name of a URL, without user, port and path; empty when there is none.
std::string parseHost(std::string_view url);

/// What follows the first "?" when that is not the last character of the URL.
std::string parametersOf(std::string_view url);

} // namespace nv
