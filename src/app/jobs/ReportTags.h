#pragma once

#include "app/program/Program.h"
#include "db/marks/NamedTags.h"
#include "views/rows/IdLoader.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace nv {

/// A tag of the open project, and which rows of the table have it.
struct ReportTag {
    NamedTag tag;
    RowIds rows; ///< ascending
};

/// All tags in their order, with those of `ids`, which are in any order. Throws what the database
/// says.
std::vector<ReportTag> reportTags(Program &program, std::span<const std::int32_t> ids);

/// Rows that have one of the tags or more, ascending. Names that no tag has give none.
RowIds rowsWithOneOf(const std::vector<ReportTag> &tags, const std::vector<std::string> &names);

/// For people: "the tag \"Important\"", "one of the tags \"Important\", \"Later\"".
std::string tagsText(const std::vector<std::string> &names);

/// The tags to whose rows the last report of the open project was limited; those that it doesn't
/// have any more are left out. None for a report of all rows.
std::vector<std::string> keptReportTags(Program &program);
/// False when they can't be written. A project that is only read keeps none.
[[nodiscard]] bool keepReportTags(Program &program, const std::vector<std::string> &names);

} // namespace nv
