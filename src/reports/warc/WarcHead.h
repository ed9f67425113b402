#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// What lies in a file beside a head.
struct HeldContent {
    std::uint64_t size = 0;             ///< bytes
    std::string_view unpackedFrom = {}; ///< codings that were undone, as in Body
    bool isGZip = false;                ///< its first bytes are those of gzip
    bool isThere = true;                ///< false: nobody knows its size
    /// Where its first byte lies in the whole that it is a part of, where the cache tells.
    std::optional<std::uint64_t> first{};
};

/// The head as it fits a content that was unpacked and lies there in one piece: with a status line
/// of HTTP/1.x and a blank line at the end. Lines that say something else of coding, transfer,
/// length or range keep their words under "X-Archive-Orig-" and their name, by which programs that
/// replay archives know them. A part ("206") that is all of it becomes the whole; one whose place
/// is known gets a true range. Control characters become blanks, lines that are no header go.
std::string mendedHead(std::string_view head, const HeldContent &content);

} // namespace nv
