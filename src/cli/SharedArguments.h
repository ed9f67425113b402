#pragma once

#include "cli/Argument.h"
#include "cli/RowWriter.h"
#include "views/rows/FieldNames.h"

namespace nv::cli {

// What several commands take, so that it is called and explained alike.

Argument projectWord(std::string &project);
Argument rowWord(std::int64_t &urlId);
Argument formatOption(Format &format);
/// How csv, tsv and jsonl call columns of the table.
Argument namesOption(FieldNames &names);
/// Column by either name; throws UsageError that lists them.
UrlColumn columnAsked(std::string_view name);
Argument wideIdsFlag(bool &wideIds);

/// Which rows of the table a command is about.
struct RowsAsked {
    std::string query; ///< empty for the default
    std::string host;
    std::vector<std::string> filter; ///< flags of the record filters
};
Argument queryOption(RowsAsked &rows);
Argument hostOption(RowsAsked &rows);
Argument filterOption(RowsAsked &rows);

} // namespace nv::cli
