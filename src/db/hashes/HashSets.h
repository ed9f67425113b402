#pragma once

#include "base/TaskMonitor.h"
#include "db/hashes/HashSetFile.h"

#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

// The hash sets of an examiner's: a folder of files of hashes, each called as its set.

/// Letters, digits, blanks and a few signs, so that it can be a file's name everywhere.
bool isHashSetName(std::string_view name);
std::filesystem::path hashSetPath(const std::filesystem::path &folder, std::string_view name);
/// By name. None when there is no folder.
std::vector<std::filesystem::path> hashSetPaths(const std::filesystem::path &folder);
/// All sets of the folder, or those of these names. Throws StorageFailure for a name that no set
/// has and for a damaged file: whoever asks must not take its silence for an answer.
std::vector<HashSetFile> openHashSets(const std::filesystem::path &folder,
                                      std::span<const std::string> names = {});

/// Throws StorageFailure when there is none of this name, or it stays.
void removeHashSet(const std::filesystem::path &folder, std::string_view name);

/// What a set was made of.
struct HashSetMade {
    std::uint64_t lines = 0;
    std::uint64_t hashes = 0;         ///< different ones; none: no set was made
    std::uint64_t withoutHash = 0;    ///< lines
    std::vector<std::string> refused; ///< the first of these, with their file
};

/// What is asked for; name, meaning and the day stand in `facts`.
struct HashSetOrder {
    std::filesystem::path folder; ///< made when it isn't there
    HashSetFacts facts;
    std::vector<std::filesystem::path> lists;
    std::filesystem::path scratch; ///< an existing folder of the program's own
};
/// Makes the set, in the place of one that has its name. Nothing when it was cancelled. Throws
/// FileFailure when a list can't be read, StorageFailure when the set can't be written.
std::optional<HashSetMade> makeHashSet(HashSetOrder order, TaskMonitor &task);

} // namespace nv
