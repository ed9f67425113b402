#include "reports/events/RecordEvents.h"

#include "base/Text.h"
#include "readers/RecordKind.h"
#include "reports/events/FileDates.h"
#include "reports/events/SameDates.h"
#include "time/StoredDays.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace nv {

namespace {

using C = UrlColumn;

constexpr std::array<UrlColumn, 25> kColumns = {
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
    C::RawValue,
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
constexpr std::array<DatedFact, 17> kDatedFacts = {{
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
    {"expires", "Expires", EventMark::modified},
}};

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

std::int64_t secondOf(std::int64_t microseconds) {
    return microseconds / kSecond - (microseconds % kSecond < 0 ? 1 : 0);
}

EventMark markOf(std::string_view meaning) {
    if (containsNoCase(meaning, "creat") || containsNoCase(meaning, "first"))
        return EventMark::born;
    for (const char *use : {"visit", "access", "use", "request"})
        if (containsNoCase(meaning, use))
            return EventMark::accessed;
    return EventMark::modified;
}

/// Takes the dates of one record.
class Events {
  public:
    Events(std::string cacheType, const FactList &facts) : m_cacheType(std::move(cacheType)) {
        for (const RecordFact &fact : facts)
            addFact(fact);
    }

    /// A date that a fact has to a part of a second is that event, and not two.
    void addColumn(UrlColumn column, std::int64_t microseconds, std::string meaning,
                   EventMark mark) {
        const auto same = std::ranges::find_if(m_facts, [&](const FactDate &each) {
            return secondOf(each.microseconds) == secondOf(microseconds) &&
                   isSameDate(m_cacheType, column, meaning, each.known->fact.word(),
                              each.known->meaning);
        });
        if (same == m_facts.end())
            return add({microseconds, std::move(meaning), mark});
        if (same->isTaken) // two columns hold it
            return;
        if (same->microseconds % kSecond != 0)
            microseconds = same->microseconds;
        mark = same->known->mark;
        take(*same);
        add({microseconds, std::move(meaning), mark});
    }
    void addColumn(ExportCells &cells, std::size_t place, UrlColumn column, std::string meaning) {
        const EventMark mark = markOf(meaning);
        if (const auto time = microsecondsIn(plainText(cells.machine(place, column))))
            addColumn(column, *time, std::move(meaning), mark);
    }
    /// Those of facts that no column has come after them.
    std::vector<RecordEvent> take() {
        for (const FactDate &each : m_facts)
            if (!each.isTaken)
                add({each.microseconds, std::string(each.known->meaning), each.known->mark});
        return std::move(m_events);
    }

  private:
    struct FactDate {
        std::int64_t microseconds = 0;
        const DatedFact *known = nullptr;
        bool isTaken = false; ///< a column's event tells it
    };

    void addFact(const RecordFact &fact) {
        const auto known = std::ranges::find_if(
            kDatedFacts, [&fact](const DatedFact &each) { return each.fact.word() == fact.name; });
        const auto *text = std::get_if<std::string>(&fact.value);
        const auto time = text && known != kDatedFacts.end() ? microsecondsIn(*text) : std::nullopt;
        if (time)
            m_facts.push_back({*time, &*known});
    }
    /// With what says the same once more.
    void take(const FactDate &taken) {
        const FactDate same = taken;
        for (FactDate &each : m_facts)
            each.isTaken |= each.known == same.known && each.microseconds == same.microseconds;
    }
    void add(RecordEvent event) {
        const bool isThere = std::ranges::any_of(m_events, [&event](const RecordEvent &other) {
            return other.microseconds == event.microseconds && other.meaning == event.meaning;
        });
        if (!isThere)
            m_events.push_back(std::move(event));
    }

    std::string m_cacheType;
    std::vector<FactDate> m_facts;
    std::vector<RecordEvent> m_events;
};

/// Nobody must take the clock on the wall for UTC.
std::string actionMeaning(ExportCells &cells, std::size_t place, const RecordKind *kind) {
    std::string action(actionMeaningOf(textAt(cells, place, C::CacheType)));
    if (action.empty())
        action = textAt(cells, place, C::Action);
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

/// Of a cookie the fact is there where the column's date is none of its own.
bool hasExpiryOfItsOwn(const RecordKind *kind, const FactList &facts) {
    return kind && kind->group == RecordGroup::cookies &&
           std::ranges::any_of(facts,
                               [](const RecordFact &fact) { return fact.name == "expires"; });
}

} // namespace

std::span<const UrlColumn> eventColumns() {
    return kColumns;
}

std::vector<RecordEvent> eventsOf(ExportCells &cells, std::size_t place, const FactList &facts) {
    const std::string cacheType = textAt(cells, place, C::CacheType);
    const RecordKind *kind = recordKind(cacheType);
    Events events(cacheType, facts);
    if (const Date date = cells.actionDate(place); date.has())
        events.addColumn(
            C::ActionDateUtc, unixMicroseconds(date), actionMeaning(cells, place, kind),
            kind && kind->group == RecordGroup::bookmarks ? EventMark::born : EventMark::accessed);
    const std::string other = textAt(cells, place, C::DateOtherMeaning);
    const bool isExpiry = containsNoCase(other, "expir") &&
                          textAt(cells, place, C::DateOther) == textAt(cells, place, C::ExpiryDate);
    if (!isExpiry)
        events.addColumn(cells, place, C::DateOther, other.empty() ? "Other Date" : other);
    addFileDates(events, cells, place);
    if (!hasExpiryOfItsOwn(kind, facts))
        events.addColumn(cells, place, C::ExpiryDate, "Expires");
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

std::string rawAddressAt(ExportCells &cells, std::size_t place) {
    std::string raw = textAt(cells, place, C::RawValue);
    return raw == textAt(cells, place, C::Value) ? std::string() : raw;
}

std::string messageWithRawAddress(ExportCells &cells, std::size_t place) {
    const std::string raw = rawAddressAt(cells, place);
    return eventMessage(cells, place) + (raw.empty() ? "" : fmt::format(" [{}]", raw));
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
    return unixMilliseconds(date) * 1000;
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
