#include "readers/firefox/profile/ProfilePlaces.h"

#include "base/Text.h"
#include "readers/Limits.h"
#include "readers/firefox/mork/MorkFile.h"
#include "readers/json/JsonPlaces.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace nv {

namespace {

using F = SourceForm;

constexpr auto kLogin = std::to_array<JsonFieldRule>({
    {"URL", "hostname"},
    {"URLRawValue", "hostname"},
    {"signon_realm", "httpRealm"},
    {"action_url", "formSubmitURL"},
    {"field_name", "usernameField"},
    {"encrypted", "encryptedUsername", F::encryptedBase64},
    {"guid", "guid"},
    {"count", "timesUsed", F::number},
    {"created", "timeCreated", F::unixMilliseconds},
    {"OtherDate", "timeLastUsed", F::unixMilliseconds},
    {"last_used", "timeLastUsed", F::unixMilliseconds},
    {"password_changed", "timePasswordChanged", F::unixMilliseconds},
});
/// A login that was deleted has the time of that alone.
constexpr auto kLoginDate = std::to_array<JsonFieldRule>({
    {"ActionDateUTC", "timeCreated", F::unixMilliseconds},
    {"LastVisited", "timeCreated", F::unixMilliseconds},
});
constexpr auto kDeletedDate = std::to_array<JsonFieldRule>({
    {"ActionDateUTC", "timePasswordChanged", F::unixMilliseconds},
    {"LastVisited", "timePasswordChanged", F::unixMilliseconds},
});

bool isDatabase(const TextPlaces &text) {
    return text.text().starts_with("SQLite format 3");
}

/// The login with the record's number, or the one at that place of the list.
JsonFound loginOf(const TextPlaces &text, std::int64_t number) {
    std::optional<JsonFound> found;
    std::int64_t count = 0;
    findJsonObjects(
        text.text(),
        [](const std::vector<JsonSpan> &above, std::uint64_t) {
            return above.size() == 2 && above[1].path == "logins";
        },
        [&](const JsonFound &login) {
            ++count;
            const auto id = std::ranges::find(login.members, "id", &JsonSpan::path);
            const bool isIt =
                id == login.members.end() ? count == number : wholeNumberIn(id->value) == number;
            if (isIt)
                found = login;
            return !isIt;
        });
    if (!found)
        throw std::runtime_error(fmt::format("the file has no login {}", number));
    return std::move(*found);
}

/// A whole cell of a row, and where its value lies: in it, or in a dictionary.
struct MorkCell {
    std::string_view value;
    bool isNamed = false;
};

std::size_t endOfCell(std::string_view text, std::size_t at) {
    while (at < text.size() && text[at] != ')')
        at += text[at] == '\\' ? 2 : 1;
    return std::min(at, text.size());
}

/// The cell of the column in the row that begins at `row`.
std::optional<MorkCell> cellOf(std::string_view text, std::size_t row, std::string_view column) {
    const std::size_t end = std::min(text.find(']', row), text.size());
    for (std::size_t at = text.find('(', row); at < end;) {
        const std::size_t close = endOfCell(text, at + 1);
        const std::string_view cell = text.substr(at + 1, close - at - 1);
        if (startsWithNoCase(trim(cell), column)) {
            const std::size_t mark = cell.find('=');
            if (mark != std::string_view::npos)
                return MorkCell{cell.substr(mark + 1), false};
            const std::size_t second = cell.find('^', cell.find('^') + 1);
            if (second == std::string_view::npos)
                return std::nullopt;
            const std::string key = fmt::format("({}=", trim(cell.substr(second + 1)));
            const std::size_t entry = text.find(key);
            if (entry == std::string_view::npos)
                return std::nullopt;
            const std::size_t from = entry + key.size();
            return MorkCell{text.substr(from, endOfCell(text, from) - from), true};
        }
        at = text.find('(', close);
    }
    return std::nullopt;
}

/// The entry as the reader makes it, of those that begin at the record's place.
MorkEntry entryOf(const TextPlaces &text, const UrlRecord &record) {
    MorkFileParser file;
    Unwatched task;
    ReadResult result;
    file.parseBytes(text.view(), task, result);
    const MorkEntry *found = nullptr;
    for (const MorkEntry &entry : file.entries)
        if (entry.fileOffset == record.MapFileOffset && (!found || entry.url == record.URLRawValue))
            found = &entry;
    if (!found)
        throw std::runtime_error(fmt::format("no row begins at byte {}", record.MapFileOffset - 1));
    return *found;
}

/// Microseconds, of which the first ten digits count.
Date morkDate(const std::string &digits) {
    constexpr std::size_t kSecondDigits = 10;
    return digits.size() < kSecondDigits
               ? Date()
               : MorkFileParser::convertSecondsToUTCDate(digits.substr(0, kSecondDigits));
}

/// A field, the column of the row that it is made of, and what is made of it.
struct MorkField {
    std::string_view field;
    std::string_view column;
    MadeValue made;
    std::string_view rule;
};

} // namespace

void locateInLogins(const PlaceSearch &search, FieldPlaces &places) {
    TextPlaces text(search, search.source, limits::kFirefoxLoginsBytes, places);
    if (isDatabase(text))
        return;
    const JsonFound login = loginOf(text, factNumber(search.record, "source_rowid").value_or(0));
    placeJsonMembers(login, kLogin, text);
    const bool isDeleted = search.record.Status == "Deleted";
    placeJsonMembers(login, isDeleted ? std::span<const JsonFieldRule>(kDeletedDate) : kLoginDate,
                     text);
}

void locateInMork(const PlaceSearch &search, FieldPlaces &places) {
    if (search.record.MapFileOffset <= 0)
        return places.unknown("URL", "the file doesn't hold the beginning of the row: its parts "
                                     "stand in several lines");
    TextPlaces text(search, search.source, limits::kMorkFileBytes, places);
    const auto row = static_cast<std::size_t>(search.record.MapFileOffset - 1);
    const MorkEntry entry = entryOf(text, search.record);
    constexpr std::string_view kDate =
        "digits: microseconds since 1970-01-01, UTC, of which the first ten are the seconds";
    constexpr std::string_view kText = "Windows-1252, escapes undone";
    const std::int64_t visits = wholeNumberIn(entry.visitCount).value_or(1);
    const std::vector<MorkField> fields = {
        {"URL", "^82", entry.url, kText},
        {"URLRawValue", "^82", entry.url, kText},
        {"Host", "^88", entry.hostname, kText},
        {"ActionDateUTC", "^84", morkDate(entry.lastVisitDate), kDate},
        {"LastVisited", "^84", morkDate(entry.lastVisitDate), kDate},
        {"OtherDate", "^85", morkDate(entry.firstVisitDate), kDate},
        {"Visits", "^86", visits == 0 ? 1 : visits, "digits; none and 0 count as 1"},
    };
    for (const MorkField &field : fields)
        if (const auto cell = cellOf(text.text(), row, field.column))
            text.value(field.field, cell->value, field.made,
                       fmt::format("column {}{}", field.column,
                                   cell->isNamed ? ", in the dictionary that the row names" : ""),
                       std::string(field.rule));
    places.derived("Visits", "the row has no count, which counts as 1");
}

} // namespace nv
