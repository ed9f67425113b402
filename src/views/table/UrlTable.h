#pragma once

#include "base/Examiner.h"
#include "base/FailureLog.h"
#include "base/TaskMonitor.h"
#include "db/records/RecordFacts.h"
#include "search/FoundIds.h"
#include "views/limits/ColumnLimit.h"
#include "views/limits/HashLimit.h"
#include "views/limits/PlaceLimit.h"
#include "views/limits/TagLimit.h"
#include "views/rows/RowCells.h"
#include "views/rows/RowPager.h"
#include "views/rows/UrlQuery.h"
#include "views/table/TableFind.h"
#include "views/timeline/TimeLimit.h"

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

enum class LoadResult { Loaded, Cancelled, Failed };
/// Why a table without rows has none.
enum class EmptyState {
    HasRows,
    NotLoaded,
    NoRecords,
    NoMatches,
    NoTerms, ///< a keyword query of a project that was made without the list of its terms
    AllHidden,
    Cancelled,
    Failed,
};

/// The URL table without its window: the list of rows that the active query gives, and their cells.
/// Places are 0-based, from the top. It owns neither the project's connection, the log nor the
/// zone. While a load or a sort runs, cells may be asked for (a window paints itself meanwhile):
/// only those that are at hand are given then.
class UrlTable {
  public:
    UrlTable(SQLite::Database &project, FailureLog &log, const TimeZone &gmtZone);

    // What the next load takes up.
    RowChoice choice;
    std::string rootPath;              ///< the project's base folder; empty mends no rows
    RecordFilters filters;             ///< as the program's stand at the load
    std::optional<TimeLimit> time;     ///< hides what happened at other times
    std::optional<TagLimit> tags;      ///< hides rows without one of these tags
    PlaceChoice places;                ///< hides what comes from other places
    HashLimit hashSets;                ///< hides rows by the hash sets that they are in
    std::vector<ColumnLimit> byColumn; ///< hide what holds something else
    /// Hides what a search hasn't found; null hides nothing.
    std::shared_ptr<const FoundIds> ofSearch;
    Undated undated = Undated::AsTheQueryHasThem;
    /// The column of the examiner's choice: it holds over the query's order, and a sort sets it. A
    /// query without that column has its own order all the same.
    std::optional<ColumnSort> sort;

    /// Other tabs set and read it: true when the rows are no longer those that they show.
    bool recordsetDirty = false;

    /// Fills the list by the active query and the filters. A failure is logged and leaves the rows
    /// that were found up to then, and so does a cancel.
    LoadResult loadURLs(TaskMonitor &task);
    /// Puts other limits of columns, search and time in force over the rows that the query and the
    /// filters gave, in their order, without asking for those again. A failure is logged; it and a
    /// cancel leave the list as it was.
    LoadResult narrow(TaskMonitor &task);
    /// The rows of the active query by another order. A failure is logged; it and a cancel leave
    /// the list as it was. A column that isn't sortable changes nothing.
    LoadResult sortBy(UrlColumn column, SortDirection direction, TaskMonitor &task);
    /// The same by an entry of the `Sort By` menu.
    LoadResult sortBy(SortChoice order, TaskMonitor &task);
    /// The column that the list is sorted by, when it is by one.
    const std::optional<ColumnSort> &columnSort() const { return m_columnSort; }

    /// What the database said when the last load or sort failed.
    const std::string &failure() const { return m_failure; }

    std::size_t rowCount() const { return m_ids.size(); }
    EmptyState emptyState() const { return m_ids.empty() ? m_empty : EmptyState::HasRows; }
    const RowIds &ids() const { return m_ids; }
    /// The rows before any limit, those that the query, the host and the filters give.
    const RowIds &idsOfQuery() const { return m_idsOfQuery ? *m_idsOfQuery : m_ids; }
    /// The rows that the time limit leaves and those that it hides.
    const RowIds &idsOfAllTimes() const { return m_idsOfAllTimes ? *m_idsOfAllTimes : m_ids; }
    /// Something besides the query, the host and the filters may hide rows.
    bool isLimited() const;
    /// Rows of the query that the record filters and the limits hide.
    std::size_t hiddenCount() const { return m_hidden; }
    /// The query failed at damage of the project, so that each row was asked for itself.
    bool foundOneByOne() const { return m_oneByOne; }
    UrlId idAt(std::size_t place) const;
    /// The first row with this id.
    std::optional<std::size_t> placeOf(UrlId id) const;

    /// The rows that were looked at since the load and could not be read; they have no cells but
    /// their id and a word in the Status column.
    const UnreadRows &unread() const { return m_pager.unread(); }
    bool isRead(std::size_t place);
    /// Throws std::runtime_error when no row can be read, because the project lacks a column of
    /// those that are shown.
    void checkColumns();

    /// As nv::countValues(), of some of its rows.
    Walk countValues(const RowIds &ids, UrlColumn column, std::size_t most, TaskMonitor &task,
                     CountedValues &counted);

    /// The next cell with the text, from the place `from` on and round; cancelled while a load or a
    /// sort runs. Throws what the database says.
    FindResult find(const FindText &what, std::size_t from, TaskMonitor &task);

    /// The columns that will be asked for; others work too, but cost a second reading of the rows.
    void showColumns(std::span<const UrlColumn> columns) { m_pager.setColumns(columns); }
    std::string cell(std::size_t place, UrlColumn column);
    Cell machineCell(std::size_t place, UrlColumn column);
    /// The cell's text without a cut and without stand-ins; of stored texts only.
    std::string fullText(std::size_t place, UrlColumn column);
    /// With the fraction of its second, which cells don't show.
    Date actionDateUTC(std::size_t place);
    /// For facts(), which needs one as long as rows are asked for.
    RecordFacts factReader() const { return RecordFacts(m_project); }
    /// What is known of the record beside its cells. A failure is logged, and the row is unread.
    FactList facts(std::size_t place, RecordFacts &reader);
    bool isTagged(std::size_t place);
    /// Whether any row of the project has a named tag.
    bool hasNamedTags() const;
    /// The named tags of the row; of a busy table those that are at hand.
    std::vector<RowTag> tagsOf(std::size_t place);
    std::string_view iconKey(std::size_t place);
    std::string header(UrlColumn column) const { return headerText(column, m_zone); }

    /// Writes at once. False when it couldn't be written; the tick then stays as it was.
    bool setTagged(std::size_t place, bool tagged);
    /// `count` rows from `first` on in one transaction: all or, after a cancel or failure, none.
    bool setTagged(std::size_t first, std::size_t count, bool tagged, TaskMonitor &task);

    /// Date formats, daylight switch and current year, for the cells that are made next.
    DateSettings &dates() { return m_cells.dates; }
    /// Rows or files have changed under the list: read them anew when they are looked at.
    void refreshRows();
    std::size_t pagesRead() const { return m_pager.pagesRead(); }

  private:
    /// Keeps cells from using the connection while a statement of the table is at work on it.
    class Busy {
      public:
        explicit Busy(bool &flag) : m_flag(flag) { flag = true; }
        ~Busy() { m_flag = false; }
        Busy(const Busy &) = delete;
        Busy &operator=(const Busy &) = delete;

      private:
        bool &m_flag;
    };
    /// What a load finds. Lists that no limit makes shorter aren't kept.
    struct Found : FoundRows {
        std::optional<RowIds> ofQuery;    ///< before all limits
        std::optional<RowIds> ofColumns;  ///< before those of search and time
        std::size_t columnsMet = 0;       ///< the first limits of columns, which those meet
        std::optional<RowIds> ofAllTimes; ///< before the time limit
    };
    bool prepareProject(TaskMonitor &task);
    std::vector<IdQuery> loadQueries();
    std::vector<IdQuery> ownOrder();
    Walk fill(const std::vector<IdQuery> &queries, const std::optional<ColumnSort> &order,
              TaskMonitor &task, Found &rows);
    Walk limit(TaskMonitor &task, Found &rows);
    Walk limitColumns(TaskMonitor &task, Found &rows);
    LoadResult attempt(const std::function<Walk()> &work);
    void take(Found &&rows);
    void tellOneByOne();
    LoadResult sortInto(const IdQuery &query, const std::optional<ColumnSort> &order,
                        TaskMonitor &task);
    EmptyState whyEmpty(LoadResult result);
    const UrlRow *rowFor(std::size_t place, UrlColumn column);

    SQLite::Database &m_project;
    FailureLog &m_log;
    const TimeZone &m_zone;
    RowIds m_ids;
    std::optional<RowIds> m_idsOfQuery;   ///< as in Found
    std::optional<RowIds> m_idsOfColumns; ///< as in Found, by the limits in m_columns
    std::vector<ColumnLimit> m_columns;
    std::optional<RowIds> m_idsOfAllTimes; ///< as in Found
    std::size_t m_hidden = 0;
    bool m_oneByOne = false;
    RowPager m_pager;
    RowCells m_cells;
    TableFind m_find{m_project, m_ids, m_pager, m_cells};
    std::optional<ColumnSort> m_columnSort;
    EmptyState m_empty = EmptyState::NotLoaded;
    std::string m_failure;
    bool m_busy = false;
};

/// What is told of a list that was found one by one.
inline constexpr std::string_view kOneByOneNote =
    "The project is damaged: its rows were found one by one. Rows that could not be read are last.";
/// What the examiner is told when a load or a sort has failed.
Message loadFailure(std::string_view reason);

} // namespace nv
