#pragma once

#include "readers/chrome/cache/CacheBlockFiles.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <vector>

namespace nv {

// The files of a block cache of versions 2 and 3 as they lie, whatever an index says of them.
// These throw EvidenceFailure.

/// Adds the files that those follow which they are full with.
void addNextLaterFiles(ChromeBlockFiles &blocks, std::set<std::uint8_t> &files);

/// How many blocks one file of entries has.
std::uint64_t laterBlocksIn(const EvidenceFile &file);

/// Hands on the addresses of those blocks from `first` on that may begin an entry. The hash of the
/// key decides afterwards. At most kLaterPart blocks are looked at.
using TakeLaterBlock = std::function<void(const ChromeAddressMap &map)>;
constexpr std::uint64_t kLaterPart = 4096;
void eachLaterBlock(const EvidenceFile &file, std::uint8_t number, std::uint64_t first,
                    const TakeLaterBlock &take);
/// The same for all files that hold entries: "data_1" and those that follow it.
void eachLaterBlock(ChromeBlockFiles &blocks, const TakeLaterBlock &take);

/// Whether "data_1" has an entry of these versions, by the hash of its key.
bool hasLaterEntries(const Evidence &evidence, const std::filesystem::path &folder);

/// A file with one stream.
struct LaterFile {
    std::filesystem::path path;
    std::uint32_t number = 0; ///< as addresses have it
};
/// All of a folder, in the order of their numbers.
std::vector<LaterFile> separateFilesIn(const Evidence &evidence,
                                       const std::filesystem::path &folder);

} // namespace nv
