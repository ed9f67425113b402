#pragma once

#include "readers/firefox/mork/MorkCollections.h"
#include "readers/firefox/mork/MorkLines.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// Finds the rows in the lines that belong to no dictionary.
class MorkRowScan {
  public:
    explicit MorkRowScan(MorkRows &rows) : m_rows(rows) {}

    void take(const MorkLine &line);
    /// To be called when there are no more lines.
    void finish();

    std::uint64_t outsideOfTable() const { return m_outside; }
    std::uint64_t behindCap() const { return m_behindCap; }
    /// Rows that the next one, or the file's end, broke off: those that keep some whole cells, and
    /// those of which nothing is left.
    std::uint64_t unclosed() const { return m_unclosed; }
    std::uint64_t lost() const { return m_lost; }
    /// Where the row, or the table or group, begins that the file's end broke off; 0-based.
    std::optional<std::uint64_t> cutAt() const { return m_cutAt; }

  private:
    enum class Ends { closed, brokenOff };

    std::size_t applyMarks(std::string_view line);
    std::size_t scanOutside(const MorkLine &line, std::size_t at, std::size_t rowsFrom);
    std::size_t scanRow(const MorkLine &line, std::size_t at);
    void openRow(std::uint64_t offset, bool counts);
    void endRow(Ends how);
    void keepRow();
    void brace(char c, std::uint64_t offset);

    MorkRows &m_rows;
    bool m_isInTable = false;
    bool m_isRowOpen = false;
    bool m_isInCell = false;
    bool m_isContinued = false;
    bool m_counts = false; ///< the open row stands where rows are read
    std::string m_row;
    std::size_t m_lastCellEnd = 0; ///< in m_row
    std::uint64_t m_rowAt = 0;
    std::uint64_t m_depth = 0; ///< of braces
    std::uint64_t m_braceAt = 0;
    std::uint64_t m_outside = 0;
    std::uint64_t m_behindCap = 0;
    std::uint64_t m_unclosed = 0;
    std::uint64_t m_lost = 0;
    std::optional<std::uint64_t> m_cutAt;
};

/// Sets where the file first holds the beginning of each row, "[" + id + "(", in one pass over it.
void locateMorkRows(MorkRows &rows, std::string_view file);

} // namespace nv
