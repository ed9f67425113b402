#pragma once

#include "base/ByteView.h"
#include "readers/Reader.h"

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace nv {

inline constexpr std::uint64_t kSignatureLength = 4;

/// "URL ", "REDR" or "LEAK", in capitals.
bool isRecordSignature(std::string_view text);

/// Where the records of a carved file begin, 0-based: at the first "URL ", else at the first
/// "REDR", else at the first "LEAK".
std::optional<std::uint64_t> firstRecord(ByteView file);

/// A record that was saved, from its signature to after its end.
struct CarvedRange {
    std::uint64_t begin = 0;
    std::uint64_t end = 0;
};

/// Counts, by reason, the signatures that carving from `start` on never looks at. `carved` is in
/// the order of the file.
void countUncarved(ByteView file, std::uint64_t start, const std::vector<CarvedRange> &carved,
                   ReadResult &result);

} // namespace nv
