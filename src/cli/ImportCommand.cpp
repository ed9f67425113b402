#include "app/jobs/HashSetJob.h"
#include "app/jobs/ImportClaim.h"
#include "app/jobs/ImportJob.h"
#include "app/jobs/ImportText.h"
#include "app/jobs/ZoneJob.h"
#include "app/messages/Messages.h"
#include "app/program/DrawingTools.h"
#include "app/program/Zones.h"
#include "app/project/EvidenceFolders.h"
#include "app/project/Project.h"
#include "base/Files.h"
#include "base/NearestNames.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "cli/Commands.h"
#include "cli/EvidenceSearch.h"
#include "cli/FoundList.h"
#include "cli/ImportJson.h"
#include "cli/ImportSummaryFile.h"
#include "cli/LoadedTable.h"
#include "cli/OutputPath.h"
#include "cli/RowWriter.h"
#include "cli/Session.h"
#include "cli/SharedArguments.h"
#include "db/project/StoredQueries.h"
#include "import/ImportTrail.h"
#include "import/Scan.h"
#include "readers/Registry.h"
#include "views/overview/FoundTree.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <unistd.h>

namespace nv::cli {

namespace fs = std::filesystem;

namespace {

struct Arguments {
    std::string project;
    std::vector<std::string> paths;
    std::string base;
    std::string zone; ///< its key: see app/program/Zones.h; empty or "0" keeps the project's
    std::vector<std::string> kinds;
    std::string as; ///< key of the reader that takes every PATH; empty to find artefacts
    bool classic = false;
    bool secrets = false;
    bool noMetadata = false;
    bool noSignatures = false;
    bool hashSets = false;
    bool thumbnails = false;
    std::string summary; ///< a page of the summary; empty for none
    bool found = false;
    std::string format = "text"; ///< or "json"
};

void checkPaths(const Arguments &arguments) {
    for (const std::string &path : arguments.paths)
        if (!fs::exists(path))
            throw UsageError(fmt::format("there is no file or folder \"{}\"", path));
    if (!arguments.base.empty() && !fs::is_directory(arguments.base))
        throw UsageError(fmt::format("the base folder \"{}\" does not exist", arguments.base));
}

/// Which base folder the import gives to a project that has none yet.
fs::path baseOf(const Arguments &arguments) {
    return arguments.base.empty() ? commonFolder({arguments.paths.begin(), arguments.paths.end()})
                                  : fs::canonical(arguments.base);
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

bool namesZone(const Arguments &arguments) {
    return !arguments.zone.empty() && arguments.zone != "0";
}

void checkZone(Session &session, const Arguments &arguments) {
    if (!namesZone(arguments))
        return;
    const CheckedZone zone = checkedZone(session.program, arguments.zone);
    if (!zone.refusal.empty())
        throw UsageError(fmt::format("--zone: {}", printable(zone.refusal)));
}

/// Nobody is there to choose: what the evidence names is told, and --zone takes it.
void tellZoneHints(Session &session, const Arguments &arguments) {
    if (namesZone(arguments))
        return;
    Program &program = session.program;
    for (const std::string &path : arguments.paths)
        for (const ZoneHint &hint :
             knownZoneHints(program, fs::canonical(path), program.import.historyFiles))
            if (hint.zone != program.state.gmtZone.tzName)
                session.err << fmt::format("the evidence names the zone {} ({}): --zone {} shows "
                                           "dates in it\n",
                                           hint.zone, printable(textOf(hint.file)), hint.zone);
}

[[noreturn]] void refuseKey(std::string_view what, const std::string &key,
                            const std::vector<std::string> &known) {
    throw UsageError(fmt::format("there is no {} \"{}\". The nearest keys: {}", what,
                                 printable(key), fmt::join(nearestNames(key, known), ", ")));
}

AskedKinds askedKinds(const std::vector<std::string> &keys) {
    AskedKinds asked;
    for (const std::string &key : keys)
        if (!asked.add(key))
            refuseKey("reader and no kind of record", key, keysToAskFor());
    return asked;
}

void checkAs(const Arguments &arguments) {
    if (arguments.as.empty())
        return;
    if (!readerByKey(arguments.as)) {
        std::vector<std::string> readers;
        for (const Reader *reader : registry())
            readers.emplace_back(reader->key);
        refuseKey("reader", arguments.as, readers);
    }
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

/// Its rows stand beside those that come now.
void tellUnendedImports(Session &session) {
    for (const UnendedImport &import : unendedImports(session.program.state.projectDB.connection()))
        session.err << printable(fmt::format("An earlier import {}.", reasonOf(import))) << '\n';
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

void tellNotAsked(Session &session, std::size_t count) {
    session.err << fmt::format("{} of other kinds found, not asked for\n",
                               counted(count, "artefact"));
}

/// There was nothing to read, and nothing stood in the way of finding it.
bool isNothing(const ImportSummary &summary) {
    return summary.artefacts.empty() && summary.gaps.unreadable.empty() && !summary.cancelled;
}

/// Absence is told only where there is nothing of a browser.
void tellWhatIsLeftOut(Session &session, const ImportSummary &summary, const ScanResult &search) {
    if (search.notAsked > 0)
        tellNotAsked(session, search.notAsked);
    else if (summary.artefacts.empty() && !summary.cancelled)
        session.err << messages::nothingToImport().text << '\n';
    if (isNothing(summary))
        session.err << "Nothing was imported: the project has no more rows than before.\n";
    if (summary.artefacts.empty() && session.program.import.classicOnly)
        session.err << "Only the classic rules were asked for: what today's browsers keep was not "
                       "looked for.\n";
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
    if (isNothing(summary))
        return Exit::nothingFound;
    const bool damaged = summary.count(ArtefactState::failed) > 0 ||
                         summary.count(ArtefactState::cutShort) > 0 ||
                         summary.count(ArtefactState::notReadYet) > 0 || summary.rowsLost() > 0 ||
                         !summary.gaps.unreadable.empty();
    return damaged ? Exit::damagedEvidence : Exit::ok;
}

void setUp(ImportSettings &job, const Arguments &arguments, const AskedKinds &asked) {
    job.verifyFileSignatures &= !arguments.noSignatures;
    job.parseAdvancedMetadata &= !arguments.noMetadata;
    job.makeThumbnails = arguments.thumbnails;
    job.classicOnly |= arguments.classic;
    job.secrets = arguments.secrets;
    job.asked = asked;
}

/// What an import would take. The project is neither made nor opened.
Exit listFound(Session &session, const Arguments &arguments, const ScanGaps &unreachable) {
    checkPaths(arguments);
    const AskedKinds asked = askedKinds(arguments.kinds);
    checkAs(arguments);
    Program &program = session.program;
    setUp(program.import, arguments, asked);
    const ScanResult found = findArtefacts(session, arguments.paths, arguments.as, unreachable);
    FoundTree tree;
    const bool isWhole =
        !found.cancelled && groupFound(program.import.historyFiles, found.places, session.task,
                                       program.log, tree) == Walk::Finished;
    session.task.clear();
    if (!isWhole)
        return Exit::interrupted;
    if (found.notAsked > 0)
        tellNotAsked(session, found.notAsked);
    tellZoneHints(session, arguments);
    const FoundList list{tree, program.import.historyFiles, program.import.gaps};
    if (arguments.format == "json")
        session.out << foundJson(list);
    else
        writeFound(session, list);
    if (!program.import.gaps.unreadable.empty())
        return Exit::damagedEvidence;
    return tree.files == 0 ? Exit::nothingFound : Exit::ok;
}

Exit run(Session &session, const Arguments &given) {
    Arguments arguments = given;
    const ScanGaps unreachable = takeUnreachable(arguments.paths, session.program.log);
    if (arguments.found)
        return listFound(session, arguments, unreachable);
    checkDrawing(arguments);
    checkPaths(arguments);
    checkProjectPlace(arguments);
    requireZones(session.program);
    checkZone(session, arguments);
    const AskedKinds asked = askedKinds(arguments.kinds);
    checkAs(arguments);
    session.program.import.hashSets = arguments.hashSets;
    static_cast<void>(hashSetsForImport(session.program)); // before a project is made
    const ImportClaim claim(arguments.project);
    openOrCreate(session, arguments.project);
    tellUnendedImports(session);
    Program &program = session.program;
    if (namesZone(arguments))
        changeZone(program, arguments.zone, session.task);
    requireZones(program); // now that of the project
    requireSchema(program);
    chooseBase(session, arguments);
    SummaryPage page(session, arguments.summary);
    setUp(program.import, arguments, asked);

    ImportSummary summary;
    const ScanResult search = findArtefacts(session, arguments.paths, arguments.as, unreachable);
    summary.cancelled = search.cancelled;
    session.task.clear();
    tellZoneHints(session, arguments);
    if (!summary.cancelled)
        summary = runImportJob(program, session.task, session.scratch());
    session.task.clear();
    tellWhatIsLeftOut(session, summary, search);
    const bool hasPage = page.write(summary);
    closeTold(program, summary);
    session.out << (arguments.format == "json" ? importJson(summary)
                                               : printableLines(summaryText(summary)));
    const Exit exit = exitFor(summary);
    return exit == Exit::ok && !hasPage ? Exit::projectUnusable : exit;
}

} // namespace

Command importCommand() {
    const auto given = std::make_shared<Arguments>();
    return {
        .name = "import",
        .what = "Import artefacts into a project, which is made when needed",
        .readme = {"`import PROJECT PATH...`",
                   "finds and reads artefacts into a project, which is made when needed; "
                   "`--found`, `--kinds`, `--as`, `--classic`, `--zone`, `--hash-sets`, "
                   "`--thumbnails`"},
        .examples = {{"import case.nvp /mnt/seized", "all that is found below a folder"},
                     {"import case.nvp /mnt/seized --found",
                      "what that would be, before anything is imported"},
                     {"import case.nvp /mnt/seized/History --zone Europe/Berlin",
                      "one file, dates by the law of that zone"}},
        .arguments =
            {projectWord(given->project),
             value("PATH", given->paths, "Folders or files of evidence").required(),
             value("--base", given->base, "Base folder of the evidence (default: the PATH)"),
             value("--zone", given->zone,
                   "Time zone of the project: a name such as Europe/Berlin, or a number; the "
                   "command zones lists them"),
             value("--kinds", given->kinds,
                   "Only these readers or kinds of records, by key, separated by commas")
                 .separatedByCommas(),
             value("--as", given->as,
                   "Take each PATH, a file, as the artefact of this reader, whatever it is called"),
             flag("--classic", given->classic, "Only the files and rows of the classic rules"),
             flag("--secrets", given->secrets, "Store passwords too, where they can be read"),
             flag("--no-metadata", given->noMetadata, "Don't read cached pages' contents"),
             flag("--no-signatures", given->noSignatures, "Recognise files by name alone"),
             flag("--hash-sets", given->hashSets,
                  "Hash all cached content and look for it in the hash sets"),
             flag("--thumbnails", given->thumbnails, "Make thumbnails while importing"),
             value("--summary", given->summary, "Also write the summary as a page, *.html"),
             flag("--found", given->found,
                  "Only list what is found, by folder, person, browser, profile and kind: nothing "
                  "is imported, and no project is made"),
             value("--format", given->format, "text or json")
                 .oneOf({"text", "json"})
                 .showingDefault()},
        .run = [given](Session &session) { return run(session, *given); }};
}

} // namespace nv::cli
