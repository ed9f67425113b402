#pragma once

#include "base/Examiner.h"
#include "base/TaskMonitor.h"
#include "ui/table/UrlGrid.h"
#include "ui/table/UrlModel.h"
#include "views/rows/TickCount.h"

#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class QHBoxLayout;
class QLineEdit;
class QMenu;
class QStackedWidget;
class QVBoxLayout;

namespace nv {

class EmptyPage;
class FindBar;
class LayoutBar;
class QueryBox;

/// Runs a long piece of work with the window locked and the status window at hand.
using RunTask =
    std::function<void(const TaskHeading &heading, const std::function<void(TaskMonitor &)> &work)>;

/// The Table tab: which rows are shown, the grid of them, and a line to find texts in it.
class TableTab final : public QWidget {
    Q_OBJECT

  public:
    TableTab(RunTask runTask, Examiner &examiner, QWidget *parent = nullptr);
    ~TableTab() override;
    TableTab(const TableTab &) = delete;
    TableTab &operator=(const TableTab &) = delete;

    /// Takes up an open project, without loading it. The project, log and zone must stay until
    /// closeProject(), which has to come before the project's connection goes.
    void openProject(SQLite::Database &project, FailureLog &log, const TimeZone &gmtZone);
    void closeProject();
    UrlTable *table() { return m_table.get(); }
    UrlGrid &grid() { return *m_grid; }
    EmptyPage &emptyPage() { return *m_empty; }

    /// How the project's rows are shown: column layouts and the examiner's order. Restored before
    /// openProject(), and kept beyond closeProject().
    void restoreLayout(const TableLayout::Read &read);
    void saveLayout(const TableLayout::Write &write);

    /// The names that the query selector offers; an empty one is the default query.
    /// Those of `dead`, which can find nothing, are only offered in layout Classic.
    void setQueries(const QStringList &names, const QStringList &dead = {});
    /// Chooses a query, loads its rows.
    void chooseQuery(const QString &name);
    /// Shows that the rows are those of this query, without loading them.
    void showQuery(const QString &name);
    QString queryName() const;
    /// What the next load filters by; empty turns the host filter off. The box shows it.
    void setHost(const QString &host);
    /// As if the examiner had entered it in the box.
    void filterByHost(const QString &host);

    void loadURLs();
    enum class Narrowed {
        last,    ///< these are the rows
        interim, ///< others follow soon: nobody needs to take them up
        typed    ///< these are the rows, and the examiner goes on typing
    };
    /// Shows what the limits of search and time leave of the query's rows now. While somebody types
    /// the window isn't locked: letters would be lost.
    void narrow(Narrowed which = Narrowed::last);
    /// The line above all, for what limits the rows.
    QHBoxLayout &limitRow() { return *m_limitRow; }
    /// The column of lines around the rows.
    QVBoxLayout &column() { return *m_column; }
    /// The rows' texts have changed; the list and the current row stay.
    void refreshRows();
    void sortBy(SortChoice choice);
    void flipTags();
    void copyCell();
    void copyRows();
    void openFind();
    void findNext();
    void showColumnsForm();
    /// Rows that are ticked in the whole project, as of the last look.
    qint64 taggedCount() const { return m_ticks.all(); }
    /// Of them those that the table shows.
    qint64 shownTaggedCount() const { return m_ticks.shown(); }
    /// A tick was set or taken elsewhere in the window.
    void noteTick(qint64 urlID, bool tagged);

  signals:
    /// Rows, ticks, query or host have changed.
    void statusChanged();
    /// The rows were loaded: they may be others than before.
    void rowsLoaded();
    void currentUrlChanged();
    /// The examiner has made something of the layouts that has to be kept.
    void layoutEdited();
    /// An entry of the `Sort By` menu has taken effect.
    void sortedBy(nv::SortChoice choice);
    /// Ticks were set or taken: of this row, or of several that were selected with it.
    void ticked(qint64 urlID, qint64 rows, bool on);
    /// A tick was to be set in a project that is open for reading only.
    void tickingRefused();
    void filtersRequested();
    /// The menu of a heading is about to be shown: others may add to it.
    void headerMenuComesUp(QMenu &menu, nv::UrlColumn column);
    /// All rows are to be shown, whatever limits them.
    void showAllRequested();
    /// Comes before the load when the examiner has changed the box.
    void hostEntered(const QString &host);

  private:
    QWidget *newChoiceBar();
    void connectParts();
    void sortByColumn(UrlColumn column, SortDirection direction);
    /// Runs a load or a sort and shows what came of it, with the same record as the current one.
    LoadResult reload(const std::function<LoadResult(TaskMonitor &)> &work);
    void showRows(const std::optional<UrlGrid::Spot> &current);
    std::optional<UrlGrid::Spot> ownSpot(Narrowed which) const;
    void showHeaderMenu(UrlColumn column, const QPoint &place);
    void takeLayout();
    void forgetSort();
    void takeHost();
    void announceHost();
    void countTagged();
    void noteFlipped(qint64 rows);

    RunTask m_runTask;
    Examiner &m_examiner;
    std::unique_ptr<UrlTable> m_table;
    SQLite::Database *m_project = nullptr; ///< null while no project is open, like the log
    FailureLog *m_log = nullptr;
    TickCount m_ticks;
    UrlModel m_model;
    UrlGrid *m_grid = nullptr;
    QVBoxLayout *m_column = nullptr;
    QHBoxLayout *m_limitRow = nullptr;
    QStackedWidget *m_pages = nullptr;
    EmptyPage *m_empty = nullptr;
    FindBar *m_find = nullptr;
    LayoutBar *m_layouts = nullptr;
    std::optional<ColumnSort> m_sort;   ///< the examiner's, whatever query is shown
    std::optional<UrlGrid::Spot> m_own; ///< the row from before letters that are being typed
    std::optional<UrlId> m_standIn;     ///< the current one that nobody has chosen
    QueryBox *m_queries = nullptr;
    QLineEdit *m_host = nullptr;
    QString m_knownHost; ///< as it was set or told last
};

} // namespace nv
