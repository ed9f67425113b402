#include "time/ZoneDatabase.h"

#include "base/Succeeds.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "time/Daylight.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <stdexcept>
#include <utility>

namespace nv {

namespace {

constexpr std::size_t kMachineNameCharacters = 32;
constexpr int kOverflow = 6;

std::int16_t narrow(std::int64_t value, const char *what) {
    if (!std::in_range<std::int16_t>(value))
        throw std::range_error(std::string(what) +
                               " doesn't fit 16 bits: " + std::to_string(value));
    return static_cast<std::int16_t>(value);
}

std::string textOf(SQLite::Statement &query, const char *column) {
    return std::string(trim(query.getColumn(column).getString()));
}

std::int16_t minutesOf(SQLite::Statement &query, const char *column) {
    return narrow(query.getColumn(column).getInt64(), column);
}

ZoneRow rowOf(SQLite::Statement &query) {
    ZoneRow row;
    row.timeZoneID = query.getColumn("Time_Zone_ID").getInt();
    row.utcOffset = textOf(query, "UTC_Offset");
    row.landmarks = textOf(query, "Landmarks");
    row.stdTimeZone = textOf(query, "STD_Time_Zone");
    row.dstTimeZone = textOf(query, "DST_Time_Zone");
    row.stdCode = textOf(query, "STD_Code");
    row.dstCode = textOf(query, "DST_Code");
    row.stdBias = minutesOf(query, "STD_Bias");
    if (!query.getColumn("DST_Bias").isNull())
        row.dstBias = minutesOf(query, "DST_Bias");
    row.latitudeBias = minutesOf(query, "Latitude_Bias");
    row.usesDST = query.getColumn("UsesDST").getInt() != 0;
    return row;
}

/// Bound values are numbered from 1 in the order of `values`.
template <class... Values>
std::vector<ZoneRow> select(const std::filesystem::path &file, int &errorNumber,
                            const char *condition, const Values &...values) {
    errorNumber = SQLITE_CANTOPEN;
    SQLite::Database database(file, SQLite::OPEN_READONLY);
    errorNumber = SQLITE_ERROR;
    SQLite::Statement query(database, std::string("SELECT * FROM Time_Zones ") + condition);
    int place = 0;
    (query.bind(++place, values), ...);
    std::vector<ZoneRow> rows;
    while (query.executeStep())
        rows.push_back(rowOf(query));
    errorNumber = 0;
    return rows;
}

template <class... Values>
std::vector<ZoneRow> trappedSelect(FailureLog &log, const char *procedure,
                                   const std::filesystem::path &file, int &errorNumber,
                                   const char *condition, const Values &...values) {
    return trapped(log, Severity::Warning, procedure, kContactSupport, std::vector<ZoneRow>(),
                   [&] { return select(file, errorNumber, condition, values...); });
}

/// The hemisphere turns the sign of the daylight bias here, other than in convertDateToZone().
std::int16_t activeDaylightBias(const ZoneRow &row) {
    return narrow(row.stdBias + std::int64_t{row.latitudeBias} * row.dstBias.value_or(0),
                  "the active bias");
}

void showActiveBias(TimeZone &zone) {
    zone.tzBiasAsText = formatBiasText(narrow(-zone.tzActiveBias, "the active bias"));
}

void setFromRow(TimeZone &zone, const ZoneRow &row, bool daylightNow) {
    zone.exact.reset();
    zone.tzTimeZoneID = row.timeZoneID;
    zone.tzBias = row.stdBias;
    zone.tzDSTBias = row.dstBias.value_or(0);
    zone.tzLatitudeBias = row.latitudeBias;
    zone.dstAdjustment = zone.dstInEffect = daylightNow;
    zone.daylightCode = daylightNow ? "DST" : "STD";
    zone.tzName = row.stdTimeZone;
}

void detectFromRow(TimeZone &zone, const ZoneRow &row, bool ruleInEffect) {
    zone.exact.reset();
    zone.tzBias = zone.tzActiveBias = row.stdBias;
    zone.daylightCode = row.dstCode;
    zone.dstAdjustment = row.dstBias.has_value();
    if (!ruleInEffect)
        zone.dstInEffect = false;
    // A zone without daylight time leaves dstInEffect as it was.
    if (ruleInEffect && row.usesDST) {
        zone.dstInEffect = true;
        zone.tzActiveBias = activeDaylightBias(row);
    }
    showActiveBias(zone);
    zone.tzDaylightCode = row.dstCode;
    zone.tzDaylightName = row.dstTimeZone;
    zone.tzLatitudeBias = row.latitudeBias;
    zone.tzLongitudeBias = static_cast<std::int16_t>((zone.tzBias > 0) - (zone.tzBias < 0));
    zone.tzName = "(UTC" + row.utcOffset + ") " + row.stdTimeZone;
    zone.tzStandardCode = row.stdCode;
    zone.tzStandardName = row.stdTimeZone;
    zone.tzTimeZoneID = row.timeZoneID;
}

} // namespace

ZoneChange ZoneDatabase::setNewTimeZone(TimeZone &zone, std::int32_t id, Date now,
                                        bool enableDSTChanges) const {
    static constexpr auto kProcedure = "OptionsForm.SetNewTimeZone()";
    ZoneChange change;
    const auto rows =
        trappedSelect(m_log, kProcedure, m_file, change.errorNumber, "WHERE Time_Zone_ID = ?", id);
    if (rows.empty())
        return change;
    const ZoneRow &row = rows.front();
    change.found = true;
    setFromRow(zone, row, isDSTInEffect(now, row.latitudeBias) && enableDSTChanges);
    const bool shown = succeeds(m_log, Severity::Warning, kProcedure, kContactSupport, [&] {
        zone.tzActiveBias = row.usesDST && zone.dstInEffect ? activeDaylightBias(row) : row.stdBias;
        showActiveBias(zone);
    });
    if (!shown)
        change.errorNumber = kOverflow;
    return change;
}

TimeZone ZoneDatabase::getSystemTimeZone(TimeZone zone, const MachineZone &machine,
                                         Date now) const {
    static constexpr auto kProcedure = "TimeFunctions_Revised.GetSystemTimeZone()";
    const std::string name(charSub(machine.standardName, 0, kMachineNameCharacters));
    int errorNumber = 0;
    // The exact name comes first: "Mountain Standard Time" also begins that of Mexico's zone.
    const auto rows =
        trappedSelect(m_log, kProcedure, m_file, errorNumber,
                      "WHERE STD_Bias = ?1 AND STD_Time_Zone LIKE ?2 || '%' "
                      "ORDER BY lower(trim(STD_Time_Zone)) <> lower(?2), Time_Zone_ID",
                      machine.biasMinutes, name);
    TimeZone result = zone;
    const bool detected =
        !rows.empty() && succeeds(m_log, Severity::Warning, kProcedure, kContactSupport, [&] {
            detectFromRow(result, rows.front(), isDSTInEffect(now, rows.front().latitudeBias));
        });
    if (detected)
        return result;
    zone.setToDefault(now);
    return zone;
}

std::vector<ZoneRow> ZoneDatabase::listZones() const {
    int errorNumber = 0;
    return trappedSelect(m_log, "OptionsForm.InitTimeZone()", m_file, errorNumber,
                         "ORDER BY UTC_Offset ASC, Time_Zone_ID");
}

std::optional<std::size_t> placeInList(const std::vector<ZoneRow> &rows, const TimeZone &zone) {
    std::optional<std::size_t> sameBias;
    for (std::size_t place = 0; place < rows.size(); ++place) {
        const ZoneRow &row = rows[place];
        if (row.timeZoneID == zone.tzTimeZoneID)
            return place;
        if (row.stdBias != zone.tzBias)
            continue;
        const bool canada = containsNoCase(row.landmarks, "Canada");
        if (!sameBias || (canada && !containsNoCase(rows[*sameBias].landmarks, "Canada")))
            sameBias = place;
    }
    return sameBias;
}

} // namespace nv
