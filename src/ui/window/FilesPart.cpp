#include "ui/window/FilesPart.h"

#include "app/jobs/ZoneJob.h"
#include "app/messages/Messages.h"
#include "app/program/Zones.h"
#include "app/project/Project.h"
#include "platform/qt/QtText.h"
#include "ui/import/ImportForm.h"
#include "ui/views/ZoneForm.h"
#include "ui/window/OptionsPart.h"
#include "ui/window/RebuildPart.h"
#include "ui/window/Workbench.h"

#include <QAction>

namespace nv {

namespace fs = std::filesystem;

FilesPart::FilesPart(Workbench &bench, ProjectCommands &commands, ProjectView &view,
                     OptionsPart &options, RebuildPart &rebuild)
    : m_bench(bench), m_commands(commands), m_view(view), m_options(options), m_rebuild(rebuild) {
    const MainActions &actions = bench.actions;
    const auto on = [this](QAction *action, const char *procedure, auto command) {
        connect(action, &QAction::triggered, this,
                [=, this] { m_bench.run(procedure, [=, this] { command(*this); }); });
    };
    on(actions.newProject, "MainForm.OpenFile()", [](FilesPart &part) { part.newProject(); });
    on(actions.openProject, "MainForm.OpenFile()", [](FilesPart &part) { part.openProject({}); });
    on(actions.saveAs, "MainForm.SaveAs()", [](FilesPart &part) { part.saveAs(); });
    on(actions.closeProject, "MainForm.CloseFile()",
       [](FilesPart &part) { part.m_commands.closeFile(); });
    on(actions.import, "MainForm.import()", [](FilesPart &part) { part.import({}); });
    on(actions.upgradeWizard, "MainForm.upgradeWizard()",
       [](FilesPart &part) { part.m_commands.upgradeWizard(); });
    on(actions.baseFolder, "MainForm.chooseBaseFolder()",
       [](FilesPart &part) { part.chooseBaseFolder(); });
    on(actions.timeZone, "MainForm.chooseTimeZone()",
       [](FilesPart &part) { part.chooseTimeZone(); });
}

void FilesPart::newProject() {
    const auto made = m_options.askNewProject([this] { m_commands.closeFile(); });
    if (!made || !m_commands.openFile(made->path, OpenMode::newAtPath))
        return;
    m_options.storeNewProject(*made);
    m_bench.reload();
}

void FilesPart::openProject(const fs::path &path) {
    if (!m_commands.openFile(path, OpenMode::existing))
        return;
    m_commands.tellOfChangedDefaultQuery();
    m_bench.reload();
    m_rebuild.tellOfWideIds();
    offerWebpages();
}

/// A big project is easier to read without its pictures and scripts.
void FilesPart::offerWebpages() {
    constexpr std::size_t kBig = 10'000; // rows
    const bool big = m_bench.table->table() && m_bench.table->table()->rowCount() >= kBig;
    if (big && m_bench.examiner().ask(messages::showOnlyWebpages()) == Answer::Yes)
        m_bench.table->chooseQuery(QStringLiteral("_Show Only Webpages"));
}

/// The connection changes with the file, so the table is built anew.
void FilesPart::saveAs() {
    m_commands.saveAs();
    if (!m_bench.isProjectOpen() || m_bench.table->table())
        return;
    m_view.restoreLayout();
    m_bench.reload();
}

void FilesPart::import(const fs::path &start) {
    if (!m_bench.mayWrite())
        return;
    if (!m_bench.isProjectOpen())
        newProject();
    if (!m_bench.isProjectOpen())
        return;
    const auto chooseFolder = [this](const std::string &title, const fs::path &from) {
        return m_bench.dialogs.chooseFolder(title, from);
    };
    const auto choosePage = [this](const fs::path &offered) {
        return m_bench.dialogs.choosePage(offered);
    };
    ImportForm form(m_bench.program, start, chooseFolder, &m_bench.window, choosePage);
    form.exec();
    if (form.imported()) {
        m_bench.reload();
        m_rebuild.tellOfWideIds();
        m_bench.goOn(form.next());
    }
}

void FilesPart::takePath(const fs::path &path) {
    if (isProjectName(path))
        m_bench.run("MainForm.OpenFile()", [this, path] { openProject(path); });
    else
        m_bench.run("MainForm.import()", [this, path] { import(path); });
}

void FilesPart::chooseBaseFolder() {
    const auto chosen = m_bench.dialogs.chooseFolder(
        "Select the BASE root folder for all evidence in project:", m_bench.program.state.rootPath);
    if (!chosen)
        return;
    setRootPath(m_bench.program, fs::canonical(*chosen));
    m_bench.reload();
}

void FilesPart::chooseTimeZone() {
    Program &program = m_bench.program;
    ZoneForm dialog(program, keyInList(program), &m_bench.window);
    if (dialog.exec() != QDialog::Accepted)
        return;
    if (changeZone(program, dialog.key(), program.task))
        m_bench.reload();
}

} // namespace nv
