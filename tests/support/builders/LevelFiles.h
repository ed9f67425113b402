#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nv::test {

/// One writing of a LevelDB store; without a value a deletion.
struct LevelRow {
    std::string key;
    std::optional<std::string> value;
};

/// A log of one batch, cut into pieces at the blocks of 32 KB.
std::string levelLog(const std::vector<LevelRow> &rows, std::uint64_t firstSequence = 1);

/// A table whose rows stand in blocks of three, with what keys share left out. Packed by Snappy, or
/// as they are.
std::string levelTable(const std::vector<LevelRow> &rows, bool isPacked,
                       std::uint64_t firstSequence = 1);

/// What a service worker's store says of a script.
LevelRow scriptRow(int version, int number, const std::string &url);

} // namespace nv::test
