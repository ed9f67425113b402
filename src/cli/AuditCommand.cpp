#include "app/jobs/RebuildJob.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "cli/Commands.h"
#include "cli/RowCheck.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "rebuild/Harvest.h"
#include "rebuild/RebuildMethod.h"
#include "time/DateFormat.h"
#include "views/record/Audit.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <array>

namespace nv::cli {

namespace {

struct Arguments {
    std::string project;
    std::int64_t urlId = 0;
    bool wideIds = false;
    Format format = Format::table;
};

/// A table that lacked rows would pass for an audit.
std::vector<AuditRow> auditOf(UrlRecord &page, RecordTools &tools, const Program &program) {
    unpackPage(page, tools, program);
    const RebuildContext &ctx = tools.context();
    auto rows = loadAudit(page, rebuildFolderOf(page.URLID, ctx), ctx);
    if (!rows)
        throw StorageFailure(fmt::format("row {}: the audit can't be read; see \"{}\"", page.URLID,
                                         textOf(program.log.path())));
    return std::move(*rows);
}

/// What is known of references of pages that were rebuilt exactly.
constexpr std::array<const char *, 9> kExactHeadings = {
    "document", "element", "attribute", "address", "rule", "date", "seconds", "SHA-256", "cache"};

void addExact(std::vector<Cell> &cells, const PartNote &note) {
    cells.emplace_back(number(note.document));
    for (const std::string *text : {&note.element, &note.attribute, &note.address, &note.rule})
        cells.emplace_back(*text);
    cells.emplace_back(isoUtc(note.time));
    if (note.seconds)
        cells.emplace_back(*note.seconds);
    else
        cells.emplace_back(nullptr);
    cells.emplace_back(note.sha256);
}

std::vector<std::string> headingsFor(const UrlRecord &page) {
    std::vector<std::string> headings = {"number", "original",        "new",      "extension",
                                         "state",  "URL_ID",          "replaced", "score",
                                         "URL",    "other candidates"};
    if (isRebuiltExactly(page))
        headings.insert(headings.end(), kExactHeadings.begin(), kExactHeadings.end());
    return headings;
}

void writeRow(RowWriter &writer, const AuditRow &row) {
    std::vector<Cell> cells = {row.number,    row.originalValue,    row.newValue,     row.extension,
                               row.state,     row.tagURLID,         row.isReplaced(), row.score,
                               row.partUrl(), row.otherCandidates()};
    if (row.note) {
        addExact(cells, *row.note);
        cells.emplace_back(row.cache);
    }
    writer.row(cells);
}

Exit run(Session &session, const Arguments &arguments) {
    session.openForReading(arguments.project);
    Program &program = session.program;
    program.state.wideRecordIds |= arguments.wideIds;
    {
        RecordTools tools(program, session.task, session.scratch());
        const UrlId urlId = checkedRow(program.state.projectDB.connection(), arguments.urlId);
        auto page = tools.record(urlId);
        if (!page)
            throw StorageFailure(fmt::format("row {}: it can't be read; see \"{}\"", urlId,
                                             textOf(program.log.path())));
        if (!page->CacheFileRebuilt)
            throw UsageError(fmt::format("row {} was not rebuilt", urlId));
        const auto rows = auditOf(*page, tools, program);
        const auto writer = makeRowWriter(arguments.format, session.out, headingsFor(*page));
        for (const AuditRow &row : rows)
            writeRow(*writer, row);
        writer->finish();
        session.task.clear();
    }
    closeProject(program);
    return Exit::ok;
}

} // namespace

Command auditCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "audit",
        .what = "What stands for each reference of a rebuilt page",
        .readme = {"`audit PROJECT ID`", "tells what stands for each reference of a rebuilt page"},
        .examples = {{"audit case.nvp 17", "a page that was rebuilt"},
                     {"audit case.nvp 17 --format csv", ""}},
        .arguments = {projectWord(given->project),
                      value("URL_ID", given->urlId, "Key of the page's row").required(),
                      wideIdsFlag(given->wideIds), formatOption(given->format)},
        .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
