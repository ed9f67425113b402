#pragma once

#include "readers/sqlite/EvidenceDatabase.h"
#include "readers/sqlite/Row.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// Walks a table in the order of its row ids, which is the order in which rows were added. Where
/// the file is damaged it goes on after the damage, and it comes to an end however the pages of
/// the file point at each other. The database must outlive it.
class TableCursor {
  public:
    /// Throws EvidenceDamage when there is no such table.
    TableCursor(EvidenceDatabase &database, std::string_view table,
                std::span<const std::string_view> columns);

    /// False after the last row that can be found.
    bool next();
    std::int64_t rowId() const { return m_rowId; }
    bool isReadable() const { return m_content == Content::readable; }
    /// Throws EvidenceDamage when the row is there and its content can't be read.
    Row row();

    /// Rows of the table; nothing when they can't be counted.
    std::optional<std::uint64_t> total() const { return m_total; }
    /// 0 to 1; 0 when the number of rows can't be told.
    double fraction() const;
    /// Rows given whole so far.
    std::uint64_t given() const { return m_given; }
    /// At the end: true when damage was met, or rows are missing that an index of the table has.
    bool lostRows() const;
    /// How many are known to be lost.
    std::uint64_t knownLost() const;
    /// What was lost, for people.
    std::string lossText() const;

  private:
    /// What a look for the first row at or after an id met.
    struct Probe {
        enum class Outcome { found, none, damaged } outcome = Outcome::none;
        std::int64_t rowId = 0;
    };
    enum class Content { readable, unreadable };

    void prepareStatements(std::span<const std::string_view> columns);
    void countRows();
    bool takeInOrder(std::int64_t rowId);
    bool give(std::int64_t rowId, Content content);
    void restart();
    void noteDamage(int code);
    bool goBehindDamage();
    Probe probe(std::int64_t from);
    Probe leap();
    Probe leapBetween(std::int64_t from, std::int64_t last);

    EvidenceDatabase &m_database;
    std::string m_table;
    std::string m_idColumn;
    std::vector<int> m_positions;
    std::optional<SQLite::Statement> m_rows;
    std::optional<SQLite::Statement> m_ids;
    std::optional<std::uint64_t> m_total;

    static constexpr std::int64_t kFirstId = std::numeric_limits<std::int64_t>::min();
    std::int64_t m_next = kFirstId;  ///< least id not yet given
    std::int64_t m_rowId = kFirstId; ///< the last one given
    std::int64_t m_floor = kFirstId; ///< the one given before it: no row is taken at or below it
    Content m_content = Content::readable;
    bool m_atEnd = false;
    std::uint64_t m_given = 0;
    std::uint64_t m_unreadable = 0;
    std::uint64_t m_leaps = 0;
    std::optional<std::int64_t> m_retried; ///< the id after damage that is read a second time
    std::string m_firstDamage;
};

} // namespace nv
