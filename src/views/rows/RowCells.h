#pragma once

#include "base/Cell.h"
#include "base/FailureLog.h"
#include "base/Trap.h"
#include "time/ShownDate.h"
#include "views/rows/PathCheck.h"
#include "views/rows/UrlRow.h"

#include <string>
#include <string_view>

namespace nv {

/// The rules that make cells of a row. `zone` is the project's and is looked at anew for each cell.
class RowCells {
  public:
    RowCells(FailureLog &log, const TimeZone &zone)
        : m_zone(zone), m_dateTrap(log, "MainForm.LoadURLs()") {}

    DateSettings dates;

    /// One line that can be shown; see displayText(). The tick column has no text.
    std::string text(const UrlRow &row, UrlColumn column);
    /// The same cell with dates in ISO 8601: UTC with "Z", the zone's with its offset and whatever
    /// its age. Texts are cut where the row's are: take fullTextOf() for those that aren't whole.
    Cell machine(const UrlRow &row, UrlColumn column);
    static std::string_view iconKeyOf(const UrlRow &row);
    /// What can stand after a date of the zone: " DST", or the abbreviations of an exact one.
    std::string zoneCodes() const;
    /// Files may have moved: ask the file system again.
    void forgetPaths() { m_paths.forget(); }

  private:
    bool isBadPath(const UrlRow &row);
    std::string dateText(const UrlRow &row, UrlColumn column);
    std::string zoneIso(const UrlRow &row);

    const TimeZone &m_zone;
    PathCheck m_paths;
    RecordTrap m_dateTrap; ///< for zones whose biases can't be added
};

/// True when the stored text was longer than a row keeps.
bool isCut(const StoredValue &value);

} // namespace nv
