#include "ui/parts/FilesPart.h"

#include "app/jobs/ZoneJob.h"
#include "app/messages/Messages.h"
#include "app/program/Zones.h"
#include "app/project/Project.h"
#include "platform/qt/QtText.h"
#include "readers/Evidence.h"
#include "ui/import/ZoneForm.h"
#include "ui/parts/RebuildPart.h"
#include "ui/parts/Workbench.h"

#include <QAction>

namespace nv {

namespace fs = std::filesystem;

FilesPart::FilesPart(Workbench &bench, ProjectCommands &commands, ProjectView &view,
                     OptionsPart &options, RebuildPart &rebuild, ImportSteps &steps)
    : m_bench(bench), m_commands(commands), m_view(view), m_options(options), m_rebuild(rebuild),
      m_import(std::make_unique<ImportPart>(
          bench, steps,
          [this](const auto &evidence, const auto &asked) {
              return newProjectFor(evidence, asked);
          },
          [this] {
              m_bench.reload();
              m_rebuild.tellOfWideIds();
          })) {
    const MainActions &actions = bench.actions;
    const auto on = [this](QAction *action, const char *procedure, auto command) {
        connect(action, &QAction::triggered, this,
                [=, this] { m_bench.run(procedure, [=, this] { command(*this); }); });
    };
    on(actions.newProject, "MainForm.OpenFile()", [](FilesPart &part) { part.newProject(); });
    on(actions.openProject, "MainForm.OpenFile()", [](FilesPart &part) { part.openProject({}); });
    on(actions.saveAs, "MainForm.SaveAs()", [](FilesPart &part) { part.saveAs(); });
    on(actions.closeProject, "MainForm.CloseFile()", [](FilesPart &part) { part.closeProject(); });
    on(actions.upgradeWizard, "MainForm.upgradeWizard()",
       [](FilesPart &part) { part.m_commands.upgradeWizard(); });
    on(actions.baseFolder, "MainForm.chooseBaseFolder()",
       [](FilesPart &part) { part.chooseBaseFolder(); });
    on(actions.timeZone, "MainForm.chooseTimeZone()",
       [](FilesPart &part) { part.chooseTimeZone(); });
}

void FilesPart::closeProject() {
    if (m_bench.mayClose())
        m_commands.closeFile();
}

void FilesPart::newProject() {
    if (!m_bench.mayClose())
        return;
    if (const auto made = m_options.askNewProject([this] { m_commands.closeFile(); }))
        make(*made);
}

bool FilesPart::newProjectFor(const ImportPart::Places &evidence, const AskedProject &asked) {
    for (const fs::path &place : evidence)
        if (fs::is_directory(place) && liesInEvidence(asked.path, place)) {
            m_bench.examiner().tell(messages::liesInEvidence(asked.path, place));
            return false;
        }
    const auto made = m_options.takeNewProject(asked.path, asked.overwriteAgreed);
    return made && make(*made);
}

bool FilesPart::make(const OptionsPart::NewProject &made) {
    if (!m_commands.openFile(made.path, OpenMode::newAtPath))
        return false;
    m_options.storeNewProject(made);
    m_bench.reload();
    return true;
}

void FilesPart::openProject(const fs::path &path) {
    if (!m_bench.mayClose() || !m_commands.openFile(path, OpenMode::existing))
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

void FilesPart::takePath(const fs::path &path) {
    if (isProjectName(path))
        m_bench.run("MainForm.OpenFile()", [this, path] { openProject(path); });
    else
        m_bench.run("MainForm.import()", [this, path] { m_import->import({path}); });
}

void FilesPart::takeDropped(const DroppedPaths &dropped) {
    if (dropped.project)
        takePath(*dropped.project);
    m_bench.run("MainForm.import()", [this, dropped] { m_import->take(dropped); });
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
