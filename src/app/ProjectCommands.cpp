#include "app/ProjectCommands.h"

#include "app/jobs/ImportJob.h"
#include "app/jobs/ImportText.h"
#include "app/messages/Messages.h"
#include "app/program/TempFolder.h"
#include "app/project/EvidenceFolders.h"
#include "app/project/Project.h"
#include "app/project/RecentFiles.h"
#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "db/project/StoredQueries.h"
#include "db/sql/SideFiles.h"
#include "reports/exports/ExportFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <unistd.h>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// The copy stands aside until it is whole: a failure leaves what was at `to`. The log that a crash
/// left of that one would be read into the copy.
void copyProject(const fs::path &from, const fs::path &to) {
    ExportFile copy(to);
    copyToScratch(from, copy.aside());
    copy.finish();
    for (const std::string_view suffix : kSideSuffixes)
        fs::remove(sideFile(to, suffix)); // told when it can't be removed
}

bool isSameFile(const fs::path &one, const fs::path &other) {
    std::error_code neitherThere;
    return one == other || fs::equivalent(one, other, neitherThere);
}

constexpr std::string_view kDefaultQueryInCapitals =
    "SELECT * FROM URLS ORDER BY ACTIONDATELOCAL ASC";

ImportSummary importAlone(Program &program, const HistoryFile &artefact) {
    program.import.historyFiles.clear();
    program.import.gaps = {};
    program.import.historyFiles.add(artefact);
    const OpenTask task(program.task, {});
    return runImportJob(program, program.task, program.state.tempFolderPath);
}

} // namespace

std::optional<fs::path> ProjectCommands::pathFor(const fs::path &given, OpenMode mode) {
    if (mode == OpenMode::newByDialog)
        return m_dialogs.createNewProjectFilename();
    return given.empty() ? m_dialogs.chooseProject() : given;
}

bool ProjectCommands::create(const fs::path &path) {
    bool made = false;
    const auto refused = failureOf(m_program.log, "MainForm.OpenFile()",
                                   [&] { made = createProject(m_program, path, LogOf::project); });
    if (!made)
        m_program.around.examiner.tell(refused ? messages::openingFailed(*refused)
                                               : messages::databaseNotCreated());
    return made;
}

bool ProjectCommands::openFile(const fs::path &path, OpenMode mode) {
    if (m_program.state.projectDB.isOpen())
        closeFile();
    const auto chosen = pathFor(path, mode);
    if (!chosen)
        return false;
    if (!isProjectName(*chosen)) {
        m_program.around.examiner.tell(messages::notAProjectFile());
        return false;
    }
    const bool isNew = mode != OpenMode::existing;
    if (isNew ? !create(*chosen) : !openExisting(*chosen))
        return false;
    afterOpening();
    return isNew || checkVersion();
}

std::optional<Access> ProjectCommands::accessTo(const fs::path &path) {
    Examiner &examiner = m_program.around.examiner;
    const auto readOnly = [&examiner](const Message &question) {
        return examiner.ask(question) == Answer::Yes ? std::optional(Access::read) : std::nullopt;
    };
    if (const auto holder = holderOf(path, Front::window))
        return readOnly(messages::projectInUse(path, *holder));
    // Of the folder too: the log of an open project is a file beside it.
    const fs::path folder = fs::absolute(path).parent_path();
    const bool writable = ::access(path.c_str(), W_OK) == 0 && ::access(folder.c_str(), W_OK) == 0;
    if (!writable && ::access(path.c_str(), R_OK) == 0)
        return readOnly(messages::projectNotWritable(path));
    return Access::write;
}

bool ProjectCommands::openExisting(const fs::path &path) {
    const auto access = accessTo(path);
    if (!access)
        return false;
    const auto failure = failureOf(m_program.log, "MainForm.OpenFile()", [&] {
        openProject(m_program, path, *access, Holding::yes, LogOf::project);
    });
    if (failure)
        m_program.around.examiner.tell(messages::openingFailed(*failure));
    return !failure;
}

void ProjectCommands::afterOpening() {
    takeTempFolder(m_program, tempFolderFrom(m_program));
    m_view.restoreLayout();
    updateProgramCaption();
    storeFilenameINI(m_program.settings, m_program.state.projectDBPath);
    m_view.showRecentFiles();
}

bool ProjectCommands::checkVersion() {
    if (!isOlderProject(m_program))
        return true;
    Examiner &examiner = m_program.around.examiner;
    examiner.tell(messages::olderProject());
    if (m_program.state.projectDB.isReadOnly())
        return true;
    if (examiner.ask(messages::runUpgradeWizard()) == Answer::Yes)
        return upgradeAndReopen();
    examiner.tell(messages::versionCheckCanBeTurnedOff());
    return true;
}

/// The version isn't asked about again: an examiner who has left the wizard has decided.
bool ProjectCommands::upgradeAndReopen() {
    const fs::path project = m_program.state.projectDBPath;
    closeFile();
    m_view.showUpgradeWizard(project);
    if (!openExisting(project))
        return false;
    afterOpening();
    return true;
}

void ProjectCommands::upgradeWizard() {
    if (!m_program.state.projectDB.isOpen())
        return m_view.showUpgradeWizard({});
    if (m_program.around.examiner.ask(messages::upgradeClosesProject()) == Answer::Yes &&
        upgradeAndReopen())
        m_view.loadURLs();
}

void ProjectCommands::tellOfChangedDefaultQuery() {
    const auto text = StoredQueries(m_program.state.projectDB.connection()).text("_DEFAULT");
    std::string unified = toUpper(replaceAll(text.value_or(""), "\r\n", " "));
    std::replace_if(
        unified.begin(), unified.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
    if (trim(unified) != kDefaultQueryInCapitals)
        m_program.around.examiner.tell(messages::defaultQueryChanged());
}

void ProjectCommands::closeFile() {
    if (!m_program.state.projectDB.isOpen())
        return;
    const fs::path path = m_program.state.projectDBPath;
    resetPardRange(m_program.state);
    const auto failure = failureOf(m_program.log, "MainForm.CloseFile()", [this] {
        m_view.saveLayout();
        closeProject(m_program);
    });
    if (failure)
        m_program.around.examiner.tell(messages::closingFailed(*failure));
    m_view.clear();
    updateProgramCaption();
    storeFilenameINI(m_program.settings, path);
    m_view.showRecentFiles();
}

bool ProjectCommands::saveAs() {
    ProjectDatabase &project = m_program.state.projectDB;
    if (!project.isOpen() || project.isReadOnly())
        return false;
    const auto target = m_dialogs.chooseSaveAs();
    if (!target || isSameFile(*target, project.filePath))
        return false;
    if (const auto folder = evidenceAround(*target, m_program.state)) {
        m_program.around.examiner.tell(messages::liesInEvidence(*target, *folder));
        return false;
    }
    if (const auto holder = holderOf(*target, Front::window)) {
        m_program.around.examiner.tell(
            messages::saveAsFailed(fmt::format("\"{}\" is open already, for writing: {}\n\nThe "
                                               "project stays where it is.",
                                               textOf(*target), *holder)));
        return false;
    }
    const fs::path source = project.filePath;
    m_view.saveLayout();
    closeProject(m_program);
    const auto failure =
        failureOf(m_program.log, "MainForm.SaveAs()", [&] { copyProject(source, *target); });
    if (failure)
        m_program.around.examiner.tell(
            messages::saveAsFailed(*failure + "\n\nThe project stays where it is."));
    openProject(m_program, failure ? source : *target);
    updateProgramCaption();
    return !failure;
}

void ProjectCommands::updateProgramCaption() {
    const ProgramState &state = m_program.state;
    const bool open = m_program.state.projectDB.isOpen();
    const char *mode = open && state.projectDB.isReadOnly() ? " (reading only)" : "";
    m_view.setCaption(
        open ? fmt::format("{} - [{}]{}", state.appTitle, textOf(state.projectDBPath), mode)
             : state.appTitle);
}

bool ProjectCommands::loadCommandLineFile(const fs::path &path) {
    Examiner &examiner = m_program.around.examiner;
    if (!fs::is_regular_file(path)) {
        examiner.tell(messages::commandLineFileMissing());
        return false;
    }
    if (isProjectName(path)) {
        if (!openFile(path, OpenMode::existing))
            return false;
        m_view.loadURLs();
        return true;
    }
    const auto artefact = artefactOfCommandLine(path);
    if (!artefact) {
        examiner.tell(messages::commandLineFileUnknown());
        return false;
    }
    const fs::path scratch = tempFileNames(m_program.state.tempFolderPath).project;
    if (!openFile(scratch, OpenMode::newAtPath))
        return false;
    const ImportSummary summary = importAlone(m_program, *artefact);
    m_view.loadURLs();
    examiner.tell(messages::commandLineFileImported(outcomeText(summary)));
    return true;
}

} // namespace nv
