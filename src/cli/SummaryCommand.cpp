#include "app/jobs/ImportPageJob.h"
#include "app/project/Project.h"
#include "cli/Commands.h"
#include "cli/ImportSummaryFile.h"
#include "cli/RowWriter.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "reports/report/ImportPage.h"
#include "time/DateFormat.h"

#include <nlohmann/json.hpp>

namespace nv::cli {

namespace {

using Json = nlohmann::ordered_json;

enum class Form { text, json };

struct Arguments {
    std::string project;
    bool all = false;
    Form form = Form::text;
    std::string out; ///< the page; empty for none
    bool overwrite = false;
};

Json jsonOf(const std::vector<ImportCount> &counts) {
    Json all = Json::array();
    for (const ImportCount &count : counts)
        all.push_back({{"name", count.name},
                       {"rows", count.rows.rows},
                       {"first", isoUtc(count.rows.first)},
                       {"last", isoUtc(count.rows.last)}});
    return all;
}

std::string_view keyOf(ImportLight light) {
    return light == ImportLight::green ? "green" : light == ImportLight::amber ? "amber" : "red";
}

Json jsonOf(const ImportOverview &overview) {
    Json gaps = Json::array();
    for (const ImportGap &gap : overview.gaps)
        gaps.push_back({{"file", gap.file},
                        {"place", gap.place},
                        {"state", gap.state},
                        {"reason", gap.reason},
                        {"light", keyOf(gap.light)}});
    return {{"light", keyOf(lightOf(overview))},
            {"headline", headlineOf(overview)},
            {"meaning", lightText(overview)},
            {"all_imports", overview.scope == ImportScope::all},
            {"ended", isoUtc(overview.ended)},
            {"version", overview.version},
            {"files_found", overview.found},
            {"files_read", overview.read},
            {"rows", overview.rows.rows},
            {"first", isoUtc(overview.rows.first)},
            {"last", isoUtc(overview.rows.last)},
            {"people", jsonOf(overview.people)},
            {"browsers", jsonOf(overview.browsers)},
            {"profiles", jsonOf(overview.profiles)},
            {"kinds", jsonOf(overview.kinds)},
            {"not_read", gaps},
            {"notes", notesOf(overview)},
            {"cancelled", overview.end.cancelled},
            {"failure", overview.end.failure}};
}

void write(Session &session, const ImportOverview &overview, Form form) {
    session.out << (form == Form::json
                        ? jsonOf(overview).dump(2, ' ', false, Json::error_handler_t::replace) +
                              "\n"
                        : printableLines(importText(overview)));
}

void openProjectFor(Session &session, const Arguments &arguments) {
    if (arguments.out.empty())
        session.openForReading(arguments.project);
    else
        static_cast<void>(session.openForNote(arguments.project));
}

Exit run(Session &session, const Arguments &arguments) {
    openProjectFor(session, arguments);
    Program &program = session.program;
    if (!arguments.out.empty())
        checkSummaryFile(session, arguments.out, arguments.overwrite);
    ImportOverview overview;
    const Walk walk = loadImportOverview(program.state.projectDB.connection(),
                                         arguments.all ? ImportScope::all : ImportScope::last,
                                         session.task, overview);
    session.task.clear();
    if (walk == Walk::Cancelled)
        return Exit::interrupted;
    if (!arguments.out.empty())
        saveImportPage(program, overview, arguments.out);
    write(session, overview, arguments.form);
    closeProject(program);
    return overview.isCounted ? Exit::ok : Exit::damagedEvidence;
}

} // namespace

Command summaryCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "summary",
        .what = "What the last import came to: how complete it is, counts, what was not read",
        .readme = {"`summary PROJECT`",
                   "tells how complete the last import is, what it brought and what was not "
                   "read; `--all`, `--out FILE.html`, `--format json`"},
        .examples = {{"summary case.nvp", "the last import"},
                     {"summary case.nvp --all --out summary.html --overwrite",
                      "all imports, also as a page for a browser"}},
        .arguments = {projectWord(given->project),
                      flag("--all", given->all, "All imports into the project"),
                      choice<Form>("--format", given->form,
                                   {{"text", Form::text}, {"json", Form::json}}, "text or json"),
                      value("--out", given->out, "The page to write, *.html"),
                      flag("--overwrite", given->overwrite, "Replace the page when it is there")},
        .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
