#include "app/jobs/SearchJob.h"
#include "app/jobs/Trail.h"
#include "base/Files.h"
#include "base/Text.h"
#include "cli/Commands.h"
#include "cli/SearchedRows.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "db/sql/SqliteErrors.h"
#include "search/SearchedRowReader.h"

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <optional>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::string file;
    bool words = false;
    bool all = false;
    bool hits = false;
    std::optional<std::string> keep;
    Format format = Format::table;
};

void writeTerms(Session &session, const Arguments &arguments, const KeywordList &list,
                const KeywordFound &found) {
    const auto writer =
        makeRowWriter(arguments.format, session.out, {"Term", "Rows", "Hits", "Line"});
    for (std::size_t term = 0; term < list.terms.size(); ++term)
        if (arguments.all || found.rows[term] > 0)
            writer->row({list.terms[term].text, found.rows[term], found.times[term],
                         list.terms[term].line});
    writer->finish();
}

void writeHits(Session &session, const Arguments &arguments, const KeywordList &list,
               const KeywordFound &found) {
    const auto writer =
        makeRowWriter(arguments.format, session.out,
                      {"URL_ID", "Term", "Field", "Hits", "Snippet", "Host", "URL"});
    SearchedRowReader reader(session.program.state.projectDB.connection());
    for (const KeywordHit &hit : found.hits) {
        if (interrupted)
            break;
        if (reader.row().id != hit.row && !reader.goTo(hit.row))
            continue;
        const SearchedRow &row = reader.row();
        writer->row({hit.row, list.terms[hit.term].text, fieldWord(hit.field), hit.hits,
                     snippetOf(row.at(hit.field), hit.first).text, row.at(SearchField::host),
                     row.at(SearchField::address)});
    }
    writer->finish();
}

std::string foundText(const KeywordList &list, const KeywordFound &found) {
    const auto met = std::ranges::count_if(found.rows, [](std::int64_t rows) { return rows > 0; });
    return fmt::format("{} of {} found in {} of {}", met, counted(list.terms.size(), "term"),
                       found.rowsFound,
                       counted(static_cast<std::uint64_t>(found.rowsLooked), "row"));
}

Exit tell(Session &session, const KeywordList &list, const KeywordFound &found) {
    session.err << foundText(list, found) << '\n';
    if (list.repeated > 0)
        session.err << fmt::format("{} of the list say what another says\n",
                                   counted(list.repeated, "line"));
    if (found.isCut)
        session.err << fmt::format("there are more hits than can be listed: the first {} are "
                                   "listed and kept, the counts are whole\n",
                                   found.hits.size());
    const Exit exit = tellUnsearched(session, found.unread, found.outside);
    return found.isCancelled || interrupted ? Exit::interrupted : exit;
}

Exit run(Session &session, const Arguments &arguments) {
    const auto asked = listAsked(session, arguments.file,
                                 arguments.words ? PlainTerms::wholeWords : PlainTerms::anywhere);
    SearchTraces traces(session, arguments.project, arguments.keep);
    Program &program = session.program;
    session.task.describe({"KEYWORDS", "Looking for the terms of a list...", asked->list.file, ""});
    const KeywordFound found = onProject(program.state.projectDB.connection(), [&] {
        return findKeywords(program.state.projectDB.connection(), *asked->terms, session.task);
    });
    session.task.clear();
    if (arguments.hits)
        writeHits(session, arguments, asked->list, found);
    else
        writeTerms(session, arguments, asked->list, found);
    return traces.leave(
        tell(session, asked->list, found),
        [&] { noteKeywords(program, asked->list, foundText(asked->list, found), found.rowsFound); },
        [&](const std::string &name) { keepKeywords(program, name, asked->list, found); });
}

} // namespace

Command keywordsCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "keywords",
            .what = "Look for all terms of a list in everything that the project holds as text",
            .readme = {"`keywords PROJECT FILE`",
                       "looks for all terms of a list in one pass; `--hits`, `--keep`"},
            .examples = {{"keywords case.nvp terms.txt", "how often each term stands where"},
                         {"keywords case.nvp terms.txt --hits --format csv > hits.csv", ""},
                         {"keywords case.nvp terms.txt --keep \"First list\"",
                          "kept as a result of that name"}},
            .arguments =
                {projectWord(given->project),
                 value("FILE", given->file,
                       "A text file with a term a line: a text, \"whole words\" or /expression/; "
                       "\"#\" begins a comment; - for the standard input")
                     .required(),
                 flag("--words", given->words, "All terms are found as whole words alone"),
                 flag("--all", given->all, "List the terms that aren't found too"),
                 flag("--hits", given->hits, "List each row, term and field, not the terms"),
                 value("--keep", given->keep, "Keep the hits as a result of this name"),
                 formatOption(given->format)},
            .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
