#pragma once

#include "base/Files.h"
#include "base/TaskMonitor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

enum class LetterCase { exact, ignored };

/// What is looked for in a file: a sequence of units, each of which may stand in several forms.
struct HexNeedle {
    using Unit = std::vector<std::string>; ///< its forms in bytes; none of them is empty
    std::vector<Unit> units;
};

/// A text in the three encodings in which evidence has it: Windows-1252 (ASCII among it), UTF-8 and
/// UTF-16LE. Encodings that come to the same bytes are there once.
std::vector<HexNeedle> needlesOfText(std::string_view text, LetterCase letters);
/// The same in UTF-16BE alone, which is rare and easily taken for the other one a byte beside it:
/// see `HexHits`.
std::optional<HexNeedle> bigEndianNeedle(std::string_view text, LetterCase letters);
/// Bytes as "4A 46 49 46" or "4a464946"; nothing when the text is something else or empty.
std::optional<HexNeedle> needleOfBytes(std::string_view text);
/// An offset as "0x1F40", "1F40h" or, without a mark, decimal; nothing when it is something else.
std::optional<std::uint64_t> offsetIn(std::string_view text);

/// Where a needle was found, in bytes from the file's start.
struct HexMatch {
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
};

struct HexSearch {
    std::optional<HexMatch> match;
    bool cancelled = false;
};

/// The first match of any of the needles that begins at or after `from`. Reads the file in blocks;
/// ends between two of them when `task` says so. Throws FileFailure.
HexSearch findInFile(const FileReader &file, const std::vector<HexNeedle> &needles,
                     std::uint64_t from, TaskMonitor &task);

} // namespace nv
