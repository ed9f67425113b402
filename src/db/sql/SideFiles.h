#pragma once

#include <array>
#include <filesystem>
#include <string_view>

namespace nv {

// What SQLite keeps beside a database while it is open, and what a crash leaves there: the log of
// WAL mode, its index, and the journal of the other mode. Log and journal may hold rows of the
// database; the index never does.
inline constexpr std::string_view kLogSuffix = "-wal";
inline constexpr std::string_view kJournalSuffix = "-journal";
inline constexpr std::string_view kLogIndexSuffix = "-shm";
inline constexpr std::array kRowSuffixes = {kLogSuffix, kJournalSuffix};
inline constexpr std::array kSideSuffixes = {kLogSuffix, kLogIndexSuffix, kJournalSuffix};

/// The file of that suffix, whether it is there or not.
std::filesystem::path sideFile(const std::filesystem::path &database, std::string_view suffix);

/// Both remove what is there, and let be what can't be removed. Side files that are left would be
/// read into another database of that name.
void removeSideFiles(const std::filesystem::path &database);
void removeDatabase(const std::filesystem::path &database);

} // namespace nv
