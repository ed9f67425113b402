#pragma once

#include "base/FailureLog.h"
#include "platform/SystemTime.h"
#include "time/TimeZone.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace nv {

/// A row of `Time_Zones`; see docs/formats/nvtz.md. Texts are trimmed.
struct ZoneRow {
    std::int32_t timeZoneID = 0;
    std::string utcOffset; ///< such as "-05:00"
    std::string landmarks;
    std::string stdTimeZone;
    std::string dstTimeZone;
    std::string stdCode;
    std::string dstCode;
    std::int16_t stdBias = 0; ///< minutes, west of Greenwich positive
    std::optional<std::int16_t> dstBias;
    std::int16_t latitudeBias = 0;
    bool usesDST = false;

    /// As zone lists show it: "(UTC-05:00) Eastern Time (US & Canada)".
    std::string listText() const { return "(UTC" + utcOffset + ") " + landmarks; }
};

/// How a change of zone came out. With a failure the message to the examiner is
/// "Error Setting Time Zone" with the number: 14 nvTZ.dat can't be opened, 1 it can't be read,
/// 6 the row's biases overflow; the failure is logged already.
struct ZoneChange {
    bool found = false; ///< there is such a row
    int errorNumber = 0;
};

/// nvTZ.dat, which is opened read-only for each call and closed at its end. Failures go to the log
/// as warnings.
class ZoneDatabase {
  public:
    /// The log must outlive this.
    ZoneDatabase(std::filesystem::path file, FailureLog &log)
        : m_file(std::move(file)), m_log(log) {}

    /// Makes `zone` the row `id`; without such a row, or when it can't be read, nothing changes.
    /// When the active bias overflows, the zone stays half set.
    ZoneChange setNewTimeZone(TimeZone &zone, std::int32_t id, Date now,
                              bool enableDSTChanges) const;

    /// `zone` changed to the first row that has the machine's bias and a name beginning with the
    /// machine's, in which % and _ count as in LIKE; to the default zone when there is none.
    /// `tzDSTBias` stays as it was: until setNewTimeZone() runs, dates convert without a daylight
    /// shift.
    TimeZone getSystemTimeZone(TimeZone zone, const MachineZone &machine, Date now) const;

    /// All zones by the text of utcOffset; none when the file can't be read.
    std::vector<ZoneRow> listZones() const;

  private:
    std::filesystem::path m_file;
    FailureLog &m_log;
};

/// The place in `rows` of the zone in use: the row of its id, otherwise one with its bias, of which
/// a row of Canada wins.
std::optional<std::size_t> placeInList(const std::vector<ZoneRow> &rows, const TimeZone &zone);

} // namespace nv
