#include "views/table/UrlTable.h"

#include "base/Trap.h"
#include "db/project/StoredQueries.h"
#include "db/sql/ReadOnlyConnection.h"
#include "views/limits/GatheredTexts.h"
#include "views/limits/MovedEvidence.h"
#include "views/rows/DateIndex.h"
#include "views/rows/NarrowIndex.h"
#include "views/tags/Tagging.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <utility>

namespace nv {
namespace {

constexpr std::string_view kProcedure = "MainForm.LoadURLs()";

void describeLoad(TaskMonitor &task) {
    task.describe(
        {"LOADING URLS",
         "Large recordsets and complex queries may cause delays. Please be "
         "patient...thank you.",
         "TIP: If you are using Filters and the results are still too large, you may want "
         "to consider building a custom query.",
         ""});
}

} // namespace

UrlTable::UrlTable(SQLite::Database &project, FailureLog &log, const TimeZone &gmtZone)
    : m_project(project), m_log(log), m_zone(gmtZone), m_pager(project, log, m_ids),
      m_cells(log, gmtZone) {
    std::vector<UrlColumn> shown;
    for (const UrlColumnFacts &facts : kUrlColumns)
        if (facts.shown == Shown::Yes)
            shown.push_back(facts.column);
    m_pager.setColumns(shown);
}

LoadResult UrlTable::loadURLs(TaskMonitor &task) {
    describeLoad(task);
    m_ids.clear();
    m_columnSort.reset();
    refreshRows();
    const Busy busy(m_busy);
    Found rows;
    const LoadResult result = attempt([&] {
        m_pager.prepare();
        if (!prepareProject(task))
            return Walk::Cancelled;
        const std::vector<IdQuery> queries = loadQueries();
        return fill(queries, m_columnSort, task, rows);
    });
    take(std::move(rows));
    tellOneByOne();
    m_empty = whyEmpty(result);
    recordsetDirty = false;
    return result;
}

/// What makes the load quick and the evidence found. A project that can't be written is shown all
/// the same. False when cancelled.
bool UrlTable::prepareProject(TaskMonitor &task) {
    if (isReadOnly(m_project))
        return true;
    bool goOn = true;
    logFailureOf(m_log, kProcedure, [&] {
        goOn = mendRootPath(m_project, m_log, rootPath, task).has_value() &&
               ensureDateIndex(m_project, task) != IndexState::Cancelled &&
               ensureNarrowIndexes(m_project, task) != IndexState::Cancelled &&
               ensureLinkIndexes(m_project, task) != IndexState::Cancelled &&
               ensureHashSetIndex(m_project, task) != IndexState::Cancelled;
    });
    return goOn;
}

/// What gives the rows, one statement after another.
std::vector<IdQuery> UrlTable::loadQueries() {
    if (sort && isSortable(sort->column)) {
        IdQuery sorted = sortQuery(choice, *sort, undated);
        // An examiner's query may lack the column: its rows then come in their own order.
        if (canRun(m_project, sorted)) {
            m_columnSort = sort;
            return {std::move(sorted)};
        }
    }
    return ownOrder();
}

std::vector<IdQuery> UrlTable::ownOrder() {
    if (undated == Undated::Last) {
        const auto text = StoredQueries(m_project).text(
            choice.activeQueryName.empty() ? kDefaultQueryName : choice.activeQueryName);
        auto queries = undatedLastQueries(choice, text.value_or(""));
        if (!queries.empty() && canRun(m_project, queries.front()))
            return queries;
    }
    return {loadQuery(choice)};
}

LoadResult UrlTable::narrow(TaskMonitor &task) {
    const Busy busy(m_busy);
    Found rows;
    rows.ids = m_idsOfQuery ? *m_idsOfQuery : m_ids;
    rows.hidden = m_hidden - (rows.ids.size() - m_ids.size());
    rows.oneByOne = m_oneByOne;
    // Reading what stands in columns takes long, and a search is typed letter by letter.
    if (m_idsOfColumns && std::ranges::mismatch(m_columns, byColumn).in1 == m_columns.end()) {
        rows.ofColumns = m_idsOfColumns;
        rows.columnsMet = m_columns.size();
    }
    const LoadResult result = attempt([&] { return limit(task, rows); });
    if (result != LoadResult::Loaded)
        return result;
    take(std::move(rows));
    m_empty = whyEmpty(result);
    refreshRows();
    return result;
}

Walk UrlTable::fill(const std::vector<IdQuery> &queries, const std::optional<ColumnSort> &order,
                    TaskMonitor &task, Found &rows) {
    for (const IdQuery &query : queries)
        if (findRows(m_project, query, filters, task, rows) == Walk::Cancelled)
            return Walk::Cancelled;
    if (order && isGathered(order->column) &&
        sortByGathered(m_project, *order, task, rows.ids) == Walk::Cancelled)
        return Walk::Cancelled;
    return limit(task, rows);
}

bool UrlTable::isLimited() const {
    return ofSearch || time || tags || !places.isEmpty() || !hashSets.isEmpty() ||
           !byColumn.empty();
}

/// The time comes last: its bar shows what the other limits leave.
Walk UrlTable::limit(TaskMonitor &task, Found &rows) {
    if (!isLimited())
        return Walk::Finished;
    rows.ofQuery = rows.ids;
    Walk walk = limitColumns(task, rows);
    if (!places.isEmpty() && walk == Walk::Finished)
        walk = keepIn(m_project, places, task, rows.ids);
    if (!hashSets.isEmpty() && walk == Walk::Finished)
        walk = keepByHashSets(m_project, hashSets, task, rows.ids);
    if (tags && walk == Walk::Finished)
        walk = keepTagged(m_project, *tags, task, rows.ids);
    if (ofSearch && walk == Walk::Finished)
        keepOnly(*ofSearch, rows.ids);
    if (time && walk == Walk::Finished) {
        rows.ofAllTimes = rows.ids;
        walk = keepWithin(m_project, *time, task, rows.ids);
    }
    rows.hidden += rows.ofQuery->size() - rows.ids.size();
    // A list that has lost nothing isn't held twice; one that has lost most gives its room back.
    for (std::optional<RowIds> *before : {&rows.ofQuery, &rows.ofAllTimes})
        if (*before && (*before)->size() == rows.ids.size())
            before->reset();
    rows.ids.shrink_to_fit();
    return walk;
}

Walk UrlTable::limitColumns(TaskMonitor &task, Found &rows) {
    if (byColumn.empty())
        return Walk::Finished;
    if (rows.ofColumns && rows.columnsMet == byColumn.size()) {
        rows.ids = *rows.ofColumns;
        return Walk::Finished;
    }
    if (rows.ofColumns)
        rows.ids = std::move(*rows.ofColumns);
    for (std::size_t at = rows.columnsMet; at < byColumn.size(); ++at)
        if (keepByColumn(m_project, byColumn[at], task, rows.ids) == Walk::Cancelled)
            return Walk::Cancelled;
    rows.ofColumns = rows.ids;
    return Walk::Finished;
}

LoadResult UrlTable::attempt(const std::function<Walk()> &work) {
    Walk walk = Walk::Finished;
    const auto failure = failureOf(m_log, kProcedure, [&] { walk = work(); });
    m_failure = failure.value_or("");
    if (failure)
        return LoadResult::Failed;
    return walk == Walk::Finished ? LoadResult::Loaded : LoadResult::Cancelled;
}

void UrlTable::take(Found &&rows) {
    m_ids = std::move(rows.ids);
    m_idsOfQuery = std::move(rows.ofQuery);
    m_idsOfColumns = std::move(rows.ofColumns);
    m_columns = m_idsOfColumns ? byColumn : std::vector<ColumnLimit>();
    m_idsOfAllTimes = std::move(rows.ofAllTimes);
    m_hidden = rows.hidden;
    m_find.forget();
    m_oneByOne = rows.oneByOne;
}

void UrlTable::tellOneByOne() {
    if (m_oneByOne)
        m_log.write({std::string(kOneByOneNote), std::string(kProcedure), Severity::Serious,
                     std::string(kContactSupport)});
}

EmptyState UrlTable::whyEmpty(LoadResult result) {
    if (result == LoadResult::Cancelled)
        return EmptyState::Cancelled;
    return trapped(m_log, Severity::Low, kProcedure, kNotSerious, EmptyState::Failed, [&] {
        if (result == LoadResult::Failed)
            return EmptyState::Failed;
        if (m_hidden > 0)
            return EmptyState::AllHidden;
        const auto text = StoredQueries(m_project).text(
            choice.activeQueryName.empty() ? kDefaultQueryName : choice.activeQueryName);
        if (text && lacksTerms(*text))
            return EmptyState::NoTerms;
        SQLite::Statement any(m_project, "SELECT 1 FROM URLs LIMIT 1");
        return any.executeStep() ? EmptyState::NoMatches : EmptyState::NoRecords;
    });
}

LoadResult UrlTable::sortInto(const IdQuery &query, const std::optional<ColumnSort> &order,
                              TaskMonitor &task) {
    describeLoad(task);
    const Busy busy(m_busy);
    Found sorted; // until it is whole the rows stand as they are
    const LoadResult result = attempt([&] { return fill({query}, order, task, sorted); });
    if (result != LoadResult::Loaded)
        return result;
    take(std::move(sorted));
    tellOneByOne();
    m_empty = whyEmpty(result);
    m_columnSort.reset();
    refreshRows();
    return result;
}

LoadResult UrlTable::sortBy(UrlColumn column, SortDirection direction, TaskMonitor &task) {
    if (!isSortable(column))
        return LoadResult::Loaded;
    const ColumnSort wanted{column, direction};
    const LoadResult result = sortInto(sortQuery(choice, wanted, undated), wanted, task);
    if (result == LoadResult::Loaded)
        sort = m_columnSort = wanted;
    return result;
}

LoadResult UrlTable::sortBy(SortChoice order, TaskMonitor &task) {
    const LoadResult result = sortInto(sortQuery(choice, order), std::nullopt, task);
    if (result == LoadResult::Loaded)
        sort.reset();
    return result;
}

Walk UrlTable::countValues(const RowIds &ids, UrlColumn column, std::size_t most, TaskMonitor &task,
                           CountedValues &counted) {
    const Busy busy(m_busy);
    return nv::countValues(m_project, ids, column, most, task, counted);
}

FindResult UrlTable::find(const FindText &what, std::size_t from, TaskMonitor &task) {
    if (m_busy)
        return {.end = FindEnd::cancelled, .unread = {}};
    const Busy busy(m_busy);
    return m_find.next(what, from, task);
}

UrlId UrlTable::idAt(std::size_t place) const {
    return place < m_ids.size() ? UrlId{m_ids[place]} : UrlId::none;
}

std::optional<std::size_t> UrlTable::placeOf(UrlId id) const {
    const auto found = std::find_if(m_ids.begin(), m_ids.end(),
                                    [id](std::int32_t known) { return UrlId{known} == id; });
    if (found == m_ids.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - m_ids.begin());
}

const UrlRow *UrlTable::rowFor(std::size_t place, UrlColumn column) {
    // While ids are loaded the window may ask for cells: nothing is read in between.
    if (m_busy)
        return m_pager.known(place);
    m_pager.need(column);
    return m_pager.row(place);
}

bool UrlTable::isRead(std::size_t place) {
    const UrlRow *row = rowFor(place, UrlColumn::Id);
    return row && row->found && !isUnread(unread(), row->id);
}

void UrlTable::checkColumns() {
    m_pager.prepare();
}

std::string UrlTable::cell(std::size_t place, UrlColumn column) {
    const UrlRow *row = rowFor(place, column);
    return row ? m_cells.text(*row, column) : std::string();
}

Cell UrlTable::machineCell(std::size_t place, UrlColumn column) {
    const UrlRow *row = rowFor(place, column);
    if (!row)
        return {};
    return isCut(row->stored.at(indexOf(column))) ? Cell(fullText(place, column))
                                                  : m_cells.machine(*row, column);
}

std::string UrlTable::fullText(std::size_t place, UrlColumn column) {
    if (m_busy)
        return {};
    const auto text =
        trapped(m_log, Severity::Low, kProcedure, kNotSerious, std::optional<std::string>(),
                [&] { return fullTextOf(m_project, idAt(place), column); });
    if (!text && !factsOf(column).source.empty() && idAt(place) != UrlId::none)
        m_pager.noteUnread(idAt(place));
    return text.value_or(std::string());
}

Date UrlTable::actionDateUTC(std::size_t place) {
    const UrlRow *row = rowFor(place, UrlColumn::ActionDateUtc);
    return row ? row->actionDateUtc : Date();
}

FactList UrlTable::facts(std::size_t place, RecordFacts &reader) {
    const UrlId id = idAt(place);
    if (m_busy || id == UrlId::none)
        return {};
    auto facts = trapped(m_log, Severity::Low, kProcedure, kNotSerious, std::optional<FactList>(),
                         [&] { return std::optional(reader.of(id)); });
    if (!facts)
        m_pager.noteUnread(id);
    return std::move(facts).value_or(FactList());
}

bool UrlTable::isTagged(std::size_t place) {
    const UrlRow *row = rowFor(place, UrlColumn::Tag);
    return row && row->tagged;
}

bool UrlTable::hasNamedTags() const {
    return !NamedTags(m_project).counts().empty();
}

std::vector<RowTag> UrlTable::tagsOf(std::size_t place) {
    const UrlRow *row = rowFor(place, UrlColumn::TagNames);
    return row ? row->tags : std::vector<RowTag>();
}

std::string_view UrlTable::iconKey(std::size_t place) {
    const UrlRow *row = rowFor(place, UrlColumn::Icon);
    return row && row->found ? RowCells::iconKeyOf(*row) : std::string_view();
}

bool UrlTable::setTagged(std::size_t place, bool tagged) {
    const UrlId id = idAt(place);
    if (m_busy || id == UrlId::none || !nv::setTagged(m_project, m_log, id, tagged))
        return false;
    m_pager.noteTagged(id, tagged);
    return true;
}

bool UrlTable::setTagged(std::size_t first, std::size_t count, bool tagged, TaskMonitor &task) {
    if (m_busy || first >= m_ids.size())
        return false;
    const auto range = std::span(m_ids).subspan(first, std::min(count, m_ids.size() - first));
    const bool written = nv::setTagged(m_project, m_log, range, tagged, task);
    m_pager.forget();
    return written;
}

void UrlTable::refreshRows() {
    m_pager.forget();
    m_cells.forgetPaths();
    m_find.forget();
}

Message loadFailure(std::string_view reason) {
    return {"load-urls-failed", "Error Loading Cache", std::string(reason),
            Choices::Ok,        Tone::Error,           Answer::Ok};
}

} // namespace nv
