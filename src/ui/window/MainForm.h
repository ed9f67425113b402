#pragma once

#include "app/ProjectCommands.h"
#include "app/program/Program.h"
#include "ui/frame/MainActions.h"
#include "ui/frame/MainMenus.h"
#include "ui/frame/StatusLine.h"
#include "ui/frame/WindowDialogs.h"
#include "ui/table/ImportSteps.h"
#include "ui/window/WindowTitle.h"

#include <QMainWindow>
#include <QPointer>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

class QStackedWidget;

namespace nv {

class AreasPart;
class FilesPart;
class RebuildPart;
class RecordArea;
class TableTab;
class TipPart;
class ViewerTabs;
class WelcomePage;
class Workbench;

/// The main window, from which every command starts. It holds no data: what it shows is the
/// project's, and every change goes there at once. Locking and the frame are here; what belongs to
/// one topic is a part of its own (see Workbench).
class MainForm final : public QMainWindow, public ProjectView {
    Q_OBJECT

  public:
    MainForm(Program &program, WindowDialogs &dialogs);
    ~MainForm() override;
    MainForm(const MainForm &) = delete;
    MainForm &operator=(const MainForm &) = delete;

    /// Takes up the one path of the command line.
    void loadCommandLineFile(const std::filesystem::path &path);
    void showTipAtStart();
    /// Opens a project, or offers to import any other file or folder.
    void takePath(const std::filesystem::path &path);

    /// While a task runs only the status window's Cancel button stays live. Calls nest.
    void lockControls();
    void unlockControls();

    // ProjectView
    void setCaption(const std::string &caption) override;
    void restoreLayout() override;
    void saveLayout() override;
    void showRecentFiles() override;
    void clear() override;
    void loadURLs() override;
    void showUpgradeWizard(const std::filesystem::path &project) override;

  protected:
    bool focusNextPrevChild(bool next) override;
    void closeEvent(QCloseEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;

  private:
    /// At once, so that no crash takes a layout away.
    void keepLayout();
    QWidget *newProjectPage();
    void connectWindowActions();
    void connectEditActions();
    void connectOtherActions();
    void connectMenus();
    /// Runs a command; the examiner is told when it fails.
    void run(const char *procedure, const std::function<void()> &command);
    void runTask(const TaskHeading &heading, const std::function<void(TaskMonitor &)> &work);
    /// Makes the parts of the window that have a topic of their own.
    void addParts();
    template <class Part, class... Args>
    Part &addPart(Args &&...args) {
        auto part = std::make_unique<Part>(std::forward<Args>(args)...);
        Part &made = *part;
        m_parts.push_back(std::move(part));
        return made;
    }
    bool mayLeave();
    bool isProjectOpen() const { return m_program.state.projectDB.isOpen(); }

    void showErrorLog();
    void showAbout();
    void showQuickQueries();
    void showNotice(const QString &text);
    void showStatus();
    void showProjectState();
    void keepGeometry();
    void restoreGeometryKept();

    Program &m_program;
    WindowDialogs &m_dialogs;
    ProjectCommands m_commands;
    MainActions m_actions;
    MainMenus m_menus;
    ImportSteps m_steps; ///< of both empty pages
    QStackedWidget *m_pages = nullptr;
    WelcomePage *m_welcome = nullptr;
    TableTab *m_table = nullptr;
    ViewerTabs *m_viewers = nullptr;
    RecordArea *m_record = nullptr; ///< the card and the viewers
    std::unique_ptr<Workbench> m_bench;
    std::vector<std::unique_ptr<QObject>> m_parts; ///< go before the bench
    RebuildPart *m_rebuild = nullptr;
    FilesPart *m_files = nullptr;
    TipPart *m_tips = nullptr;
    AreasPart *m_areas = nullptr; ///< when all that stands in the window is there
    StatusLine m_status{*statusBar()};
    WindowTitle m_title{*this};
    int m_locks = 0;
    QPointer<QWidget> m_focusBeforeLock;
};

} // namespace nv
