// The main window as the commands see it; how it is put together stands in MainFormParts.cpp.
#include "app/ui/MainForm.h"

#include "app/Messages.h"
#include "app/Project.h"
#include "app/Zones.h"
#include "app/ui/OptionsPart.h"
#include "app/ui/RebuildPart.h"
#include "app/ui/TextForm.h"
#include "app/ui/TipForm.h"
#include "app/ui/Workbench.h"
#include "app/ui/ZoneForm.h"
#include "base/Trap.h"
#include "db/ProjectFields.h"
#include "db/StoredQueries.h"
#include "db/WriteBatch.h"
#include "import/ui/ImportForm.h"
#include "platform/qt/QtText.h"
#include "views/QueryCommands.h"
#include "views/ui/TableTab.h"

#include <QApplication>

namespace nv {

namespace fs = std::filesystem;

void MainForm::run(const char *procedure, const std::function<void()> &command) {
    if (m_locks > 0)
        return;
    const auto failure = failureOf(m_program.log, procedure, command);
    if (failure)
        m_program.around.examiner.tell(messages::commandFailed(*failure));
    showProjectState();
}

void MainForm::runTask(const TaskHeading &heading, const std::function<void(TaskMonitor &)> &work) {
    Lock_Controls();
    const auto failure = failureOf(m_program.log, "MainForm.runTask()", [&] {
        const OpenTask task(m_program.thread, heading);
        work(m_program.thread);
    });
    Unlock_Controls();
    if (failure)
        m_program.around.examiner.tell(messages::commandFailed(*failure));
}

void MainForm::newProject() {
    const auto made = m_options->askNewProject([this] { m_commands.CloseFile(); });
    if (!made || !m_commands.OpenFile(made->path, OpenMode::newAtPath))
        return;
    m_options->storeNewProject(*made);
    LoadURLs();
}

void MainForm::openProject(const fs::path &path) {
    if (!m_commands.OpenFile(path, OpenMode::existing))
        return;
    m_commands.tellOfChangedDefaultQuery();
    LoadURLs();
    m_rebuild->tellOfWideIds();
    offerWebpages();
}

/// A big project is easier to read without its pictures and scripts.
void MainForm::offerWebpages() {
    constexpr std::size_t kBig = 10'000; // rows
    const bool big = m_table->table() && m_table->table()->rowCount() >= kBig;
    if (big && m_program.around.examiner.ask(messages::showOnlyWebpages()) == Answer::Yes)
        m_table->chooseQuery(QStringLiteral("_Show Only Webpages"));
}

/// The connection changes with the file, so the table is built anew.
void MainForm::saveAs() {
    m_commands.SaveAs();
    if (!isProjectOpen() || m_table->table())
        return;
    restoreLayout();
    LoadURLs();
}

void MainForm::import(const fs::path &start) {
    if (!m_bench->mayWrite())
        return;
    if (!isProjectOpen())
        newProject();
    if (!isProjectOpen())
        return;
    const auto chooseFolder = [this](const std::string &title, const fs::path &from) {
        return m_dialogs.chooseFolder(title, from);
    };
    ImportForm form(m_program, start, chooseFolder, this);
    form.exec();
    if (form.imported()) {
        LoadURLs();
        m_rebuild->tellOfWideIds();
    }
}

void MainForm::takePath(const fs::path &path) {
    if (isProjectName(path))
        run("MainForm.OpenFile()", [this, path] { openProject(path); });
    else
        run("MainForm.import()", [this, path] { import(path); });
}

void MainForm::LoadCommandLineFile(const fs::path &path) {
    Lock_Controls();
    const auto failure = failureOf(m_program.log, "MainForm.LoadCommandLineFile()",
                                   [&] { m_commands.LoadCommandLineFile(path); });
    if (!failure)
        m_rebuild->tellOfWideIds();
    Unlock_Controls();
    if (failure)
        m_program.around.examiner.tell(messages::openingFailed(*failure));
    showProjectState();
}

void MainForm::chooseBaseFolder() {
    const auto chosen = m_dialogs.chooseFolder(
        "Select the BASE root folder for all evidence in project:", m_program.thisClass.RootPath);
    if (!chosen)
        return;
    setRootPath(m_program, fs::canonical(*chosen));
    LoadURLs();
}

void MainForm::chooseTimeZone() {
    ZoneForm dialog(m_program, keyInList(m_program), this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    if (changeZone(m_program, dialog.key(), m_program.thread))
        LoadURLs();
}

void MainForm::showErrorLog() {
    QFile file(pathToQt(m_program.log.path()));
    const QString text = file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll())
                                                        : tr("No failure has been logged.");
    TextForm(tr("Error Log"), text, this).exec();
}

void MainForm::showTips() {
    const auto today = m_program.around.clock.now().time_since_epoch();
    const auto day = std::chrono::duration_cast<std::chrono::days>(today).count();
    TipForm(readTips(m_program.paths.tips()), static_cast<std::size_t>(day), m_program.settings,
            this)
        .exec();
}

void MainForm::showAbout() {
    const ThisClass &state = m_program.thisClass;
    m_program.around.examiner.tell(messages::about(state.AppTitle, state.AppVersion));
}

void MainForm::chooseTheme(Theme theme) {
    keepTheme(m_program.settings, theme);
    applyTheme(theme);
}

void MainForm::setCaption(const std::string &caption) {
    setWindowTitle(toQt(caption));
}

void MainForm::restoreLayout() {
    SQLite::Database &project = m_program.thisClass.ProjectDB.connection();
    const ProjectFields fields(project, m_program.log);
    const auto failure = failureOf(m_program.log, "MainForm.FormatColumns()", [&] {
        m_table->restoreLayout(
            [&fields](std::string_view name) { return fields.GetDefault(name); });
    });
    if (failure)
        m_program.around.examiner.tell(messages::columnsFailed(*failure));
    m_table->openProject(project, m_program.log, m_program.thisClass.GMTZone);
    emit m_bench->projectOpened();
    showQuickQueries();
    showProjectState();
    if (m_program.thisClass.ProjectDB.isReadOnly())
        showNotice(tr("Open for reading only: nothing is written to the project."));
}

/// Comes before the connection goes, so the table lets go of it too.
void MainForm::saveLayout() {
    m_table->closeProject();
    emit m_bench->projectClosing();
    keepLayout();
}

void MainForm::keepLayout() {
    if (!m_program.thisClass.ProjectDB.isOpen() || m_program.thisClass.ProjectDB.isReadOnly())
        return;
    SQLite::Database &project = m_program.thisClass.ProjectDB.connection();
    ProjectFields fields(project, m_program.log);
    WriteBatch batch(project);
    m_table->saveLayout([&fields](std::string_view name, std::string_view value) {
        fields.SaveDefaultSetting(name, value);
    });
    batch.commit();
}

void MainForm::showQuickQueries() {
    QStringList quick;
    for (const StoredQuery &query :
         StoredQueries(m_program.thisClass.ProjectDB.connection()).list()) {
        const QString name = toQt(query.name);
        if (isListedQuery(query.name) && isReservedQuery(query.name))
            quick += name;
    }
    m_menus.showQuickQueries(quick);
}

void MainForm::showRecentFiles() {
    m_menus.showRecentFiles(ConfigLastFilesOpened(m_program.settings));
}

void MainForm::clear() {
    if (m_table->table())
        m_table->closeProject();
    emit m_bench->projectClosing();
    m_table->setQueries({});
    showProjectState();
}

void MainForm::LoadURLs() {
    if (!m_table->table())
        return;
    m_table->table()->RootPath = textOf(m_program.thisClass.RootPath);
    m_table->table()->Filters = m_program.thisClass.Filters;
    m_table->table()->dates() = dateSettings(m_program);
    m_table->LoadURLs();
}

} // namespace nv
