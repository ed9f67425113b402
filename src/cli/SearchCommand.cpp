#include "app/jobs/SearchJob.h"
#include "app/jobs/Trail.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/SearchedRows.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "search/SearchedRowReader.h"
#include "time/DateFormat.h"
#include "views/limits/SearchValues.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::string text;
    bool values = false;
    std::string by; ///< empty for the rows themselves
    std::optional<std::int64_t> limit;
    std::optional<std::string> keep;
    Format format = Format::table;
};

/// The rows that were found, each with the place where it shows what it was found by.
void writeRows(Session &session, const Arguments &arguments, const FoundIds &ids, RowMatch &match) {
    const auto writer =
        makeRowWriter(arguments.format, session.out,
                      {"URL_ID", "Type", "ActionDateUTC", "Host", "Field", "Snippet", "URL"});
    SearchedRowReader reader(session.program.state.projectDB.connection(),
                             arguments.values ? RowTexts::values : RowTexts::all);
    std::int64_t written = 0;
    for (const std::int32_t id : ids) {
        if (interrupted || (arguments.limit && written++ >= *arguments.limit))
            break;
        if (!reader.goTo(id))
            continue;
        const SearchedRow &row = reader.row();
        const auto mark = match.firstMark(row);
        writer->row({row.id, row.cacheType, isoUtc(row.actionDateUTC), row.at(SearchField::host),
                     mark ? Cell(fieldWord(mark->field)) : Cell(),
                     mark ? Cell(snippetOf(row.at(mark->field), mark->span).text) : Cell(),
                     row.at(SearchField::address)});
    }
    writer->finish();
}

void writeCounts(Session &session, const Arguments &arguments, const FoundCounts &counts) {
    const bool byHost = arguments.by == "host";
    const auto writer =
        makeRowWriter(arguments.format, session.out, {byHost ? "Host" : "Type", "Rows"});
    for (const auto &[name, rows] : byHost ? counts.byHost : counts.byKind)
        writer->row({name, rows});
    writer->finish();
}

Exit tell(Session &session, const Arguments &arguments, const SearchFound &found) {
    if (found.isCancelled || interrupted)
        return Exit::interrupted;
    if (const std::string zone = zoneOfSearch(session.program, arguments.text); !zone.empty())
        session.err << fmt::format("before: and after: go by the clock of {}\n", printable(zone));
    session.err << printable(countsText(found)) << '\n';
    if (arguments.limit && arguments.by.empty() &&
        static_cast<std::int64_t>(found.ids.size()) > *arguments.limit)
        session.err << fmt::format("the first {} of them are shown\n", *arguments.limit);
    return tellUnsearched(session, found.unread, found.outside);
}

/// What of the search finds no row whatever else it says: a misspelled name is told, and isn't
/// taken for a finding.
void advise(Session &session, const RowMatch &match, const SearchFound &found) {
    const bool mayExclude = std::ranges::any_of(match.query().clauses, &SearchClause::isExcluded);
    if (interrupted || (!found.ids.empty() && !mayExclude) || !canBeAdvised(match.query()))
        return;
    SearchValues values;
    if (loadSearchValues(session.program.state.projectDB.connection(), session.task, values) ==
        Walk::Finished)
        for (const std::string &advice : searchAdvice(match.query(), values))
            session.err << printable(advice) << '\n';
}

Exit run(Session &session, const Arguments &arguments) {
    const SearchScope scope = arguments.values ? SearchScope::values : SearchScope::all;
    searchAsked(session, arguments.text, scope); // what can't be read ends it before all else
    SearchTraces traces(session, arguments.project, arguments.keep);
    RowMatch match = searchAsked(session, arguments.text, scope);
    const std::string told = toldSearch(session.program, arguments.text);
    const SearchFound found =
        searchProject(session.program, match, session.task, session.scratch());
    session.task.clear();
    if (const std::string text = indexText(found.index); !text.empty())
        session.err << printable(text) << '\n';
    if (arguments.by.empty())
        writeRows(session, arguments, found.ids, match);
    else
        writeCounts(session, arguments, found.counts);
    const Exit exit = tell(session, arguments, found);
    advise(session, match, found);
    session.task.clear();
    return traces.leave(
        exit,
        [&] { noteSearch(session.program, told, static_cast<std::int64_t>(found.ids.size())); },
        [&](const std::string &name) { keepSearch(session.program, name, told, found.ids); });
}

} // namespace

Command searchCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "search",
            .what = "Find rows by what stands in them: addresses, titles, notes, facts, pages",
            .readme = {"`search PROJECT TEXT`",
                       "finds rows by what stands in addresses, titles, notes, facts, pages and "
                       "headers; `--by`, `--keep`"},
            .examples = {{"search case.nvp \"tide host:harbour after:2011-03 -weather\"", ""},
                         {"search case.nvp '\"low water\"' --by host", "counts alone"},
                         {"search case.nvp /invoice-[0-9]{4}/ --keep Invoices",
                          "kept as a result of that name"}},
            .arguments =
                {projectWord(given->project),
                 value("TEXT", given->text,
                       "Words, \"phrases\", -word, *part*, host:, browser:, kind:, tag:, hashset:, "
                       "before:, after: (dates by the project's zone), /expression/")
                     .required(),
                 flag("--values", given->values,
                      "Look through addresses, titles, notes and facts alone, not through pages "
                      "and headers"),
                 value("--by", given->by, "Count the rows by kind or host in place of listing them")
                     .oneOf({"kind", "host"}),
                 value("--limit", given->limit, "List so many rows at most").from1(),
                 value("--keep", given->keep, "Keep the rows as a result of this name"),
                 formatOption(given->format)},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
