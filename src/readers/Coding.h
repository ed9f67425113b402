#pragma once

#include "base/ByteView.h"
#include "base/FailureLog.h"
#include "readers/Body.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

// Codings in which servers send bodies, and caches keep them: gzip, deflate, br, zstd.

/// The words of Content-Encoding in those headers, in the order in which they were applied and in
/// lower case; "x-gzip" is gzip, and "identity" is none.
std::vector<std::string> codingsOf(std::string_view headers);

/// Whether the bytes begin as a gzip stream does.
bool beginsAsGZip(ByteView head);

/// What becomes of a body whose packed content is damaged or ends too early. One that unpacks to
/// more than limits::kUnpackedBytes, or many times its size, stays packed in any case.
enum class Damaged {
    staysPacked,
    givesPart, ///< what could be unpacked, where that is anything
};

/// Undoes the codings of a body that was fetched, the last one first: it becomes the unpacked one,
/// of which up to `inMemory` bytes are kept in memory. Its `unpackedFrom` says which were undone,
/// and its `doubt` why it isn't the whole content; what is damaged is logged. What is gzip by name
/// and doesn't begin as such was kept unpacked. True when no doubt is left.
[[nodiscard]] bool unpackBody(Body &body, std::span<const std::string> codings, Damaged damaged,
                              std::uint64_t inMemory, FailureLog &log);

} // namespace nv
