#include "app/Project.h"
#include "app/RebuildJob.h"
#include "app/cli/Commands.h"
#include "base/Files.h"
#include "rebuild/Harvest.h"
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

URLClass recordOf(RebuildTools &tools, std::int64_t id) {
    auto page = tools.record(id);
    if (!page)
        throw UsageError(fmt::format("the project has no row {}", id));
    return *page;
}

} // namespace

Exit templateCreateCommand(Session &session, const TemplateArguments &arguments) {
    session.open(arguments.project);
    Program &program = session.program;
    program.thisClass.WideRecordIds |= arguments.wideIds;
    const fs::path folder = folderOf(program, arguments);
    Exit exit = Exit::ok;
    {
        RebuildTools tools(program, session.task, session.scratch());
        for (const std::int64_t id : arguments.ids) {
            URLClass page = recordOf(tools, id);
            if (page.CacheFileRebuilt)
                UnpackIngredients(page, tools.context());
            const auto result = CreateTemplate(page, folder, program.thisClass.AppVersion,
                                               arguments.overwrite ? IfTemplateExists::overwrite
                                                                   : IfTemplateExists::refuse,
                                               tools.context());
            session.out << fmt::format("{}  {}\n", textOf(templatePathOf(page, folder)),
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
    for (const fs::path &file : templatesIn(folderOf(session.program, arguments))) {
        const Bytes bytes = readWhole(file);
        const bool isWhole = bytes.size() >= 0x1000;
        const TemplateClass made = isWhole ? readTemplate(ByteView(bytes)) : TemplateClass();
        writer->row({textOf(file), made.WebpageTitle, made.records.Count(), bytes.size()});
    }
    writer->finish();
    return Exit::ok;
}

Exit templateApplyCommand(Session &session, const TemplateArguments &arguments) {
    if (!fs::is_regular_file(arguments.file))
        throw UsageError(fmt::format("there is no template \"{}\"", arguments.file));
    session.open(arguments.project);
    Program &program = session.program;
    Exit exit = Exit::ok;
    {
        RebuildTools tools(program, session.task, session.scratch());
        const Bytes bytes = readWhole(arguments.file);
        const TemplateClass made = readTemplate(ByteView(bytes));
        for (const std::int64_t id : arguments.ids) {
            URLClass page = recordOf(tools, id);
            const bool fits = arguments.anyTitle || templateMatchesTitle(made, page.WebpageTitle);
            const bool done = fits && RebuildFromTemplate(page, arguments.file, tools.context(),
                                                          program.around.clock);
            session.out << fmt::format("{:>9}  {}\n", id,
                                       done   ? "rebuilt from the template"
                                       : fits ? "not rebuilt: the log says why"
                                              : "not rebuilt: its title is another; --any-title "
                                                "takes it all the same");
            exit = done ? exit : Exit::usage;
        }
    }
    closeProject(program);
    return exit;
}

} // namespace nv::cli
