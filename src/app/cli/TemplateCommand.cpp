#include "app/Project.h"
#include "app/TemplateJob.h"
#include "app/cli/Commands.h"
#include "app/cli/HandOver.h"
#include "app/cli/OutputPath.h"
#include "app/cli/RowCheck.h"
#include "base/Files.h"
#include "rebuild/Harvest.h"
#include "rebuild/LocalNames.h"
#include "rebuild/TemplateList.h"
#include "rebuild/Templates.h"

#include <fmt/format.h>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

fs::path folderOf(const Program &program, const TemplateArguments &arguments) {
    return arguments.folder.empty() ? program.thisClass.TemplatesPath : fs::path(arguments.folder);
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
fs::path templateOf(const Program &program, const TemplateArguments &arguments) {
    const fs::path folder = folderOf(program, arguments);
    for (const fs::path &file : {fs::path(arguments.file), folder / arguments.file,
                                 folder / (arguments.file + std::string(kTemplateExtension))})
        if (fs::is_regular_file(file))
            return file;
    throw UsageError(fmt::format("there is no template \"{}\", here or in the folder \"{}\": "
                                 "`template list` lists them",
                                 arguments.file, textOf(folder)));
}

void checkOut(Program &program, const TemplateArguments &arguments) {
    if (arguments.out.empty())
        return;
    refuseEvidence(arguments.out, program.thisClass);
    refusePlainFile(arguments.out);
    if (!arguments.overwrite)
        refuseExisting(arguments.ids, arguments.out);
}

} // namespace

Exit templateCreateCommand(Session &session, const TemplateArguments &arguments) {
    session.open(arguments.project);
    Program &program = session.program;
    const auto ids = checkedRows(program.thisClass.ProjectDB.connection(), arguments.ids);
    program.thisClass.WideRecordIds |= arguments.wideIds;
    const fs::path folder = folderOf(program, arguments);
    refuseEvidence(folder, program.thisClass);
    Exit exit = Exit::ok;
    {
        RebuildTools tools(program, session.task, session.scratch());
        for (const std::int64_t id : ids) {
            auto page = tools.record(id);
            if (!page)
                throw StorageFailure(fmt::format("row {} can't be read; see \"{}\"", id,
                                                 textOf(program.log.path())));
            if (page->CacheFileRebuilt)
                unpackPage(*page, tools, program);
            const auto result = CreateTemplate(*page, folder, program.thisClass.AppVersion,
                                               arguments.overwrite ? IfTemplateExists::overwrite
                                                                   : IfTemplateExists::refuse,
                                               tools.context());
            session.out << fmt::format("{}  {}\n", textOf(templatePathOf(*page, folder)),
                                       wordOf(result));
            if (result != TemplateResult::made)
                exit = Exit::usage;
        }
        session.task.clear();
    }
    closeProject(program);
    return exit;
}

Exit templateListCommand(Session &session, const TemplateArguments &arguments, Format format) {
    const auto writer = makeRowWriter(format, session.out, {"file", "title", "files", "bytes"});
    const fs::path folder = folderOf(session.program, arguments);
    for (const TemplateRow &row : listTemplates(folder, session.program.log))
        writer->row({textOf(row.file), row.WebpageTitle, row.files, row.bytes});
    writer->finish();
    return Exit::ok;
}

Exit templateApplyCommand(Session &session, const TemplateArguments &arguments) {
    const std::vector<fs::path> templates{templateOf(session.program, arguments)};
    session.open(arguments.project);
    Program &program = session.program;
    const auto ids = checkedRows(program.thisClass.ProjectDB.connection(), arguments.ids);
    checkOut(program, arguments);
    program.thisClass.TemplateMatchByTitle = !arguments.anyTitle;
    Exit exit = Exit::ok;
    LaidTemplates laid;
    {
        RebuildTools tools(program, session.task, session.scratch());
        laid =
            RebuildFromTemplates(program, tools, ids, templates, [&](std::int64_t id, Laid result) {
                if (result == Laid::rebuilt && !arguments.out.empty())
                    handOver(rebuildFolderOf(UrlId{id}, tools.context()) / pageNameOf(UrlId{id}),
                             arguments.out);
                session.out << fmt::format("{:>9}  {}\n", id, wordOf(result));
                exit = result == Laid::rebuilt ? exit : Exit::nothingDone;
            });
        session.task.clear();
    }
    closeProject(program);
    return laid.cancelled ? Exit::interrupted : exit;
}

} // namespace nv::cli
