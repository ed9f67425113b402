#pragma once

#include "app/program/Program.h"
#include "ui/frame/MainActions.h"
#include "ui/frame/ViewerTabs.h"
#include "ui/frame/WindowDialogs.h"
#include "ui/import/ImportSummaryPane.h"
#include "ui/parts/Limits.h"
#include "ui/table/TableTab.h"

#include <QObject>
#include <QVariant>

#include <functional>
#include <optional>

class QMenu;
class QSplitter;

namespace nv {

/// What the parts of the main window share. A part is an object of its own for one topic: it
/// connects itself to the actions, tabs and signals that it needs. All members outlive the parts.
class Workbench final : public QObject {
    Q_OBJECT

  public:
    Workbench(Program &programOf, WindowDialogs &dialogsOf, MainActions &actionsOf,
              QWidget &windowOf, RunCommand runOf, RunTask runTaskOf)
        : program(programOf), dialogs(dialogsOf), actions(actionsOf), window(windowOf),
          run(std::move(runOf)), runTask(std::move(runTaskOf)) {}

    Program &program;
    WindowDialogs &dialogs;
    MainActions &actions;
    QWidget &window; ///< parent of dialogs
    RunCommand run;
    RunTask runTask;
    // Made with the project page, and there when parts are made.
    QTabWidget *dataTabs = nullptr;
    QSplitter *dataArea = nullptr; ///< the data tabs and what stands beside them
    TableTab *table = nullptr;
    ViewerTabs *viewers = nullptr;
    QWidget *card = nullptr; ///< what is known of the current record, beside the viewers
    QMenu *tags = nullptr;   ///< named tags of the chosen rows; made by their part
    Limits limits;           ///< whatever hides rows of the table
    /// Asks about what would be lost with the open project; false when the examiner stays. Nothing
    /// where there was nothing to ask about.
    std::function<std::optional<bool>()> askBeforeClosing = [] { return std::nullopt; };

    Examiner &examiner() const { return program.around.examiner; }
    bool isProjectOpen() const { return program.state.projectDB.isOpen(); }
    /// False, and told, while the project is open for reading only.
    bool mayWrite() const;
    /// False when the examiner thinks better of closing the project.
    bool mayClose() const { return askBeforeClosing().value_or(true); }
    /// Of an open project only.
    SQLite::Database &project() const { return program.state.projectDB.connection(); }
    /// A text in the status bar until the examiner goes to another row.
    void showNotice(const QString &text) { emit noticed(text); }
    /// The rows of the table have changed in the project; the list of them stays.
    void refreshRows() const;
    /// Their ticks, tags or notes have.
    void refreshMarks() const;
    /// What the examiner has chosen in the summary of an import.
    void goOn(AfterSummary what);
    /// Runs the active query anew.
    void reload() { emit reloadWanted(); }

  signals:
    void noticed(const QString &text);
    void reloadWanted();
    /// Rows have other thumbnails than before.
    void thumbnailsChanged();
    /// The project's connection is open, its rows not loaded yet.
    void projectOpened();
    /// Comes before the connection goes: whoever uses it lets go of it now.
    void projectClosing();
    /// What the limits of tags and of hash sets are from the next load on; invalid: they hide none.
    void tagLimitChosen(const QVariant &limit);
    void hashLimitChosen(const QVariant &limit);
    /// Other settings are in force; the rows are loaded anew after it.
    void optionsChanged();
    /// The project's files were looked for in hash sets; the rows are loaded anew after it.
    void hashSetsMatched();
    /// The project has other stored queries than before.
    void queriesChanged();
    /// How far work in the background is, 0 to 1, and its end. The title of the window tells it;
    /// closing the project ends all of it.
    void workProgressed(const QString &name, double fraction);
    void workEnded(const QString &name);
    /// Work in the background that is offered outside of its own part.
    void searchIndexWanted();
    void thumbnailsWanted();
    /// The gallery shows other kinds than those that are now ticked.
    void galleryOutdated();
};

} // namespace nv
