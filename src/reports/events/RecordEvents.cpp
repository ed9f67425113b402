#include "reports/events/RecordEvents.h"

#include "base/Text.h"
#include "readers/RecordKind.h"
#include "reports/events/FileDates.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

namespace nv {

namespace {

using C = UrlColumn;

constexpr std::array<UrlColumn, 24> kColumns = {
    C::Id,
    C::Tag,
    C::Action,
    C::ActionDateUtc,
    C::DateOther,
    C::ExpiryDate,
    C::DateOtherMeaning,
    C::FileCreated,
    C::FileLastAccessed,
    C::Status,
    C::Visits,
    C::CacheType,
    C::Value,
    C::User,
    C::MimeType,
    C::Host,
    C::WebpageTitle,
    C::SourceHistoryFile,
    C::MapFileOffset,
    C::CacheFileSize,
    C::Category,
    C::Browser,
    C::Profile,
    C::Person,
};

/// A fact that is a date, and what an event calls it.
struct DatedFact {
    FactName fact;
    std::string_view meaning;
    EventMark mark;
};

// docs/formats/facts.md says which facts are dates.
constexpr std::array<DatedFact, 16> kDatedFacts = {{
    {"start_time", "Download Started", EventMark::accessed},
    {"end_time", "Download Ended", EventMark::modified},
    {"created", "Created", EventMark::born},
    {"last_updated", "Last Updated", EventMark::modified},
    {"first_used", "First Used", EventMark::born},
    {"used", "Used", EventMark::accessed},
    {"last_used", "Last Used", EventMark::accessed},
    {"last_visited", "Last Visited", EventMark::accessed},
    {"interaction", "Page Looked At", EventMark::accessed},
    {"last_interaction", "Last Interaction", EventMark::accessed},
    {"last_filled", "Login Filled In", EventMark::accessed},
    {"password_changed", "Password Changed", EventMark::modified},
    {"last_modified", "Last Modified", EventMark::modified},
    {"last_checked", "Last Checked", EventMark::accessed},
    {"request_time", "Requested", EventMark::accessed},
    {"first_response_time", "First Answered", EventMark::accessed},
}};
constexpr DatedFact kExpiry = {"expires", "Expires", EventMark::modified};

constexpr std::int64_t kSecond = 1'000'000;

std::optional<int> digitsAt(std::string_view text, std::size_t at, std::size_t count) {
    int value = 0;
    if (at + count > text.size())
        return std::nullopt;
    const char *end = text.data() + at + count;
    const auto read = std::from_chars(text.data() + at, end, value);
    return read.ec == std::errc() && read.ptr == end ? std::optional(value) : std::nullopt;
}

/// "2009-02-13T23:31:30Z" and "2009-02-13 23:31:30.5", both UTC; nothing of any other text.
std::optional<std::int64_t> microsecondsIn(std::string_view text) {
    constexpr std::size_t kSeconds = 19;
    if (text.size() < kSeconds || text[4] != '-' || text[7] != '-' || text[13] != ':')
        return std::nullopt;
    const auto year = digitsAt(text, 0, 4), month = digitsAt(text, 5, 2),
               day = digitsAt(text, 8, 2);
    const auto hour = digitsAt(text, 11, 2), minute = digitsAt(text, 14, 2);
    const auto second = digitsAt(text, 17, 2);
    if (!year || !month || !day || !hour || !minute || !second)
        return std::nullopt;
    const Date date = Date::fromCivil({*year, *month, *day, *hour, *minute, *second});
    if (!date.has())
        return std::nullopt;
    std::int64_t part = 0;
    if (text.size() > kSeconds && text[kSeconds] == '.') {
        std::int64_t unit = kSecond / 10;
        for (std::size_t at = kSeconds + 1; at < text.size() && unit > 0; ++at, unit /= 10) {
            const auto digit = digitsAt(text, at, 1);
            if (!digit)
                break;
            part += *digit * unit;
        }
    }
    return date.unixSeconds() * kSecond + part;
}

EventMark markOf(std::string_view meaning) {
    if (containsNoCase(meaning, "created") || containsNoCase(meaning, "first"))
        return EventMark::born;
    for (const char *use : {"visit", "access", "use", "request"})
        if (containsNoCase(meaning, use))
            return EventMark::accessed;
    return EventMark::modified;
}

/// Takes the dates of one record.
class Events {
  public:
    void add(std::int64_t microseconds, std::string meaning, EventMark mark) {
        RecordEvent event{microseconds, std::move(meaning), mark};
        const bool isThere = std::ranges::any_of(m_events, [&event](const RecordEvent &other) {
            return other.microseconds == event.microseconds && other.meaning == event.meaning;
        });
        if (!isThere)
            m_events.push_back(std::move(event));
    }
    void addColumn(ExportCells &cells, std::size_t place, UrlColumn column, std::string meaning) {
        const EventMark mark = markOf(meaning);
        if (const auto time = microsecondsIn(plainText(cells.machine(place, column))))
            add(*time, std::move(meaning), mark);
        m_ofColumns = m_events.size();
    }
    /// A fact that says with a fraction what a column says to the second isn't another event.
    void addFact(const RecordFact &fact, const DatedFact &known) {
        const auto *text = std::get_if<std::string>(&fact.value);
        const auto time = text ? microsecondsIn(*text) : std::nullopt;
        const auto columns = std::span(m_events).first(m_ofColumns);
        if (time && std::ranges::none_of(columns, [&time](const RecordEvent &event) {
                return event.microseconds / kSecond == *time / kSecond;
            }))
            add(*time, std::string(known.meaning), known.mark);
    }
    std::vector<RecordEvent> take() { return std::move(m_events); }

  private:
    std::vector<RecordEvent> m_events;
    std::size_t m_ofColumns = 0; ///< the first of them
};

/// Nobody must take the clock on the wall for UTC.
std::string actionMeaning(ExportCells &cells, std::size_t place, const RecordKind *kind) {
    std::string action = textAt(cells, place, C::Action);
    if (action.empty())
        action = "Action Date";
    if (kind && kind->inLocalTime)
        action += " (stored in local time, made UTC by the zone of the examining machine)";
    return action;
}

/// Nobody must take a date of the evidence's own files for one that a browser kept. What a browser
/// kept of an access is the action's date once more.
void addFileDates(Events &events, ExportCells &cells, std::size_t place) {
    const std::string kind = textAt(cells, place, C::CacheType);
    const auto add = [&](UrlColumn column, FileDateFrom from, std::string meaning) {
        if (from == FileDateFrom::container)
            return;
        if (from == FileDateFrom::cachedFile)
            meaning += " (by the file system of the evidence)";
        events.addColumn(cells, place, column, std::move(meaning));
    };
    add(C::FileCreated, createdDateFrom(kind), "Cache File Created");
    if (accessedDateFrom(kind) != FileDateFrom::record)
        add(C::FileLastAccessed, accessedDateFrom(kind), "Cache File Last Accessed");
}

} // namespace

std::span<const UrlColumn> eventColumns() {
    return kColumns;
}

std::vector<RecordEvent> eventsOf(ExportCells &cells, std::size_t place, const FactList &facts) {
    Events events;
    const RecordKind *kind = recordKind(textAt(cells, place, C::CacheType));
    if (const Date date = cells.actionDate(place); date.has())
        events.add(unixMicroseconds(date), actionMeaning(cells, place, kind),
                   kind && kind->group == RecordGroup::bookmarks ? EventMark::born
                                                                 : EventMark::accessed);
    const std::string other = textAt(cells, place, C::DateOtherMeaning);
    events.addColumn(cells, place, C::DateOther, other.empty() ? "Other Date" : other);
    addFileDates(events, cells, place);
    events.addColumn(cells, place, C::ExpiryDate, "Expires");
    for (const RecordFact &fact : facts) {
        const auto known = std::ranges::find_if(
            kDatedFacts, [&fact](const DatedFact &each) { return each.fact.word() == fact.name; });
        if (known != kDatedFacts.end())
            events.addFact(fact, *known);
        else if (fact.name == kExpiry.fact.word())
            events.addFact(fact, kExpiry);
    }
    return events.take();
}

std::string eventMessage(ExportCells &cells, std::size_t place) {
    if (!cells.isRead(place))
        return fmt::format("row {} of the project could not be read",
                           plainText(cells.machine(place, C::Id)));
    std::string words;
    for (const UrlColumn column : {C::CacheType, C::Action, C::Value, C::WebpageTitle}) {
        const std::string word = plainText(cells.machine(place, column));
        if (!word.empty())
            words += (words.empty() ? "" : " ") + word;
    }
    return words;
}

std::string dataTypeOf(const std::string &cacheType) {
    const RecordKind *kind = recordKind(cacheType);
    if (!kind)
        return "norvelane:record";
    const std::string key(kind->key);
    const std::size_t dash = key.find('-');
    return dash == std::string::npos ? "norvelane:" + key
                                     : fmt::format("norvelane:{}:{}", key.substr(0, dash),
                                                   replaceAll(key.substr(dash + 1), "-", "_"));
}

std::vector<std::string> tagsOf(ExportCells &cells, std::size_t place) {
    const Cell tick = cells.machine(place, C::Tag);
    const auto *isSet = std::get_if<bool>(&tick);
    std::vector<std::string> names;
    if (isSet && *isSet)
        names.emplace_back("tagged");
    for (const RowTag &each : cells.tags(place))
        names.push_back(each.tag.name);
    return names;
}

std::int64_t unixMicroseconds(Date date) {
    return std::llround((date.days() - Date::kUnixEpoch) * 86'400'000.0) * 1000;
}

std::string isoWithFraction(std::int64_t microseconds) {
    const std::int64_t part = ((microseconds % kSecond) + kSecond) % kSecond;
    const CivilTime time = Date::fromUnixSeconds((microseconds - part) / kSecond).civil();
    return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}.{:06}+00:00", time.year, time.month,
                       time.day, time.hour, time.minute, time.second, part);
}

std::string textAt(ExportCells &cells, std::size_t place, UrlColumn column) {
    return plainText(cells.machine(place, column));
}

} // namespace nv
