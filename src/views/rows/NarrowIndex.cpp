#include "views/rows/NarrowIndex.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "search/IdBits.h"
#include "views/rows/StatementWatch.h"
#include "views/rows/TickCount.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <fmt/ranges.h>
#include <sqlite3.h>

#include <algorithm>
#include <array>
#include <memory>
#include <span>

namespace nv {

namespace {

/// All rows meet it, and no query says it: SQLite takes an index with a condition only for those
/// that say the same.
constexpr std::string_view kAllRows = "URL_ID <> 0.5";

constexpr std::array<std::string_view, 3> kTimeColumns = {"ActionDateUTC", "CacheType", "Browser"};
constexpr std::array<std::string_view, 1> kHostColumns = {"Host"};

struct NarrowIndex {
    std::string_view name;
    std::span<const std::string_view> columns;
};
constexpr std::array<NarrowIndex, 2> kIndexes = {{
    {"URLTimeIndex", kTimeColumns},
    {"URLHostIndex", kHostColumns},
}};

const NarrowIndex *indexWith(const Columns &columns) {
    const auto *const found = std::ranges::find_if(kIndexes, [&](const NarrowIndex &index) {
        return std::ranges::all_of(columns, [&](std::string_view column) {
            return std::ranges::find(index.columns, column) != index.columns.end();
        });
    });
    return found == kIndexes.end() || columns.empty() ? nullptr : found;
}

bool hasColumns(SQLite::Database &project, const NarrowIndex &index) {
    SQLite::Statement column(project, "SELECT 1 FROM pragma_table_info('URLs') WHERE name = ?");
    return std::ranges::all_of(index.columns, [&](std::string_view name) {
        column.tryReset();
        column.bind(1, std::string(name));
        return column.executeStep();
    });
}

using Look = std::function<void(const NarrowRow &)>;

/// The rows that are wanted: all from the first id to the last one, or those whose bits are set.
struct Wanted {
    IdRange range;
    std::optional<IdBits> bits;

    bool has(std::int64_t id) const {
        return bits ? bits->has(id) : id >= range.first && id <= range.last;
    }
};

/// Who is shown the rows of a statement.
struct Looker {
    const Look &look;
    const Wanted &wanted;
    NarrowIds told;
    std::size_t shown = 0;
};

constexpr std::string_view kEnds = "(SELECT min(URL_ID) FROM URLs), (SELECT max(URL_ID) FROM URLs)";
constexpr const char *kFunction = "nv_look";
constexpr const char *kLooker = "nv::Looker"; ///< what the first argument points to

/// Who looks: asked of the first row, since to compare the pointer's name takes long.
/// Null when somebody else calls the function.
Looker *lookerOf(sqlite3_context *context, sqlite3_value *first) {
    void *room = sqlite3_aggregate_context(context, sizeof(Looker *)); // zeros at first
    if (room == nullptr)
        return nullptr;
    auto *kept = static_cast<Looker **>(room);
    if (*kept == nullptr)
        *kept = static_cast<Looker *>(sqlite3_value_pointer(first, kLooker));
    return *kept;
}

/// SQLite calls this for each row, which takes a third of the time of a step of the statement. The
/// statement ends with the first failure.
void showRow(sqlite3_context *context, int, sqlite3_value **values) {
    Looker *looker = lookerOf(context, *values);
    if (looker == nullptr)
        return;
    const bool isTold = looker->told == NarrowIds::told;
    if (isTold && !looker->wanted.has(sqlite3_value_int64(values[1])))
        return;
    ++looker->shown;
    const NarrowRow row(isTold ? values[1] : nullptr, values + (isTold ? 2 : 1));
    NoLog unheard; // who reads the rows themselves tells
    const auto failure = failureOf(unheard, {}, [&] { looker->look(row); });
    if (failure)
        sqlite3_result_error(context, failure->c_str(), -1);
}

void noResult(sqlite3_context *) {}

struct Finalizes {
    void operator()(sqlite3_stmt *statement) const { sqlite3_finalize(statement); }
};
using RawStatement = std::unique_ptr<sqlite3_stmt, Finalizes>;

/// Null for what can't be: there may be no such index, and no such function yet.
RawStatement prepared(SQLite::Database &project, const std::string &sql) {
    sqlite3_stmt *statement = nullptr;
    sqlite3_prepare_v2(project.getHandle(), sql.c_str(), static_cast<int>(sql.size()), &statement,
                       nullptr);
    return RawStatement(statement);
}

/// With the least and the greatest id of the rows that it shows. `how` they are read is the end of
/// the statement.
RawStatement lookStatement(SQLite::Database &project, std::string_view how, const Columns &columns,
                           NarrowIds told) {
    const std::string sql = fmt::format("SELECT {}(?1, {}{}), {} FROM URLs {}", kFunction,
                                        told == NarrowIds::told ? "URL_ID, " : "",
                                        fmt::join(columns, ", "), kEnds, how);
    if (auto statement = prepared(project, sql))
        return statement;
    // To replace a function that is there fails while a statement is at work.
    if (!prepared(project, fmt::format("SELECT {}(NULL)", kFunction)) &&
        sqlite3_create_function_v2(project.getHandle(), kFunction, -1,
                                   SQLITE_UTF8 | SQLITE_DIRECTONLY, nullptr, nullptr, showRow,
                                   noResult, nullptr) != SQLITE_OK)
        return nullptr;
    return prepared(project, sql);
}

/// Texts are shown as they lie.
bool hasUtf8(SQLite::Database &project) {
    return project.execAndGet("PRAGMA encoding").getString() == "UTF-8";
}

/// Which rows are wanted; nothing when looking each of them up costs less than the whole index, or
/// when one is wanted twice.
std::optional<Wanted> wantedOf(SQLite::Database &project, const RowIds &ids) {
    constexpr std::int64_t kPart = 8; // of all rows
    const std::int64_t last = project.execAndGet("SELECT max(URL_ID) FROM URLs").getInt64();
    if (ids.empty() || last / kPart > static_cast<std::int64_t>(ids.size()))
        return std::nullopt;
    const auto [least, greatest] = std::ranges::minmax_element(ids);
    const IdRange range{*least, *greatest};
    if (range.isWideFor(ids.size()))
        return std::nullopt;
    IdBits bits(ids, range);
    if (bits.count() != ids.size())
        return std::nullopt;
    if (range.size() == ids.size())
        return Wanted{range, std::nullopt};
    return Wanted{range, std::move(bits)};
}

/// Whether these are all rows from the least id of the table to its greatest.
bool areAll(SQLite::Database &project, const Wanted &wanted) {
    if (wanted.bits)
        return false;
    SQLite::Statement ends(project, fmt::format("SELECT {}", kEnds));
    return ends.executeStep() && ends.getColumn(0).getInt64() == wanted.range.first &&
           ends.getColumn(1).getInt64() == wanted.range.last;
}

/// Rows whose ids weren't told are those that were wanted when they are as many and have the same
/// ends: no two have the same id. Others may have come or gone since they were listed.
bool areWanted(const Looker &looker, sqlite3_stmt *ends) {
    const IdRange &range = looker.wanted.range;
    return looker.told == NarrowIds::told ||
           (looker.shown == range.size() && sqlite3_column_int64(ends, 1) == range.first &&
            sqlite3_column_int64(ends, 2) == range.last);
}

NarrowWalk walkAll(SQLite::Database &project, std::string_view how, const Columns &columns,
                   const RowIds &ids, NarrowIds told, TaskMonitor &task, const Look &look) {
    const auto wanted = wantedOf(project, ids);
    if (!wanted || !hasUtf8(project))
        return NarrowWalk::Impossible;
    if (told == NarrowIds::untold && !areAll(project, *wanted))
        told = NarrowIds::told;
    const RawStatement statement = lookStatement(project, how, columns, told);
    if (!statement)
        return NarrowWalk::Impossible;
    Looker looker{look, *wanted, told};
    sqlite3_bind_pointer(statement.get(), 1, &looker, kLooker, nullptr);
    const StatementWatch watch(project, task, [&] {
        return static_cast<double>(looker.shown) / static_cast<double>(ids.size());
    });
    const int answer = sqlite3_step(statement.get());
    if (watch.cancelled())
        return NarrowWalk::Cancelled;
    return answer == SQLITE_ROW && areWanted(looker, statement.get()) ? NarrowWalk::Finished
                                                                      : NarrowWalk::Impossible;
}

NarrowWalk walkTrapped(SQLite::Database &project, std::string_view how, const Columns &columns,
                       const RowIds &ids, NarrowIds told, TaskMonitor &task, const Look &look) {
    NarrowWalk walk = NarrowWalk::Impossible;
    NoLog unheard; // who reads the rows themselves tells
    if (failureOf(unheard, {},
                  [&] { walk = walkAll(project, how, columns, ids, told, task, look); }))
        return NarrowWalk::Impossible;
    return walk;
}

} // namespace

IndexState ensureNarrowIndexes(SQLite::Database &project, TaskMonitor &task) {
    IndexState state = IndexState::Present;
    for (const NarrowIndex &index : kIndexes) {
        if (!hasColumns(project, index)) // a project of an earlier build
            continue;
        const IndexState each =
            ensureIndex(project, task, index.name,
                        fmt::format("URLs({}) WHERE {}", fmt::join(index.columns, ", "), kAllRows));
        if (each == IndexState::Cancelled)
            return each;
        if (each != IndexState::Present)
            state = each;
    }
    const IndexState ticks = ensureTickIndex(project, task);
    return ticks == IndexState::Present ? state : ticks;
}

std::int32_t NarrowRow::id() const {
    return m_id != nullptr ? sqlite3_value_int(m_id) : 0;
}

std::string_view NarrowRow::text(std::size_t column) const {
    sqlite3_value *value = m_columns[column];
    // As bytes it isn't copied for a zero behind it; numbers become a text all the same.
    const void *bytes = sqlite3_value_blob(value); // before the length, which it settles
    return {static_cast<const char *>(bytes), static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

std::optional<double> NarrowRow::number(std::size_t column) const {
    sqlite3_value *value = m_columns[column];
    const int type = sqlite3_value_type(value);
    return type == SQLITE_FLOAT || type == SQLITE_INTEGER
               ? std::optional(sqlite3_value_double(value))
               : std::nullopt;
}

bool NarrowRow::isSet(std::size_t column) const {
    return sqlite3_value_int(m_columns[column]) != 0;
}

NarrowWalk walkNarrow(SQLite::Database &project, const Columns &columns, const RowIds &ids,
                      NarrowIds told, TaskMonitor &task, const Look &look) {
    const NarrowIndex *index = indexWith(columns);
    if (index == nullptr)
        return NarrowWalk::Impossible;
    return walkTrapped(project, fmt::format("INDEXED BY {} WHERE {}", index->name, kAllRows),
                       columns, ids, told, task, look);
}

NarrowWalk walkTable(SQLite::Database &project, std::string_view source, const RowIds &ids,
                     RowOrder order, TaskMonitor &task, const Look &look) {
    return walkTrapped(project, order == RowOrder::byId ? "NOT INDEXED" : "", {source}, ids,
                       NarrowIds::told, task, look);
}

bool countNarrow(SQLite::Database &project, std::string_view column,
                 const std::function<void(std::string_view, std::uint64_t)> &show) {
    const NarrowIndex *index = indexWith({column});
    NoLog unheard; // who reads the rows themselves tells
    return index != nullptr && !failureOf(unheard, {}, [&] {
               SQLite::Statement rows(
                   project,
                   fmt::format("SELECT {0}, count(*) FROM URLs INDEXED BY {1} WHERE {2} GROUP BY "
                               "{0}",
                               column, index->name, kAllRows));
               while (rows.executeStep()) {
                   const SQLite::Column value = rows.getColumn(0);
                   const char *bytes = value.getText(); // before the length, which it settles
                   show({bytes, static_cast<std::size_t>(value.getBytes())},
                        static_cast<std::uint64_t>(rows.getColumn(1).getInt64()));
               }
           });
}

Walk findNarrow(SQLite::Database &project, const Columns &columns, const IdQuery &condition,
                TaskMonitor &task, RowIds &ids) {
    constexpr std::string_view kRows = "SELECT URL_ID FROM URLs";
    if (const NarrowIndex *index = indexWith(columns)) {
        const IdQuery indexed{fmt::format("{} INDEXED BY {} WHERE ({}) AND {}", kRows, index->name,
                                          condition.sql, kAllRows),
                              condition.bound};
        Walk walk = Walk::Finished;
        NoLog unheard; // who reads the rows themselves tells
        if (canRun(project, indexed) &&
            !failureOf(unheard, {}, [&] { walk = collectIds(project, indexed, task, ids); }))
            return walk;
        ids.clear();
    }
    FoundRows found;
    const Walk walk =
        findRows(project, {fmt::format("{} WHERE {}", kRows, condition.sql), condition.bound},
                 RecordFilters(), task, found);
    ids = std::move(found.ids);
    return walk;
}

} // namespace nv
