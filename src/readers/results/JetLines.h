#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace nv {

/// One value of a row of a Jet table: null, bool, number or date, text (UTF-8).
using JetCell = std::variant<std::monostate, bool, double, std::string>;

struct JetRow {
    std::uint64_t place = 0; ///< of the row's entry in the file, 0-based
    std::vector<JetCell> cells;
    /// Where the bytes of each cell begin in the file, and how many there are; 0 for none. Of long
    /// texts it is what leads to them.
    std::vector<std::pair<std::uint64_t, std::uint64_t>> places;
    std::vector<std::size_t> cut; ///< cells that are not whole
    std::string damage;           ///< why the row can't be read; it then has no cells
};

struct JetHead {
    std::uint64_t rows = 0; ///< that the table's definition counts
    /// "bool", "number", "date" or "text" for each column asked for; empty when it isn't there.
    std::vector<std::string> kinds;
};

/// Makes rows of the lines that norvelane-jet writes. The lines are no more trusted than the file:
/// what makes no sense becomes `failure()`.
class JetLines {
  public:
    struct Receiver {
        std::function<void(const JetHead &head)> head;
        std::function<bool(const JetRow &row)> row; ///< false ends the reading
    };
    JetLines(std::size_t columns, Receiver receiver);

    /// False when nothing more is wanted.
    bool take(std::string_view line);

    bool hasEnded() const { return m_hasEnded; }
    /// Why nothing or nothing more can be read.
    const std::string &failure() const { return m_failure; }
    /// What is wrong with the file as a whole, although its rows could be read.
    const std::string &damage() const { return m_damage; }
    std::uint64_t deletedRows() const { return m_deleted; }
    /// Rows that were found although the table's list of pages doesn't lead to them.
    std::uint64_t unlistedRows() const { return m_unlisted; }

  private:
    struct Parsed;
    bool takeHead(const Parsed &line);
    bool takeRow(const Parsed &line);
    bool refuse();

    std::size_t m_columns;
    Receiver m_receiver;
    bool m_hasHead = false;
    bool m_hasEnded = false;
    std::string m_failure;
    std::string m_damage;
    std::uint64_t m_deleted = 0;
    std::uint64_t m_unlisted = 0;
};

} // namespace nv
