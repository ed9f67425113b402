#pragma once

#include "base/TaskMonitor.h"
#include "search/RowsAhead.h"

#include <SQLiteCpp/Statement.h>

#include <cstdint>
#include <limits>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace nv {

/// One pass that makes an index say what the project says: rows that are new, that have changed or
/// have gone. A changed row is indexed again under another number, and its old one is dead, since
/// the index keeps no text that it could take away.
class IndexFill {
  public:
    /// With `parts` there is a table of parts; with `fillsParts` it is still empty.
    IndexFill(SQLite::Database &project, SQLite::Database &index, bool parts, bool fillsParts);

    /// False when cancelled; what was done up to then holds. Rows are read in a thread of
    /// their own: nobody else, and no task, may use the project's connection meanwhile.
    bool run(TaskMonitor &task);

    std::int64_t added() const { return m_added; }
    std::int64_t changed() const { return m_changed; }
    std::int64_t gone() const { return m_gone; }
    /// Of the index, after the pass.
    std::int64_t dead();
    std::int64_t rows();

  private:
    struct Known {
        std::int32_t id = 0;
        std::int32_t round = 0;
        std::uint64_t print = 0;
    };

    const Known *known();
    bool lookAtAll(TaskMonitor &task);
    void passOver(std::int32_t before);
    void look(const PrintedRow &printed);
    void bury(const Known &known);
    void insert(const SearchedRow &row, std::uint64_t print);
    void insertParts(const SearchedRow &row, std::int32_t round);
    void keepUnread();

    SQLite::Database &m_index;
    SearchedRowReader m_reader;
    std::set<std::int32_t> m_unread; ///< of the rows up to those in hand
    bool m_fillsParts;
    std::int32_t m_round = 0;   ///< of this pass: the upper half of its numbers
    std::vector<Known> m_known; ///< some rows that follow each other
    std::size_t m_next = 0;     ///< of m_known
    std::int32_t m_lastKnown = std::numeric_limits<std::int32_t>::min(); ///< of those read so far
    bool m_knowsAll = false;
    std::string m_joined;
    std::string m_folded;    ///< room for partText()
    std::string m_pageWords; ///< room for wordText(), and for partText() then
    std::string m_headerWords;
    SQLite::Statement m_knownRows;
    SQLite::Statement m_brief;
    SQLite::Statement m_words;
    std::optional<SQLite::Statement> m_parts;
    SQLite::Statement m_row;
    SQLite::Statement m_bury;
    SQLite::Statement m_remove;
    std::int64_t m_added = 0;
    std::int64_t m_changed = 0;
    std::int64_t m_gone = 0;
};

/// The number under which the texts of a row lie in the index, and the row of a number.
std::int64_t docOf(std::int32_t id, std::int32_t round);
std::int32_t rowOfDoc(std::int64_t doc);

} // namespace nv
