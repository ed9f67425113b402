#pragma once

#include "cli/RowWriter.h"
#include "time/ShownDate.h"

#include <string>
#include <vector>

namespace SQLite {
class Statement;
}

namespace nv::cli {

/// Makes cells of a statement's rows. Date columns of the schema become texts: ISO 8601 for
/// programs, the examiner's formats for people; bytes become their number; visits of a format
/// without a counter are nothing.
class StatementCells {
  public:
    enum class For { programs, people };
    StatementCells(SQLite::Statement &statement, For whom, DateSettings dates);

    const std::vector<std::string> &headings() const { return m_headings; }
    /// Of the row in hand.
    std::vector<Cell> cells() const;

  private:
    enum class Kind { plain, visits, utcDate, localDate };
    static Kind kindOf(const char *origin);
    Cell cell(int index) const;
    std::string dateText(double days, Kind kind) const;

    SQLite::Statement &m_statement;
    For m_whom;
    DateSettings m_dates;
    std::vector<std::string> m_headings;
    std::vector<Kind> m_kinds;
};

} // namespace nv::cli
