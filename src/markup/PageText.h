#pragma once

#include "base/ByteView.h"

#include <string>
#include <string_view>

namespace nv {

/// In front of a text, says that it is UTF-8, and holds over all else that says something.
inline constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

/// The text of a page in UTF-8, by the encoding that browsers take it for: a byte-order mark, else
/// the HTTP header's, else that of its "meta" tag, else of its XML declaration, else Windows-1252.
/// What the header says is XML is asked for its declaration first, and is UTF-8 where nothing is
/// said and it can be. Names that nobody knows are passed over. Bytes that the encoding doesn't
/// know become U+FFFD.
std::string decodePage(ByteView bytes, std::string_view httpHeader);

/// The same with the name of the encoding and what named it, for people to see.
struct DecodedPage {
    std::string text;
    std::string charset;      ///< in lower case, as it was named; UTF-16 with its order of bytes
    std::string_view foundIn; ///< in plain words
};
/// `foundIn` of a page that names none: it is taken for Windows-1252.
inline constexpr std::string_view kNoCharset = "no charset named";
DecodedPage decodedPage(ByteView bytes, std::string_view httpHeader);

/// The text of a style sheet by CSS Syntax level 3: a byte-order mark, else what the server said,
/// else "@charset" in the standard's very form, else the page's, else UTF-8. Names that nobody
/// knows are passed over, and so is UTF-7, which no browser reads.
DecodedPage decodedStyle(ByteView bytes, std::string_view server, std::string_view page);

/// The charset that the first bytes of a page name in a "meta" tag; empty for none.
std::string_view charsetOfMeta(std::string_view head);

/// The charset of the "Content-Type" line; empty for none.
std::string_view charsetOfHeader(std::string_view httpHeader);

/// "utf-16le" or "utf-16be" where the mark in front says so, or, without a mark, the server; empty
/// otherwise.
std::string_view wideCharsetOf(std::string_view bytes, std::string_view httpHeader);

} // namespace nv
