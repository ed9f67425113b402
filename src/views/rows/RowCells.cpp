#include "views/rows/RowCells.h"

#include "base/Text.h"
#include "db/records/UrlRecord.h"
#include "rebuild/RebuiltRow.h"
#include "time/ExactZone.h"
#include "views/rows/CellText.h"
#include "views/rows/IconKey.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cstdlib>
#include <type_traits>
#include <variant>

namespace nv {
namespace {

// With the month as a word nobody takes it for the day.
constexpr std::string_view kWordyFormat = "dd-mmm-yyyy Hh:Nn:Ss";
constexpr std::string_view kBadPath = "Bad Path";
/// In the place of the status of a row that could not be read: nobody must take it for an empty
/// one.
constexpr std::string_view kUnreadable = "Unreadable";

const StoredValue &storedIn(const UrlRow &row, UrlColumn column) {
    return row.stored.at(indexOf(column));
}

Cell cellOf(const StoredValue &value) {
    return std::visit(
        [](const auto &held) -> Cell {
            if constexpr (std::is_same_v<std::decay_t<decltype(held)>, std::monostate>)
                return nullptr;
            else if constexpr (std::is_same_v<std::decay_t<decltype(held)>, double>)
                return numberCell(held);
            else
                return held;
        },
        value);
}

/// Nothing where the format has no counter, so that nobody takes the stand-in for a number.
Cell storedNumber(const UrlRow &row, UrlColumn column) {
    const Cell value = cellOf(storedIn(row, column));
    const auto *whole = std::get_if<std::int64_t>(&value);
    return column == UrlColumn::Visits && whole && *whole == kVisitsUnknown ? Cell() : value;
}

Cell unreadCell(const UrlRow &row, UrlColumn column) {
    if (column == UrlColumn::Id)
        return number(row.id);
    return column == UrlColumn::Status ? Cell(std::string(kUnreadable)) : Cell();
}

/// What a failure's line in the log names.
std::uint64_t trapKey(const UrlRow &row) {
    return static_cast<std::uint64_t>(number(row.id));
}

std::string storedText(const UrlRow &row, UrlColumn column) {
    return plainText(cellOf(storedIn(row, column)));
}

bool storedFlag(const UrlRow &row, UrlColumn column) {
    const auto *flag = std::get_if<std::int64_t>(&storedIn(row, column));
    return flag && *flag != 0;
}

Date storedDate(const UrlRow &row, UrlColumn column) {
    const StoredValue &value = storedIn(row, column);
    double days = 0;
    if (const auto *real = std::get_if<double>(&value))
        days = *real;
    else if (const auto *whole = std::get_if<std::int64_t>(&value))
        days = static_cast<double>(*whole);
    else
        return {};
    // An expiry of 0 was written for "never set".
    return column == UrlColumn::ExpiryDate && days == 0 ? Date() : Date::fromDays(days);
}

/// The text is written when a page is rebuilt; "12:00:00AM" is how a null date was written.
std::string rebuiltTime(const UrlRow &row) {
    std::string text = storedText(row, UrlColumn::TimeRebuilt);
    const bool isNull =
        equalsNoCase(trim(text), "12:00:00AM") || equalsNoCase(trim(text), "12:00:00 AM");
    return isNull ? std::string() : text;
}

/// The stored form says "15-06-2011 12:00:00"; any other text stands as it is.
std::string shownRebuiltTime(const UrlRow &row) {
    const std::string text = rebuiltTime(row);
    const auto part = [&text](std::size_t at, std::size_t length) {
        int value = 0;
        if (at + length <= text.size())
            std::from_chars(text.data() + at, text.data() + at + length, value);
        return value;
    };
    const Date date = Date::fromCivil(
        {part(6, 4), part(3, 2), part(0, 2), part(11, 2), part(14, 2), part(17, 2)});
    return formatDate(date, kRebuiltTimeFormat) == text ? formatDate(date, kWordyFormat) : text;
}

std::string yesNo(bool yes) {
    return yes ? "Yes" : "No";
}

/// What stands the same for people and for programs, but for its stand-ins of odd characters.
std::string wordOf(const UrlRow &row, UrlColumn column, bool badPath) {
    switch (factsOf(column).rule) {
    case CellRule::Text:
        return storedText(row, column);
    case CellRule::YesNo:
        return yesNo(row.cacheFileExists);
    case CellRule::Rebuilt:
        return yesNo(row.rebuilt);
    case CellRule::RebuiltTime:
        return rebuiltTime(row);
    case CellRule::Type:
        return typeWord(row.cacheType);
    case CellRule::Status:
        return badPath ? std::string(kBadPath) : storedText(row, column);
    case CellRule::Icon:
        return std::string(RowCells::iconKeyOf(row));
    case CellRule::TagNames:
        return namesOf(row.tags);
    case CellRule::HashSets:
        return row.hashSets;
    case CellRule::Note:
        return storedFlag(row, column) ? yesNo(true) : std::string();
    default:
        return {};
    }
}

} // namespace

std::string_view RowCells::iconKeyOf(const UrlRow &row) {
    return iconKey({row.isHistory, row.isBookmark, row.isCookie, row.cacheType, row.category,
                    row.extension, row.mimeType});
}

bool RowCells::isBadPath(const UrlRow &row) {
    return m_paths.isBad(
        {row.cacheType, row.rootPath, row.relativePath, row.cacheFileName, row.historyFilePath});
}

std::string RowCells::dateText(const UrlRow &row, UrlColumn column) {
    const CellRule rule = factsOf(column).rule;
    if (rule == CellRule::Date)
        return formatDate(storedDate(row, column), dates.dateTimeFormat());
    DateSettings shown = dates;
    if (rule == CellRule::LocalDate)
        shown.currentYear = 0; // no date is too old for it
    std::string text;
    // Made of the UTC date: the stored local date is in the zone that the project had at the
    // import.
    m_dateTrap.attempt(trapKey(row), [&] { text = zoneCell(row.actionDateUtc, m_zone, shown); });
    return text;
}

std::string RowCells::zoneCodes() const {
    if (!m_zone.exact)
        return " DST STD";
    return " " + fmt::format("{}", fmt::join(m_zone.exact->abbreviations(), " "));
}

std::string RowCells::zoneIso(const UrlRow &row) {
    std::string text;
    m_dateTrap.attempt(trapKey(row), [&] {
        const Date local = convertDateToZone(row.actionDateUtc, m_zone, dates.enableDSTChanges);
        if (!local.has())
            return;
        const std::int64_t ahead = local.unixSeconds() - row.actionDateUtc.unixSeconds();
        const std::chrono::hh_mm_ss offset(std::chrono::abs(std::chrono::seconds(ahead)));
        text = isoUtc(local);
        if (text.ends_with('Z'))
            text.pop_back();
        text += fmt::format("{}{:02}:{:02}", ahead < 0 ? '-' : '+', offset.hours().count(),
                            offset.minutes().count());
        // Local mean time: left out, the UTC of the text would be another one.
        if (offset.seconds().count() != 0)
            text += fmt::format(":{:02}", offset.seconds().count());
    });
    return text;
}

std::string RowCells::text(const UrlRow &row, UrlColumn column) {
    if (!row.found)
        return plainText(unreadCell(row, column));
    switch (factsOf(column).rule) {
    case CellRule::Nothing:
    case CellRule::Tick:
    case CellRule::Icon:
        return {};
    case CellRule::Date:
    case CellRule::ZoneDate:
    case CellRule::LocalDate:
        return dateText(row, column);
    case CellRule::FileCreated:
        return formatDate(storedDate(row, column), kWordyFormat);
    case CellRule::Number:
        return displayText(plainText(storedNumber(row, column)));
    case CellRule::Flag:
        return storedFlag(row, column) ? "True" : "False";
    case CellRule::Linked:
        return row.links > 0 ? std::to_string(row.links) : std::string();
    case CellRule::RebuiltTime:
        return displayText(shownRebuiltTime(row));
    case CellRule::Status:
        return displayText(wordOf(row, column, isBadPath(row)));
    default:
        return displayText(wordOf(row, column, false));
    }
}

Cell RowCells::machine(const UrlRow &row, UrlColumn column) {
    if (!row.found)
        return unreadCell(row, column);
    std::string text;
    switch (factsOf(column).rule) {
    case CellRule::Nothing:
        return {};
    case CellRule::Tick:
        return row.tagged;
    case CellRule::Flag:
    case CellRule::Note:
        return storedFlag(row, column);
    case CellRule::Number:
        return storedNumber(row, column);
    case CellRule::Linked:
        return row.links > 0 ? Cell(row.links) : Cell();
    case CellRule::Date:
    case CellRule::FileCreated:
        text = isoUtc(storedDate(row, column));
        break;
    case CellRule::ZoneDate:
    case CellRule::LocalDate:
        text = zoneIso(row);
        break;
    default:
        text = wordOf(row, column, factsOf(column).rule == CellRule::Status && isBadPath(row));
    }
    return text.empty() ? Cell() : Cell(std::move(text));
}

bool isCut(const StoredValue &value) {
    const auto *text = std::get_if<std::string>(&value);
    return text && text->size() >= kCellBytes;
}

} // namespace nv
