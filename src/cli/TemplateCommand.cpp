#include "app/jobs/TemplateJob.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "cli/Commands.h"
#include "cli/HandOver.h"
#include "cli/NamedTagRows.h"
#include "cli/OutputPath.h"
#include "cli/RowCheck.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "cli/UsageError.h"
#include "db/marks/RecordTags.h"
#include "rebuild/Harvest.h"
#include "rebuild/LocalNames.h"
#include "rebuild/TemplateList.h"
#include "rebuild/Templates.h"

#include <fmt/format.h>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

struct Arguments {
    std::string project;
    std::vector<std::int64_t> ids;
    std::string tag;    ///< whose rows in place of `ids`
    std::string file;   ///< a template
    std::string folder; ///< of templates; empty for the settings' one
    std::string out;    ///< folder that gets a folder a page; empty for none
    bool overwrite = false;
    bool anyTitle = false; ///< lay a template also over pages of another title
    bool wideIds = false;
    Format format = Format::table;
};

fs::path folderOf(const Program &program, const Arguments &arguments) {
    return arguments.folder.empty() ? program.state.templatesPath : fs::path(arguments.folder);
}

/// The rows that were named, or those of the tag.
std::vector<UrlId> pagesOf(SQLite::Database &project, const Arguments &arguments) {
    if (arguments.tag.empty() == arguments.ids.empty())
        throw UsageError("URL_ID, --tag: keys of rows or a tag were expected, one of the two");
    if (arguments.tag.empty())
        return differentRows(project, arguments.ids);
    const auto tagged = RecordTags(project).rowsOf(namedTag(project, arguments.tag).tagID);
    if (tagged.empty())
        throw UsageError(fmt::format("no row has the tag \"{}\"", printable(arguments.tag)));
    return differentRows(project, std::vector<std::int64_t>(tagged.begin(), tagged.end()));
}

std::string_view wordOf(TemplateResult result) {
    switch (result) {
    case TemplateResult::made:
        return "made";
    case TemplateResult::noRebuild:
        return "not made: the page was not rebuilt";
    case TemplateResult::exists:
        return "is there already; --overwrite replaces it";
    case TemplateResult::failed:
        break;
    }
    return "not made: the log says why";
}

std::string wordOf(Laid result) {
    if (result == Laid::rebuilt)
        return "rebuilt from the template";
    return fmt::format("not rebuilt: {}{}", reasonText(result),
                       result == Laid::otherTitle ? "; --any-title takes it all the same" : "");
}

/// A path, or the name of a template in the folder, with its extension or without.
fs::path templateOf(const Program &program, const Arguments &arguments) {
    const fs::path folder = folderOf(program, arguments);
    for (const fs::path &file : {fs::path(arguments.file), folder / arguments.file,
                                 folder / (arguments.file + std::string(kTemplateExtension))})
        if (fs::is_regular_file(file))
            return file;
    throw UsageError(fmt::format("there is no template \"{}\", here or in the folder \"{}\": "
                                 "`template list` lists them",
                                 arguments.file, textOf(folder)));
}

void checkOut(Program &program, const Arguments &arguments, std::span<const UrlId> ids) {
    if (arguments.out.empty())
        return;
    refuseEvidence(arguments.out, program.state);
    refusePlainFile(arguments.out);
    if (!arguments.overwrite)
        refuseExisting(ids, arguments.out);
}

Exit create(Session &session, const Arguments &arguments) {
    session.open(arguments.project);
    Program &program = session.program;
    const auto ids = pagesOf(program.state.projectDB.connection(), arguments);
    program.state.wideRecordIds |= arguments.wideIds;
    const fs::path folder = folderOf(program, arguments);
    refuseEvidence(folder, program.state);
    Exit exit = Exit::ok;
    {
        RecordTools tools(program, session.task, session.scratch());
        for (const UrlId id : ids) {
            auto page = tools.record(id);
            if (!page)
                throw StorageFailure(fmt::format("row {} can't be read; see \"{}\"", id,
                                                 textOf(program.log.path())));
            if (page->CacheFileRebuilt)
                unpackPage(*page, tools, program);
            const auto result = createTemplate(*page, folder, program.state.appVersion,
                                               arguments.overwrite ? IfTemplateExists::overwrite
                                                                   : IfTemplateExists::refuse,
                                               tools.context());
            session.out << fmt::format("{}  {}\n", printable(textOf(templatePathOf(*page, folder))),
                                       wordOf(result));
            if (result != TemplateResult::made)
                exit = Exit::usage;
        }
        session.task.clear();
    }
    closeProject(program);
    return exit;
}

Exit list(Session &session, const Arguments &arguments) {
    const auto writer =
        makeRowWriter(arguments.format, session.out, {"file", "title", "files", "bytes", "method"});
    const fs::path folder = folderOf(session.program, arguments);
    for (const TemplateRow &row : listTemplates(folder, session.program.log))
        writer->row({textOf(row.file), row.webpageTitle, row.files, row.bytes, row.method});
    writer->finish();
    return Exit::ok;
}

Exit apply(Session &session, const Arguments &arguments) {
    const std::vector<fs::path> templates{templateOf(session.program, arguments)};
    session.open(arguments.project);
    Program &program = session.program;
    const auto ids = pagesOf(program.state.projectDB.connection(), arguments);
    checkOut(program, arguments, ids);
    program.state.templateMatchByTitle = !arguments.anyTitle;
    Exit exit = Exit::ok;
    LaidTemplates laid;
    {
        RecordTools tools(program, session.task, session.scratch());
        laid = rebuildFromTemplates(program, tools, ids, templates, [&](UrlId id, Laid result) {
            if (result == Laid::rebuilt && !arguments.out.empty())
                handOver(rebuildFolderOf(id, tools.context()) / pageNameOf(id), arguments.out);
            session.out << fmt::format("{:>9}  {}\n", id, wordOf(result));
            exit = result == Laid::rebuilt ? exit : Exit::nothingDone;
        });
        session.task.clear();
    }
    closeProject(program);
    return laid.cancelled ? Exit::interrupted : exit;
}

Argument folderOption(Arguments &given) {
    return value("--folder", given.folder, "Folder of templates");
}

Argument pagesWord(Arguments &given) {
    return value("URL_ID", given.ids, "Keys of the pages' rows");
}

} // namespace

Command templateCommand() {
    return {.name = "template",
            .what = "Templates made of rebuilt pages",
            .readme = {"`template create, list, apply`",
                       "keeps a rebuilt page for others of its site"}};
}

Command templateCreateCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "template create",
        .what = "Make templates of rebuilt pages",
        .examples = {{"template create case.nvp 17", "of a page that was rebuilt"},
                     {"template create case.nvp 17 --folder mine --overwrite", ""}},
        .arguments = {folderOption(*given), projectWord(given->project), pagesWord(*given),
                      tagOption(given->tag),
                      flag("--overwrite", given->overwrite, "Replace templates of the same name"),
                      wideIdsFlag(given->wideIds)},
        .run = [given](Session &session) { return create(session, *given); }};
}

Command templateListCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "template list",
            .what = "The templates of the folder",
            .examples = {{"template list", ""}, {"template list --folder mine", ""}},
            .arguments = {folderOption(*given), formatOption(given->format)},
            .run = [given](Session &session) { return list(session, *given); }};
}

Command templateApplyCommand() {
    const auto given = std::make_shared<Arguments>();
    return {.name = "template apply",
            .what = "Lay a template over pages",
            .examples = {{"template apply case.nvp inbox.NVT 42", "by its name in the folder"},
                         {"template apply case.nvp inbox.NVT --tag Mail", "over all tagged pages"},
                         {"template apply case.nvp inbox.NVT 42 --out pages",
                          "and the page with its parts into a folder"}},
            .arguments = {folderOption(*given), projectWord(given->project),
                          value("TEMPLATE", given->file,
                                "Name of a template in the folder, or its file")
                              .required(),
                          pagesWord(*given), tagOption(given->tag),
                          value("--out", given->out, "Folder that gets a folder a page"),
                          flag("--overwrite", given->overwrite, "Replace folders of such pages"),
                          flag("--any-title", given->anyTitle, "Pages of another title too")},
            .run = [given](Session &session) { return apply(session, *given); }};
}

} // namespace nv::cli
