#pragma once

#include "cli/HashSetRows.h"
#include "cli/SharedArguments.h"
#include "views/rows/IdLoader.h"

#include <optional>
#include <string>
#include <vector>

namespace nv::cli {

class Session;

/// Which rows a report is to be made of, or a sheet of pictures.
struct ReportedRows {
    RowsAsked rows;
    std::string from;              ///< dates by the zone's clock; empty for no limit
    std::string to;                ///< belongs to the span
    std::string search;            ///< as `search` takes it
    std::vector<std::string> tags; ///< names; none for all rows
    HashSetsAsked hashSets;
    bool tagged = false; ///< of reports
};

/// The options that choose them, but for the tick.
std::vector<Argument> chosenRowsOptions(ReportedRows &chosen);
/// All of them.
std::vector<Argument> reportedRowsOptions(ReportedRows &chosen);

/// What of them can be checked before a project is open. Throws UsageError.
void checkReportedRows(const ReportedRows &chosen);

/// Of the open project, in the table's order; ticks are left to the report. Nothing when it was
/// cancelled. Throws UsageError and StorageFailure.
std::optional<RowIds> idsOf(Session &session, const ReportedRows &chosen);

/// For people: "the query \"Images\", from 2011-03-01, the ticked rows". Empty for all rows.
std::string contentText(const ReportedRows &chosen);

} // namespace nv::cli
