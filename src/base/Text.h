#pragma once

#include "base/ByteView.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

// Text in memory is UTF-8. Evidence text is Windows-1252 unless its format says otherwise.

/// Windows-1252 bytes to UTF-8. The five bytes that the code page leaves open become the C1
/// characters of the same value, so every byte value survives the way there and back.
std::string fromAnsi(ByteView bytes);
std::string fromAnsi(std::string_view bytes);

/// UTF-8 to Windows-1252; a character that it can't hold becomes '?'.
std::string toAnsi(std::string_view text);

bool isUtf8(std::string_view bytes);
/// As UTF-8 when the bytes are valid UTF-8, otherwise from Windows-1252.
std::string decodeText(std::string_view bytes);

/// Undoes percent coding. Runs of coded bytes that form valid UTF-8 become that text, otherwise
/// Windows-1252; a coded zero or control byte stays as it stands, so that a URL can't be cut or
/// forge a line. Malformed escapes stay as they are.
std::string percentDecode(std::string_view text);

/// ASCII only: evidence is compared the same way in every locale.
std::string toLower(std::string_view text);
std::string toUpper(std::string_view text);
bool equalsNoCase(std::string_view a, std::string_view b);
bool startsWithNoCase(std::string_view text, std::string_view prefix);
bool containsNoCase(std::string_view text, std::string_view needle);
/// 0-based byte position at or after `from`, npos when absent. ASCII letters match in either case.
std::size_t findNoCase(std::string_view text, std::string_view needle, std::size_t from = 0);

/// Without blanks, tabs and line breaks at both ends.
std::string_view trim(std::string_view text);
std::string replaceAll(std::string_view text, std::string_view what, std::string_view with);
std::vector<std::string_view> split(std::string_view text, char separator);

/// "1 row" and "2 rows"; `many` is for words that an "s" doesn't make more of.
std::string counted(std::uint64_t count, std::string_view one, std::string_view many = {});

/// The number of bytes to add, take away or replace that makes one word the other.
std::size_t editDistance(std::string_view one, std::string_view other);

/// Length in characters (code points), for rules that count characters and not bytes.
std::size_t charCount(std::string_view text);
/// From the 0-based character `first`, at most `count` characters.
std::string_view charSub(std::string_view text, std::size_t first,
                         std::size_t count = std::string_view::npos);

/// Lower-case extension of 1 to 6 ASCII letters or digits, without the point; empty when there is
/// none. A path of fewer than 6 characters has none, and neither has one with a query after it:
/// rebuilding and categorising depend on both.
std::string getFileExtension(std::string_view path);
/// What stands after the last "/" or "\".
std::string_view getFilenameFromPath(std::string_view path);

// Byte helpers that all readers share; positions are 0-based.

/// Windows-1252 text from `start`. Length 0 means up to the end of the bytes; with `zeroToSpace`
/// (that form only) a zero byte becomes a blank.
std::string bytesToString(ByteView bytes, std::uint64_t start, std::uint64_t length,
                          bool stopAtZero, bool zeroToSpace = false);
/// Two upper-case hexadecimal digits a byte, in file order.
std::string bytesToHex(ByteView bytes, std::uint64_t start, std::uint64_t length,
                       bool stopAtZero = false);
Bytes reverseBytes(ByteView bytes);
ByteView byteSlice(ByteView bytes, std::uint64_t start, std::uint64_t count);

} // namespace nv
