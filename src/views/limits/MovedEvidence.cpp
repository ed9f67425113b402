#include "views/limits/MovedEvidence.h"

#include "db/project/ProjectFields.h"
#include "views/rows/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <charconv>
#include <filesystem>

namespace nv {
namespace {

/// Which rows are known to hold which folder: "<highest URL_ID seen> <folder>". Reading a million
/// wide rows at each load only to find nothing would be most of the load.
constexpr std::string_view kSeenName = "RootPathSeen";
constexpr std::size_t kLongestValue = 255; ///< of `DefaultValue`

std::int64_t highestId(SQLite::Database &database) {
    return database.execAndGet("SELECT COALESCE(MAX(URL_ID), 0) FROM URLs").getInt64();
}

/// The highest row that is known to hold `root`; 0 when none is.
std::int64_t seenWith(const ProjectFields &fields, std::string_view root) {
    const std::string seen = fields.getDefault(kSeenName);
    std::int64_t id = 0;
    const auto [end, error] = std::from_chars(seen.data(), seen.data() + seen.size(), id);
    const std::string_view folder(end, static_cast<std::size_t>(seen.data() + seen.size() - end));
    return error == std::errc() && folder == fmt::format(" {}", root) ? id : 0;
}

/// A path column whose value begins with the row's old folder gets the new one in its place.
/// Columns compare without regard to case, folders mustn't.
std::string following(std::string_view column) {
    return fmt::format("{0} = CASE WHEN RootPath <> '' AND"
                       " CAST(substr({0}, 1, length(RootPath)) AS BLOB) = CAST(RootPath AS BLOB)"
                       " THEN ?1 || substr({0}, length(RootPath) + 1) ELSE {0} END",
                       column);
}

/// One statement, so that a cancel or a failure leaves all rows as they were.
std::optional<std::int64_t> giveRoot(SQLite::Database &database, const std::string &root,
                                     std::int64_t behind, TaskMonitor &task) {
    SQLite::Statement update(
        database, fmt::format("UPDATE URLs SET {}, {}, RootPath = ?1 WHERE URL_ID > ?2 AND"
                              " COALESCE(RootPath, '') <> ?1 COLLATE BINARY AND"
                              " COALESCE(RootPath, '') <> '/'",
                              following("HistoryFilePath"), following("CacheRootPath")));
    update.bind(1, root);
    update.bind(2, behind);
    StatementWatch watch(database, task);
    if (watch.step(update) == Step::Cancelled)
        return std::nullopt;
    return database.getChanges();
}

} // namespace

std::string asRootPath(std::string_view folder) {
    std::string root(folder);
    if (!root.empty() && root.back() != '/' && root.back() != '\\')
        root += static_cast<char>(std::filesystem::path::preferred_separator);
    return root;
}

std::optional<std::int64_t> mendRootPath(SQLite::Database &database, FailureLog &log,
                                         std::string_view rootPath, TaskMonitor &task) {
    const std::string root = asRootPath(rootPath);
    if (root.empty() || root == "/")
        return 0;
    ProjectFields fields(database, log);
    const std::int64_t highest = highestId(database);
    const std::int64_t seen = seenWith(fields, root);
    if (seen == highest)
        return 0;
    const auto changed = giveRoot(database, root, seen, task);
    const std::string mark = fmt::format("{} {}", highest, root);
    if (changed && mark.size() <= kLongestValue)
        fields.remember(kSeenName, mark);
    return changed;
}

} // namespace nv
