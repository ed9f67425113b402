#include "time/ZoneDatabase.h"

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
    row.Time_Zone_ID = query.getColumn("Time_Zone_ID").getInt();
    row.UTC_Offset = textOf(query, "UTC_Offset");
    row.Landmarks = textOf(query, "Landmarks");
    row.STD_Time_Zone = textOf(query, "STD_Time_Zone");
    row.DST_Time_Zone = textOf(query, "DST_Time_Zone");
    row.STD_Code = textOf(query, "STD_Code");
    row.DST_Code = textOf(query, "DST_Code");
    row.STD_Bias = minutesOf(query, "STD_Bias");
    if (!query.getColumn("DST_Bias").isNull())
        row.DST_Bias = minutesOf(query, "DST_Bias");
    row.Latitude_Bias = minutesOf(query, "Latitude_Bias");
    row.UsesDST = query.getColumn("UsesDST").getInt() != 0;
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

/// The hemisphere turns the sign of the daylight bias here, other than in ConvertDateToZone().
std::int16_t activeDaylightBias(const ZoneRow &row) {
    return narrow(row.STD_Bias + std::int64_t{row.Latitude_Bias} * row.DST_Bias.value_or(0),
                  "the active bias");
}

void showActiveBias(TimeZoneClass &zone) {
    zone.tzBiasAsText = FormatBiasText(narrow(-zone.tzActiveBias, "the active bias"));
}

void setFromRow(TimeZoneClass &zone, const ZoneRow &row, bool daylightNow) {
    zone.exact.reset();
    zone.tzTimeZoneID = row.Time_Zone_ID;
    zone.tzBias = row.STD_Bias;
    zone.tzDSTBias = row.DST_Bias.value_or(0);
    zone.tzLatitudeBias = row.Latitude_Bias;
    zone.DSTAdjustment = zone.DSTInEffect = daylightNow;
    zone.DaylightCode = daylightNow ? "DST" : "STD";
    zone.tzName = row.STD_Time_Zone;
}

void detectFromRow(TimeZoneClass &zone, const ZoneRow &row, bool ruleInEffect) {
    zone.exact.reset();
    zone.tzBias = zone.tzActiveBias = row.STD_Bias;
    zone.DaylightCode = row.DST_Code;
    zone.DSTAdjustment = row.DST_Bias.has_value();
    if (!ruleInEffect)
        zone.DSTInEffect = false;
    // A zone without daylight time leaves DSTInEffect as it was.
    if (ruleInEffect && row.UsesDST) {
        zone.DSTInEffect = true;
        zone.tzActiveBias = activeDaylightBias(row);
    }
    showActiveBias(zone);
    zone.tzDaylightCode = row.DST_Code;
    zone.tzDaylightName = row.DST_Time_Zone;
    zone.tzLatitudeBias = row.Latitude_Bias;
    zone.tzLongitudeBias = static_cast<std::int16_t>((zone.tzBias > 0) - (zone.tzBias < 0));
    zone.tzName = "(UTC" + row.UTC_Offset + ") " + row.STD_Time_Zone;
    zone.tzStandardCode = row.STD_Code;
    zone.tzStandardName = row.STD_Time_Zone;
    zone.tzTimeZoneID = row.Time_Zone_ID;
}

} // namespace

ZoneChange ZoneDatabase::SetNewTimeZone(TimeZoneClass &zone, std::int32_t id, Date now,
                                        bool enableDSTChanges) const {
    static constexpr auto kProcedure = "OptionsForm.SetNewTimeZone()";
    ZoneChange change;
    const auto rows =
        trappedSelect(m_log, kProcedure, m_file, change.errorNumber, "WHERE Time_Zone_ID = ?", id);
    if (rows.empty())
        return change;
    const ZoneRow &row = rows.front();
    change.found = true;
    setFromRow(zone, row, IsDSTInEffect(now, row.Latitude_Bias) && enableDSTChanges);
    const bool shown = trapped(m_log, Severity::Warning, kProcedure, kContactSupport, false, [&] {
        zone.tzActiveBias =
            row.UsesDST && zone.DSTInEffect ? activeDaylightBias(row) : row.STD_Bias;
        showActiveBias(zone);
        return true;
    });
    if (!shown)
        change.errorNumber = kOverflow;
    return change;
}

TimeZoneClass ZoneDatabase::GetSystemTimeZone(TimeZoneClass zone, const MachineZone &machine,
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
    TimeZoneClass result = zone;
    const bool detected =
        !rows.empty() && trapped(m_log, Severity::Warning, kProcedure, kContactSupport, false, [&] {
            detectFromRow(result, rows.front(), IsDSTInEffect(now, rows.front().Latitude_Bias));
            return true;
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

std::optional<std::size_t> placeInList(const std::vector<ZoneRow> &rows,
                                       const TimeZoneClass &zone) {
    std::optional<std::size_t> sameBias;
    for (std::size_t place = 0; place < rows.size(); ++place) {
        const ZoneRow &row = rows[place];
        if (row.Time_Zone_ID == zone.tzTimeZoneID)
            return place;
        if (row.STD_Bias != zone.tzBias)
            continue;
        const bool canada = containsNoCase(row.Landmarks, "Canada");
        if (!sameBias || (canada && !containsNoCase(rows[*sameBias].Landmarks, "Canada")))
            sameBias = place;
    }
    return sameBias;
}

} // namespace nv
