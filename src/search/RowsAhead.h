#pragma once

#include "search/SearchedRow.h"
#include "search/SearchedRowReader.h"

#include <cstddef>
#include <cstdint>
#include <future>
#include <optional>
#include <set>
#include <vector>

namespace nv {

/// A row and what all of it comes to.
struct PrintedRow {
    SearchedRow row;
    std::uint64_t print = 0;
};

/// Rows that follow each other.
struct RowBatch {
    std::vector<PrintedRow> rows; ///< none: there are no more
    /// Of all rows up to the last of these; nothing when they are those that were told before.
    std::optional<std::set<std::int32_t>> unread;
    double fraction = 0; ///< of all rows, at their end; 0 to 1
};

/// Reads rows in a thread of its own while those before them are worked on. As long as it lives
/// nobody else may use the reader or its connection.
class RowsAhead {
  public:
    explicit RowsAhead(SearchedRowReader &reader);
    /// Waits for the batch that is being read.
    ~RowsAhead() = default;
    RowsAhead(const RowsAhead &) = delete;
    RowsAhead &operator=(const RowsAhead &) = delete;

    /// Throws what the reader throws; nothing more comes then.
    RowBatch next();

  private:
    void readOn();
    RowBatch batch();

    SearchedRowReader &m_reader;
    std::size_t m_toldUnread = 0;
    bool m_isAtEnd = false;
    std::future<RowBatch> m_coming; ///< of a thread that ends before this does
};

} // namespace nv
