#pragma once

#include "app/ProjectCommands.h"

#include <QObject>

#include <filesystem>

namespace nv {

class OptionsPart;
class RebuildPart;
class Workbench;

/// The project's file: making, opening, importing into it, its base folder and zone.
class FilesPart final : public QObject {
    Q_OBJECT

  public:
    /// All must outlive it.
    FilesPart(Workbench &bench, ProjectCommands &commands, ProjectView &view, OptionsPart &options,
              RebuildPart &rebuild);

    /// Opens a project, or offers to import any other file or folder.
    void takePath(const std::filesystem::path &path);

  private:
    void newProject();
    void openProject(const std::filesystem::path &path);
    void saveAs();
    void import(const std::filesystem::path &start);
    void offerWebpages();
    void chooseBaseFolder();
    void chooseTimeZone();

    Workbench &m_bench;
    ProjectCommands &m_commands;
    ProjectView &m_view;
    OptionsPart &m_options;
    RebuildPart &m_rebuild;
};

} // namespace nv
