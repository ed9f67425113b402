#pragma once

#include "base/FailureLog.h"
#include "base/Trap.h"
#include "time/ShownDate.h"
#include "views/PathCheck.h"
#include "views/UrlRow.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

namespace nv {

/// A cell for other programs: nothing, a truth value, a number or a text.
using MachineValue = std::variant<std::monostate, bool, std::int64_t, double, std::string>;

/// The rules that make cells of a row. `zone` is the project's and is looked at anew for each cell.
class RowCells {
  public:
    RowCells(FailureLog &log, const TimeZoneClass &zone)
        : m_zone(zone), m_dateTrap(log, "MainForm.LoadURLs()") {}

    DateSettings dates;

    /// One line that can be shown; see displayText(). The tick column has no text.
    std::string text(const UrlRow &row, UrlColumn column);
    /// The same cell with dates in ISO 8601: UTC with "Z", the zone's with its offset and whatever
    /// its age. Texts are cut where the row's are: take fullTextOf() for those that aren't whole.
    MachineValue machine(const UrlRow &row, UrlColumn column);
    static std::string_view iconKeyOf(const UrlRow &row);
    /// What can stand behind a date of the zone: " DST", or the abbreviations of an exact one.
    std::string zoneCodes() const;
    /// Files may have moved: ask the file system again.
    void forgetPaths() { m_paths.forget(); }

  private:
    bool isBadPath(const UrlRow &row);
    std::string dateText(const UrlRow &row, UrlColumn column);
    std::string zoneIso(const UrlRow &row);

    const TimeZoneClass &m_zone;
    PathCheck m_paths;
    RecordTrap m_dateTrap; ///< for zones whose biases can't be added
};

/// True when the stored text was longer than a row keeps.
bool isCut(const StoredValue &value);

} // namespace nv
