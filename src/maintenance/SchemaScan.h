#pragma once

#include "base/TaskMonitor.h"
#include "maintenance/ProjectShape.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

inline constexpr std::string_view kMissing = "Missing";
inline constexpr std::string_view kSizeMismatch = "Size Mismatch";
inline constexpr std::string_view kFixed = "Fixed!";
inline constexpr std::string_view kScanComplete = "Scan complete.";
/// Comes before the lines of what a fix doesn't move.
inline constexpr std::string_view kLeftBehind =
    "A fix leaves behind what this build doesn't know. It stays in the '.old' file only:";

/// A row of the wizard's grid. Its columns are headed by kDifferenceHeadings.
struct SchemaDifference {
    std::string table;
    std::string object; ///< "Table", "Index", "Column" or "Key"
    std::string name;
    std::string status;
};
inline constexpr std::string_view kDifferenceHeadings[] = {"TABLE", "OBJECT", "NAME", "STATUS"};

/// Tables that a fix moves, in the order of its moving. Those of first use
/// (schema::tablesOfFirstUse()), where there are any, come after them.
inline constexpr std::string_view kMovedTables[] = {
    "DefaultSettings", "StoredQueries", "SourceFiles", "URLs",         "Links",
    "URLMetaData",     "Tags",          "TagOptions",  "LinkAnalysis", "RecordFacts"};

struct SchemaScan {
    bool complete = false; ///< false when it was stopped
    std::vector<SchemaDifference> differences;
    /// One line each: what the project holds and a fix would leave behind in the old file.
    std::vector<std::string> leftBehind;
};

/// Appends what `reference` has and `project` lacks, by name and size; a column whose type alone
/// has changed isn't noticed. False when stopped.
bool compareShapes(const ProjectShape &reference, const ProjectShape &project, TaskMonitor &task,
                   std::vector<SchemaDifference> &differences);

/// Reads `database`, of shape `project`, for what a fix doesn't move. Tables without rows don't
/// count.
std::vector<std::string> leftBehindBy(SQLite::Database &database, const ProjectShape &project,
                                      const ProjectShape &reference);

} // namespace nv
