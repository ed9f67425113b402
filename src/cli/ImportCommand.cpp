#include "app/jobs/ImportClaim.h"
#include "app/jobs/ImportJob.h"
#include "app/jobs/ImportText.h"
#include "app/messages/Messages.h"
#include "app/program/DrawingTools.h"
#include "app/project/EvidenceFolders.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "cli/Commands.h"
#include "cli/ImportJson.h"
#include "cli/LoadedTable.h"
#include "cli/OutputPath.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "db/StoredQueries.h"
#include "import/Scan.h"
#include "readers/Registry.h"
#include "time/ZoneDatabase.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <unistd.h>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

struct Arguments {
    std::string project;
    std::vector<std::string> paths;
    std::string base;
    std::int64_t zone = 0; ///< `timeZoneID`; 0 keeps the project's
    std::vector<std::string> kinds;
    std::string as; ///< key of the reader that takes every PATH; empty to find artefacts
    bool noMetadata = false;
    bool noSignatures = false;
    bool thumbnails = false;
    std::string format = "text"; ///< or "json"
};

/// Takes the paths away of which nothing can be found out, as of those in a folder that may not be
/// entered: the others are imported.
ScanGaps takeUnreachable(std::vector<std::string> &paths, FailureLog &log) {
    ScanGaps gaps;
    std::erase_if(paths, [&](const std::string &path) {
        std::error_code failed;
        if (fs::status(path, failed).type() != fs::file_type::none)
            return false;
        const std::string reason = FileFailure("cannot open", path, failed.value()).what();
        log.write({reason, "ImportForm.NextBtn_Click()", Severity::Warning,
                   std::string(kContactSupport)});
        gaps.unreadable.push_back({fs::absolute(path).lexically_normal(), reason});
        return true;
    });
    return gaps;
}

void checkPaths(const Arguments &arguments) {
    for (const std::string &path : arguments.paths)
        if (!fs::exists(path))
            throw UsageError(fmt::format("there is no file or folder \"{}\"", path));
    if (!arguments.base.empty() && !fs::is_directory(arguments.base))
        throw UsageError(fmt::format("the base folder \"{}\" does not exist", arguments.base));
}

/// The deepest folder that holds all paths.
fs::path commonFolder(const std::vector<std::string> &paths) {
    fs::path common;
    for (const std::string &text : paths) {
        const fs::path path = fs::canonical(text);
        const fs::path folder = fs::is_directory(path) ? path : path.parent_path();
        if (common.empty()) {
            common = folder;
            continue;
        }
        const auto [end, ignored] =
            std::mismatch(common.begin(), common.end(), folder.begin(), folder.end());
        fs::path shared;
        for (auto part = common.begin(); part != end; ++part)
            shared /= *part;
        common = shared;
    }
    return common;
}

/// Which base folder the import gives to a project that has none yet.
fs::path baseOf(const Arguments &arguments) {
    return arguments.base.empty() ? commonFolder(arguments.paths) : fs::canonical(arguments.base);
}

/// Evidence is only read: a project among it would change what other tools see of it. One that is
/// there already has a base folder, which only --base changes.
void checkProjectPlace(const Arguments &arguments) {
    for (const std::string &path : arguments.paths)
        if (fs::is_directory(path))
            refuseEvidence(arguments.project, fs::canonical(path));
    if (!fs::exists(arguments.project) || !arguments.base.empty())
        refuseEvidence(arguments.project, baseOf(arguments));
}

void checkZone(Session &session, std::int64_t id) {
    const auto zones = ZoneDatabase(session.program.paths.zones(), session.program.log).listZones();
    const bool known =
        id == 0 || std::any_of(zones.begin(), zones.end(),
                               [id](const ZoneRow &zone) { return zone.timeZoneID == id; });
    if (!known)
        throw UsageError(fmt::format("there is no time zone {}: see the command zones", id));
}

void checkKinds(const std::vector<std::string> &kinds) {
    for (const std::string &kind : kinds)
        if (!readerByKey(kind))
            throw UsageError(fmt::format("there is no reader \"{}\"", kind));
}

void checkAs(const Arguments &arguments) {
    if (arguments.as.empty())
        return;
    checkKinds({arguments.as});
    for (const std::string &path : arguments.paths)
        if (!fs::is_regular_file(path))
            throw UsageError(fmt::format("\"{}\": --as needs a file", path));
}

/// Asked for before anything is read: whoever wants thumbnails shan't learn at the end of a long
/// import that there are none.
void checkDrawing(const Arguments &arguments) {
    if (arguments.thumbnails && !canDraw())
        throw StorageFailure(fmt::format("--thumbnails: {}. Nothing was imported: without "
                                         "--thumbnails all is, and the command thumbnails draws "
                                         "them later.",
                                         whyNoDrawing()));
}

void checkProjectFolder(const fs::path &project) {
    const fs::path folder = fs::absolute(project).parent_path();
    if (!fs::is_directory(folder))
        throw StorageFailure(fmt::format("\"{}\": there is no folder \"{}\" for the project",
                                         textOf(project), textOf(folder)));
    if (::access(folder.c_str(), W_OK) != 0)
        throw StorageFailure(fmt::format("\"{}\": the folder \"{}\" can't be written",
                                         textOf(project), textOf(folder)));
}

/// The queries of a new project hold the terms themselves: lists that are found later change
/// nothing.
void tellMissingLists(Session &session) {
    StoredQueries queries(session.program.state.projectDB.connection());
    for (const StoredQuery &query : queries.list())
        if (lacksTerms(query.sql))
            session.err << missingTerms(query.name) << '\n';
}

/// Opens the project, or makes it when there is none.
void openOrCreate(Session &session, const fs::path &project) {
    if (fs::exists(project) || !isProjectName(project))
        return session.open(project);
    checkProjectFolder(project);
    if (!createProject(session.program, project))
        throw StorageFailure(fmt::format("\"{}\": {} The log \"{}\" says why.", textOf(project),
                                         messages::databaseNotCreated().text,
                                         textOf(session.program.log.path())));
    tellMissingLists(session);
}

/// A project keeps the base folder of its first import, since its rows are found by it, until
/// another one is named.
void chooseBase(Session &session, const Arguments &arguments) {
    if (!arguments.base.empty() || session.program.state.rootPath.empty()) {
        const fs::path base = baseOf(arguments);
        refuseEvidence(arguments.project, base);
        if (!base.empty())
            setRootPath(session.program, base);
    }
    for (const std::string &path : arguments.paths)
        keepEvidenceFolder(session.program, path);
}

bool isWanted(const HistoryFile &file, const std::set<std::string_view> &kinds) {
    const Reader *reader = readerFor(file.historyFileType);
    return kinds.empty() || (reader && kinds.contains(reader->key));
}

ScanResult scanPath(Session &session, const Arguments &arguments, const fs::path &path) {
    Program &program = session.program;
    if (const Reader *reader = readerByKey(arguments.as))
        return listAs(*reader, path, session.task, program.log);
    program.import.startingDirectory = path.string();
    return scan(program.import, session.task, program.log);
}

void tellUnknown(Session &session, const fs::path &path, const ScanResult &found) {
    const bool nothing = found.historyFiles.count() == 0 && found.gaps.unreadable.empty();
    // Whoever names a file expects it to be read.
    if (fs::is_regular_file(path) && nothing && !found.cancelled)
        session.err << fmt::format(
            "\"{}\" is not known as an artefact by its name, place and first "
            "bytes; --as READER takes it as one\n",
            printable(textOf(path)));
}

/// Scans every path; false when the scan was cancelled. `gaps` are known before.
bool findArtefacts(Session &session, const Arguments &arguments, const ScanGaps &gaps) {
    ImportSettings &job = session.program.import;
    const std::set<std::string_view> kinds(arguments.kinds.begin(), arguments.kinds.end());
    job.historyFiles.clear();
    job.gaps = gaps;
    for (const std::string &path : arguments.paths) {
        const ScanResult found = scanPath(session, arguments, fs::canonical(path));
        for (const HistoryFile &file : found.historyFiles)
            if (isWanted(file, kinds))
                job.historyFiles.add(file);
        job.gaps.add(found.gaps);
        tellUnknown(session, path, found);
        if (found.cancelled)
            return false;
    }
    return true;
}

/// A project that can't be closed, for instance on a full disk, still holds what the summary tells.
void closeTold(Program &program, ImportSummary &summary) {
    const auto failure =
        failureOf(program.log, "MainForm.CloseFile()", [&program] { closeProject(program); });
    if (failure && summary.failure.empty())
        summary.failure = *failure;
}

Exit exitFor(const ImportSummary &summary) {
    if (!summary.failure.empty() || !summary.thumbnails.failure.empty())
        return Exit::projectUnusable;
    if (summary.cancelled)
        return Exit::interrupted;
    const bool damaged = summary.count(ArtefactState::failed) > 0 ||
                         summary.count(ArtefactState::cutShort) > 0 ||
                         summary.count(ArtefactState::notReadYet) > 0 || summary.rowsLost() > 0 ||
                         !summary.gaps.unreadable.empty();
    return damaged ? Exit::damagedEvidence : Exit::ok;
}

Exit run(Session &session, const Arguments &given) {
    Arguments arguments = given;
    const ScanGaps unreachable = takeUnreachable(arguments.paths, session.program.log);
    checkDrawing(arguments);
    checkPaths(arguments);
    checkProjectPlace(arguments);
    requireZones(session.program);
    checkZone(session, arguments.zone);
    checkKinds(arguments.kinds);
    checkAs(arguments);
    const ImportClaim claim(arguments.project);
    openOrCreate(session, arguments.project);
    Program &program = session.program;
    if (arguments.zone > 0)
        setZone(program, arguments.zone);
    requireZones(program); // now that of the project
    chooseBase(session, arguments);
    program.import.verifyFileSignatures &= !arguments.noSignatures;
    program.import.parseAdvancedMetadata &= !arguments.noMetadata;
    program.import.makeThumbnails = arguments.thumbnails;

    ImportSummary summary;
    summary.cancelled = !findArtefacts(session, arguments, unreachable);
    if (!summary.cancelled)
        summary = runImportJob(program, session.task, session.scratch());
    session.task.clear();
    if (summary.artefacts.empty() && !summary.cancelled)
        session.err << messages::nothingToImport().text << '\n';
    closeTold(program, summary);
    session.out << (arguments.format == "json" ? importJson(summary)
                                               : printableLines(summaryText(summary)));
    // A folder may well hold nothing; a file was named because it was thought to be one.
    const bool unknown =
        summary.artefacts.empty() && summary.gaps.unreadable.empty() && !summary.cancelled &&
        std::ranges::any_of(arguments.paths,
                            [](const std::string &path) { return fs::is_regular_file(path); });
    return unknown ? Exit::usage : exitFor(summary);
}

} // namespace

Command importCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "import",
        .what = "Import artefacts into a project, which is made when needed",
        .readme = {"`import PROJECT PATH...`",
                   "finds and reads artefacts into a project, which is made when needed; "
                   "`--kinds`, `--as`, `--zone`, `--thumbnails`"},
        .examples = {{"import case.nvp /mnt/seized", "all that is found below a folder"},
                     {"import case.nvp /mnt/seized/History --zone 15",
                      "one file, dates shown in the zone 15"},
                     {"import case.nvp /mnt/seized --thumbnails",
                      "pictures and pages drawn small as well"}},
        .arguments =
            {projectWord(given->project),
             value("PATH", given->paths, "Folders or files of evidence").required(),
             value("--base", given->base, "Base folder of the evidence (default: the PATH)"),
             value("--zone", given->zone, "Time zone of the project, see the command zones"),
             value("--kinds", given->kinds, "Only these readers, by key, separated by commas")
                 .separatedByCommas(),
             value("--as", given->as,
                   "Take each PATH, a file, as the artefact of this reader, whatever it is called"),
             flag("--no-metadata", given->noMetadata, "Don't read cached pages' contents"),
             flag("--no-signatures", given->noSignatures, "Recognise files by name alone"),
             flag("--thumbnails", given->thumbnails, "Make thumbnails while importing"),
             value("--format", given->format, "text or json")
                 .oneOf({"text", "json"})
                 .showingDefault()},
        .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
