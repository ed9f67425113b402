#include "cli/SharedArguments.h"

#include "cli/UsageError.h"

#include <fmt/ranges.h>

namespace nv::cli {

Argument projectWord(std::string &project) {
    return value("PROJECT", project, "Project file (*.nvp)").required();
}

Argument rowWord(std::int64_t &urlId) {
    return value("URL_ID", urlId, "Key of the row").required();
}

Argument formatOption(Format &format) {
    return choice<Format>("--format", format,
                          {{"table", Format::table},
                           {"csv", Format::csv},
                           {"tsv", Format::tsv},
                           {"jsonl", Format::jsonl}},
                          "table, csv, tsv or jsonl");
}

Argument namesOption(FieldNames &names) {
    return choice<FieldNames>("--names", names,
                              {{"people", FieldNames::people}, {"classic", FieldNames::classic}},
                              "Fields of csv and jsonl: people (url, title, visit_count) or "
                              "classic (COL_URL_VALUE)");
}

UrlColumn columnAsked(std::string_view name) {
    const auto column = columnOfName(name);
    if (!column)
        throw UsageError(fmt::format("there is no column \"{}\": {} were expected", name,
                                     fmt::join(fieldNames(), ", ")));
    return *column;
}

Argument wideIdsFlag(bool &wideIds) {
    return flag("--wide-ids", wideIds, "Parts may have ids above 32767");
}

Argument queryOption(RowsAsked &rows) {
    return value("--query", rows.query, "Name of a stored query (default: _DEFAULT)");
}

Argument hostOption(RowsAsked &rows) {
    return value("--host", rows.host, "Only hosts that contain this text");
}

Argument filterOption(RowsAsked &rows) {
    return value("--filter", rows.filter,
                 "Only what these record filters show, separated by commas, such as "
                 "CacheURLs,JPEG,Cookies; browser=NAME, profile=NAME and person=NAME choose whose "
                 "records; a wrong one lists them all")
        .separatedByCommas();
}

} // namespace nv::cli
