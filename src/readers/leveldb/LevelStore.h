#pragma once

#include "readers/Evidence.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// One writing of a LevelDB store. The views live while it is handed on.
struct LevelEntry {
    std::string_view key; ///< as the program stored it
    std::string_view value;
    std::uint64_t sequence = 0; ///< a later writing has a larger one
    bool isDeletion = false;    ///< then there is no value
};

using TakeLevelEntry = std::function<void(const LevelEntry &entry)>;

/// Hands on all that stands in a log, entries that were written over and deleted ones too. What is
/// wrong with it, and where; empty where nothing is.
std::string eachOfLevelLog(ByteView file, const TakeLevelEntry &take);

/// The same of a table.
std::string eachOfLevelTable(ByteView file, const TakeLevelEntry &take);

/// The same of all logs and tables of the folder, as they lie: nothing is opened as a database,
/// and what the list of files doesn't name any more is read too. Returns what is wrong, each with
/// its file. Throws EvidenceFailure when the folder can't be listed.
std::vector<std::string> eachOfLevelStore(const Evidence &evidence,
                                          const std::filesystem::path &folder,
                                          const TakeLevelEntry &take);

} // namespace nv
