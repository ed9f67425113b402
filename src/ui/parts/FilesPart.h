#pragma once

#include "app/ProjectCommands.h"
#include "app/project/DroppedPaths.h"
#include "ui/parts/ImportPart.h"
#include "ui/parts/OptionsPart.h"

#include <QObject>

#include <filesystem>
#include <memory>

namespace nv {

class RebuildPart;
class Workbench;

/// The project's file: making, opening, importing into it, its base folder and zone.
class FilesPart final : public QObject {
    Q_OBJECT

  public:
    /// All must outlive it.
    FilesPart(Workbench &bench, ProjectCommands &commands, ProjectView &view, OptionsPart &options,
              RebuildPart &rebuild, ImportSteps &steps);

    /// Opens a project, or offers to import any other file or folder.
    void takePath(const std::filesystem::path &path);
    /// Opens the project that was dropped, and offers to import what else was.
    void takeDropped(const DroppedPaths &dropped);

  private:
    /// By the dialog.
    void newProject();
    /// Without a dialog, outside of these places. False when it wasn't made.
    bool newProjectFor(const ImportPart::Places &evidence, const AskedProject &asked);
    bool make(const OptionsPart::NewProject &made);
    void openProject(const std::filesystem::path &path);
    void closeProject();
    void saveAs();
    void offerWebpages();
    void chooseBaseFolder();
    void chooseTimeZone();

    Workbench &m_bench;
    ProjectCommands &m_commands;
    ProjectView &m_view;
    OptionsPart &m_options;
    RebuildPart &m_rebuild;
    std::unique_ptr<ImportPart> m_import;
};

} // namespace nv
