#include "readers/sqlite/TableCursor.h"

#include "base/Trap.h"
#include "readers/sqlite/ColumnList.h"
#include "readers/sqlite/KeptMessage.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr std::int64_t kLastId = std::numeric_limits<std::int64_t>::max();

/// Damaged stretches of one table that are gone round, each at the cost of some 400 look-ups.
constexpr std::uint64_t kMostLeaps = 1000;
/// Rows of one table whose content can't be read, each at the cost of three look-ups.
constexpr std::uint64_t kMostUnreadable = 100'000;

/// The name by which the row id is reached: a column may have taken one or two of them away.
std::string idColumnOf(const std::set<std::string> &columns) {
    for (const char *name : {"rowid", "_rowid_", "oid"})
        if (!columns.contains(name))
            return name;
    throw EvidenceDamage("a table whose row ids can be reached was expected");
}

/// Row ids as distances: their difference can exceed what a signed number holds.
std::uint64_t distance(std::int64_t from, std::int64_t to) {
    return static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
}

std::int64_t moved(std::int64_t from, std::uint64_t by) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(from) + by);
}

} // namespace

TableCursor::TableCursor(EvidenceDatabase &database, std::string_view table,
                         std::span<const std::string_view> columns)
    : m_database(database), m_table(table) {
    if (!database.hasTable(table))
        throw EvidenceDamage(fmt::format("in its list of tables: table \"{}\" was expected and is "
                                         "not there",
                                         table));
    prepareStatements(columns);
    countRows();
    restart();
}

void TableCursor::prepareStatements(std::span<const std::string_view> columns) {
    const std::set<std::string> present = m_database.columnsOf(m_table);
    m_idColumn = idColumnOf(present);
    const ColumnList list(present, columns, {m_idColumn});
    m_positions = list.positions;
    // Never by way of an index: what it holds may differ from the rows in a damaged file.
    constexpr const char *kSql =
        "SELECT {0} FROM main.\"{1}\" NOT INDEXED WHERE {2} >= ?1 ORDER BY {2}";
    m_rows.emplace(m_database.prepare(fmt::format(kSql, list.sql, m_table, m_idColumn)));
    m_ids.emplace(m_database.prepare(fmt::format(kSql, m_idColumn, m_table, m_idColumn)));
}

/// count(*) would be done in one instruction, which nothing could break off in a file whose pages
/// point at each other in circles. SQLite counts over an index when there is one: that tells of
/// rows that the table itself doesn't lead to any more.
void TableCursor::countRows() {
    KeptMessage uncounted; // a total that nobody knows is no failure
    const auto count = [this] {
        SQLite::Statement query = m_database.prepare(
            fmt::format("SELECT count({}) FROM main.\"{}\"", m_idColumn, m_table));
        m_database.expectWholeTable();
        query.executeStep();
        return std::optional(static_cast<std::uint64_t>(query.getColumn(0).getInt64()));
    };
    m_total = trapped(uncounted, Severity::Low, "", "", std::optional<std::uint64_t>(), count);
}

bool TableCursor::next() {
    while (!m_atEnd) {
        m_database.expectOneRow();
        const int code = m_rows->tryExecuteStep();
        if (code == SQLITE_DONE)
            break;
        if (code == SQLITE_ROW && takeInOrder(m_rows->getColumn(0).getInt64()))
            return true;
        noteDamage(code);
        if (goBehindDamage())
            return true;
    }
    m_atEnd = true;
    return false;
}

/// A row after the last one, or between the last two: then the last one's id was damaged, and the
/// rows that follow it are as good as any.
bool TableCursor::takeInOrder(std::int64_t rowId) {
    if (rowId >= m_next) {
        m_floor = m_rowId;
        return give(rowId, Content::readable);
    }
    if (rowId <= m_floor || rowId == m_rowId)
        return false;
    noteDamage(SQLITE_ROW);
    m_floor = rowId;
    return give(rowId, Content::readable);
}

bool TableCursor::give(std::int64_t rowId, Content content) {
    m_rowId = rowId;
    m_content = content;
    ++(content == Content::readable ? m_given : m_unreadable);
    m_atEnd = rowId == kLastId;
    m_next = m_atEnd ? rowId : rowId + 1;
    return true;
}

Row TableCursor::row() {
    if (!isReadable())
        throw EvidenceDamage(fmt::format(
            "the content of this row of table \"{}\" can't be read: {}", m_table, m_firstDamage));
    return {*m_rows, m_positions};
}

void TableCursor::restart() {
    m_rows->tryReset();
    m_rows->bind(1, m_next);
}

void TableCursor::noteDamage(int code) {
    if (!m_firstDamage.empty())
        return;
    const std::string what =
        code == SQLITE_ROW ? "rows that are out of order" : m_database.lastError();
    m_firstDamage = m_given == 0 ? fmt::format("{} at its first row", what)
                                 : fmt::format("{} behind row {}", what, m_rowId);
}

/// True when a row is there that can be given only as unreadable; otherwise the walk is set to go
/// on, or is at its end.
bool TableCursor::goBehindDamage() {
    Probe ahead = probe(m_next);
    if (ahead.outcome == Probe::Outcome::damaged)
        ahead = leap();
    m_atEnd = ahead.outcome != Probe::Outcome::found || m_unreadable >= kMostUnreadable;
    if (m_atEnd)
        return false;
    const bool failedAgain = std::exchange(m_retried, ahead.rowId) == ahead.rowId;
    if (failedAgain)
        give(ahead.rowId, Content::unreadable);
    else
        m_next = ahead.rowId;
    restart();
    return failedAgain;
}

TableCursor::Probe TableCursor::probe(std::int64_t from) {
    m_ids->tryReset();
    m_ids->bind(1, from);
    m_database.expectOneRow();
    const int code = m_ids->tryExecuteStep();
    if (code == SQLITE_DONE)
        return {Probe::Outcome::none, 0};
    const std::int64_t rowId = code == SQLITE_ROW ? m_ids->getColumn(0).getInt64() : 0;
    const bool found = code == SQLITE_ROW && rowId >= from;
    return {found ? Probe::Outcome::found : Probe::Outcome::damaged, rowId};
}

/// The first row after a damaged stretch. Browsers count rows from 1: where damage begins below
/// that, the search starts anew from there, with small steps.
TableCursor::Probe TableCursor::leap() {
    if (++m_leaps > kMostLeaps)
        return {};
    if (m_next < 0)
        if (const Probe found = leapBetween(m_next, 0); found.outcome != Probe::Outcome::damaged)
            return found;
    return leapBetween(std::max<std::int64_t>(m_next, 0), kLastId);
}

/// Outwards in steps that grow by an eighth, so that few rows between two damaged stretches are
/// missed, until a look-up succeeds; then halving back to the least id from which one does.
TableCursor::Probe TableCursor::leapBetween(std::int64_t from, std::int64_t last) {
    const std::uint64_t room = distance(from, last);
    std::uint64_t bad = 0;
    std::uint64_t good = std::min<std::uint64_t>(1, room);
    Probe best = probe(moved(from, good));
    while (best.outcome == Probe::Outcome::damaged) {
        if (good == room)
            return best;
        bad = good;
        good += std::min(room - good, good / 8 + 1);
        best = probe(moved(from, good));
    }
    while (good - bad > 1) {
        const std::uint64_t middle = bad + (good - bad) / 2;
        const Probe nearer = probe(moved(from, middle));
        if (nearer.outcome == Probe::Outcome::damaged) {
            bad = middle;
        } else {
            good = middle;
            best = nearer;
        }
    }
    return best;
}

double TableCursor::fraction() const {
    if (m_total.value_or(0) == 0)
        return 0;
    return std::min(1.0, static_cast<double>(m_given) / static_cast<double>(*m_total));
}

bool TableCursor::lostRows() const {
    return !m_firstDamage.empty() || knownLost() > 0;
}

std::uint64_t TableCursor::knownLost() const {
    const std::uint64_t missing = m_total && *m_total > m_given ? *m_total - m_given : 0;
    return std::max(missing, m_unreadable);
}

std::string TableCursor::lossText() const {
    const std::string what =
        m_firstDamage.empty() ? "fewer rows than an index of the table has" : m_firstDamage;
    const std::string lost = m_total ? fmt::format("{} of {}", knownLost(), *m_total)
                                     : std::string("an unknown number of");
    return fmt::format("in table \"{}\": {}; {} rows could not be read", m_table, what, lost);
}

} // namespace nv
