#pragma once

#include "app/program/Program.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace nv {

/// The file dialogs that commands show. Nothing is chosen when the examiner cancels.
class FileDialogs {
  public:
    virtual ~FileDialogs() = default;
    virtual std::optional<std::filesystem::path> chooseProject() = 0;
    virtual std::optional<std::filesystem::path> createNewProjectFilename() = 0;
    virtual std::optional<std::filesystem::path> chooseSaveAs() = 0;
};

/// What the window keeps in step with the project.
class ProjectView {
  public:
    virtual ~ProjectView() = default;
    virtual void setCaption(const std::string &caption) = 0;
    /// Column layout: from the project's settings to the grid, and back.
    virtual void restoreLayout() = 0;
    virtual void saveLayout() = 0;
    virtual void showRecentFiles() = 0;
    /// The grids are emptied.
    virtual void clear() = 0;
    /// Runs the active query anew.
    virtual void loadURLs() = 0;
    /// Shows the wizard for a closed project and returns when it is closed.
    virtual void showUpgradeWizard(const std::filesystem::path &) {}
};

enum class OpenMode { existing, newByDialog, newAtPath };

/// The File menu. Every command leaves a state that can be worked on, whatever fails.
class ProjectCommands {
  public:
    ProjectCommands(Program &program, FileDialogs &dialogs, ProjectView &view)
        : m_program(program), m_dialogs(dialogs), m_view(view) {}

    /// Opens or makes a project; an open one is closed first. An empty path asks for one. True when
    /// a project is open afterwards.
    bool openFile(const std::filesystem::path &path, OpenMode mode);
    void closeFile();
    /// A copy at the chosen path, with which the work goes on.
    bool saveAs();
    /// Takes the one path of the command line: a project, or an artefact that is imported into a
    /// scratch project at once.
    bool loadCommandLineFile(const std::filesystem::path &path);
    /// Closes the open project, when the examiner agrees, for the wizard, and opens it again after
    /// it; without one the wizard asks for a project.
    void upgradeWizard();
    /// After a project was opened from the File menu: tells of a changed default query.
    void tellOfChangedDefaultQuery();
    void updateProgramCaption();

  private:
    std::optional<std::filesystem::path> pathFor(const std::filesystem::path &given, OpenMode mode);
    bool create(const std::filesystem::path &path);
    bool openExisting(const std::filesystem::path &path);
    /// Nothing when the project can't be written and the examiner doesn't want to read it only.
    std::optional<Access> accessTo(const std::filesystem::path &path);
    void afterOpening();
    /// False when the project didn't open again after the wizard.
    bool checkVersion();
    bool upgradeAndReopen();

    Program &m_program;
    FileDialogs &m_dialogs;
    ProjectView &m_view;
};

} // namespace nv
