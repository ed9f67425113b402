#pragma once

#include "base/ByteView.h"
#include "db/records/UrlRecord.h"
#include "time/Date.h"

#include <cstdint>
#include <string>
#include <vector>

namespace nv {

// The text files beside the index of a cookies folder. A file holds the cookies of one host, nine
// lines each:
//   cookie = name value host/path flags expiresLow expiresHigh createdLow createdHigh "*"
// Numbers are decimal; dates are the two halves of a FILETIME.

struct TextCookie {
    std::uint64_t offset = 0; ///< of its first line
    std::string name;
    std::string value;
    std::string place; ///< "host/path"
    std::uint32_t flags = 0;
    Date expires; ///< UTC, as the date it was made
    Date created;
};

struct TextCookies {
    std::vector<TextCookie> cookies; ///< in the order of the file
    std::uint64_t damaged = 0;       ///< that aren't as above
};

TextCookies cookiesOf(ByteView text);

/// Adds what the text tells of one cookie.
void addCookieFacts(UrlRecord &url, const TextCookie &cookie);

/// The record of a cookie that stands after the first one in the text file of `file`.
UrlRecord furtherCookie(const UrlRecord &file, const TextCookie &cookie);

} // namespace nv
