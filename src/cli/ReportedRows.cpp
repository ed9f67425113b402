#include "cli/ReportedRows.h"

#include "app/jobs/ReportTags.h"
#include "app/jobs/SearchJob.h"
#include "app/project/Project.h"
#include "cli/AskedSpan.h"
#include "cli/LoadedTable.h"
#include "cli/NamedTagRows.h"
#include "cli/SearchedRows.h"
#include "cli/Session.h"
#include "views/limits/TypedSpan.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <limits>

namespace nv::cli {

namespace {

std::optional<TimeSpan> spanOf(const ReportedRows &chosen) {
    if (chosen.from.empty() && chosen.to.empty())
        return std::nullopt;
    TimeSpan span = kAllTime;
    if (!chosen.from.empty())
        span.begin = secondAsked(chosen.from, "--from");
    if (!chosen.to.empty())
        span.end = endAsked(chosen.to, "--to");
    if (span.isEmpty())
        throw UsageError("--from and --to: the end lies before the beginning");
    return span;
}

/// Those of `ids` that the search finds. Nothing when it was cancelled.
std::optional<RowIds> found(Session &session, const std::string &text, const RowIds &ids) {
    RowMatch match = searchAsked(session, text, SearchScope::all);
    const SearchFound result =
        searchProject(session.program, match, session.task, session.scratch());
    if (result.isCancelled)
        return std::nullopt;
    tellUnsearched(session, result.unread, result.outside);
    RowIds kept;
    kept.reserve(std::min(ids.size(), result.ids.size()));
    std::ranges::copy_if(ids, std::back_inserter(kept), [&result](std::int32_t id) {
        return std::ranges::binary_search(result.ids, id);
    });
    return kept;
}

} // namespace

std::vector<Argument> chosenRowsOptions(ReportedRows &chosen) {
    std::vector<Argument> options{
        tagsOption(chosen.tags),
        queryOption(chosen.rows),
        hostOption(chosen.rows),
        filterOption(chosen.rows),
        value("--search", chosen.search, "Only rows that this search finds"),
        value("--from", chosen.from, "Only rows from this date on, by the zone's clock"),
        value("--to", chosen.to, "Only rows up to this date, which belongs to them")};
    addHashSetOptions(options, chosen.hashSets);
    return options;
}

std::vector<Argument> reportedRowsOptions(ReportedRows &chosen) {
    std::vector<Argument> options{flag("--tagged", chosen.tagged, "Only rows with the tick")};
    for (Argument &option : chosenRowsOptions(chosen))
        options.push_back(std::move(option));
    return options;
}

void checkReportedRows(const ReportedRows &chosen) {
    spanOf(chosen);
}

std::optional<RowIds> idsOf(Session &session, const ReportedRows &chosen) {
    Program &program = session.program;
    UrlTable table(program.state.projectDB.connection(), program.log, program.state.gmtZone);
    if (const auto span = spanOf(chosen))
        table.time = limitOf(*span, program.state.gmtZone, dateSettings(program).enableDSTChanges);
    limitToTags(session, chosen.tags, table);
    limitToHashSets(session, chosen.hashSets, table);
    if (loadTable(session, choiceOf(chosen.rows), table) == LoadResult::Cancelled)
        return std::nullopt;
    return chosen.search.empty() ? table.ids() : found(session, chosen.search, table.ids());
}

std::string contentText(const ReportedRows &chosen) {
    std::vector<std::string> parts;
    if (!chosen.rows.query.empty())
        parts.push_back(fmt::format("the query \"{}\"", chosen.rows.query));
    if (!chosen.rows.host.empty())
        parts.push_back(fmt::format("the host \"{}\"", chosen.rows.host));
    if (!chosen.rows.filter.empty())
        parts.push_back(fmt::format("the filters {}", fmt::join(chosen.rows.filter, ", ")));
    if (!chosen.search.empty())
        parts.push_back(fmt::format("the search \"{}\"", chosen.search));
    if (!chosen.from.empty())
        parts.push_back(fmt::format("from {}", chosen.from));
    if (!chosen.to.empty())
        parts.push_back(fmt::format("up to {}", chosen.to));
    if (!chosen.tags.empty())
        parts.push_back(tagsText(chosen.tags));
    for (std::string &part : contentOf(chosen.hashSets))
        parts.push_back(std::move(part));
    if (chosen.tagged)
        parts.emplace_back("the ticked rows");
    return fmt::format("{}", fmt::join(parts, ", "));
}

} // namespace nv::cli
