#include "readers/FieldRules.h"

#include "base/Text.h"
#include "readers/Registry.h"
#include "readers/chrome/Kinds.h"
#include "readers/firefox/Kinds.h"
#include "readers/mac/CacheFile.h"
#include "time/SourceClocks.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

using F = SourceForm;

// The documents of the formats have the same in words; tests hold these rows against records that
// the readers make.

constexpr std::array<FieldRule, 8> kChromePages = {{
    {"URL", "url"},
    {"URLRawValue", "url"},
    {"WebPageTitle", "title"},
    {"Visits", "visit_count", F::number},
    {"Hidden", "hidden", F::number},
    {"typed_count", "typed_count", F::number},
    {"ActionDateUTC", "last_visit_time", F::chromeTime},
    {"LastVisited", "last_visit_time", F::chromeTime},
}};
constexpr std::array<FieldRule, 9> kChromeVisits = {{
    {"ActionDateUTC", "visit_time", F::chromeTime},
    {"LastVisited", "visit_time", F::chromeTime},
    {"visit_id", "id", F::number},
    {"from_visit_id", "from_visit", F::number},
    {"opener_visit_id", "opener_visit", F::number},
    {"transition", "transition", F::number},
    {"visit_duration", "visit_duration", F::number},
    {"external_referrer", "external_referrer_url"},
    {"device_visit_id", "originator_visit_id", F::number},
}};
constexpr std::array<FieldRule, 12> kChromeDownloads = {{
    {"ActionDateUTC", "start_time", F::chromeOrUnixTime},
    {"LastVisited", "start_time", F::chromeOrUnixTime},
    {"start_time", "start_time", F::chromeOrUnixTime},
    {"OtherDate", "end_time", F::chromeOrUnixTime},
    {"end_time", "end_time", F::chromeOrUnixTime},
    {"target_path", "target_path"},
    {"current_path", "current_path"},
    {"received_bytes", "received_bytes", F::number},
    {"total_bytes", "total_bytes", F::number},
    {"download_state", "state", F::number},
    {"danger", "danger_type", F::number},
    {"interrupt_reason", "interrupt_reason", F::number},
}};
constexpr std::array<FieldRule, 1> kChromeSearches = {{{"search_term", "term"}}};
constexpr std::array<FieldRule, 14> kChromeCookieFields = {{
    {"URL", "host_key"},
    {"URLRawValue", "host_key"},
    {"Host", "host_key"},
    {"URLFileName", "name"},
    {"MetaData", "value"},
    {"URLParameters", "value"},
    {"ActionDateUTC", "last_access_utc", F::chromeTime},
    {"LastVisited", "last_access_utc", F::chromeTime},
    {"OtherDate", "creation_utc", F::chromeTime},
    {"created", "creation_utc", F::chromeTime},
    {"ExpiryDate", "expires_utc", F::chromeTime},
    {"last_updated", "last_update_utc", F::chromeTime},
    {"path", "path"},
    {"partition", "top_frame_site_key"},
}};
constexpr std::array<FieldRule, 12> kChromeLogins = {{
    {"URL", "origin_url"},
    {"URLRawValue", "origin_url"},
    {"User", "username_value"},
    {"user_name", "username_value"},
    {"signon_realm", "signon_realm"},
    {"action_url", "action_url"},
    {"ActionDateUTC", "date_created", F::chromeOrUnixTime},
    {"created", "date_created", F::chromeOrUnixTime},
    {"OtherDate", "date_last_used", F::chromeOrUnixTime},
    {"last_used", "date_last_used", F::chromeOrUnixTime},
    {"password_changed", "date_password_modified", F::chromeOrUnixTime},
    {"count", "times_used", F::number},
}};
constexpr std::array<FieldRule, 8> kFirefoxPages = {{
    {"URL", "url"},
    {"URLRawValue", "url"},
    {"Visits", "visit_count", F::number},
    {"Hidden", "hidden", F::number},
    {"typed_count", "typed", F::number},
    {"guid", "guid"},
    {"description", "description"},
    {"last_visited", "last_visit_date", F::unixMicroseconds},
}};
constexpr std::array<FieldRule, 6> kFirefoxVisits = {{
    {"ActionDateUTC", "visit_date", F::unixMicroseconds},
    {"LastVisited", "visit_date", F::unixMicroseconds},
    {"visit_id", "id", F::number},
    {"from_visit_id", "from_visit", F::number},
    {"transition", "visit_type", F::number},
    {"visit_source", "source", F::number},
}};
constexpr std::array<FieldRule, 5> kFirefoxBookmarks = {{
    {"ActionDateUTC", "dateAdded", F::unixMicroseconds},
    {"LastVisited", "dateAdded", F::unixMicroseconds},
    {"OtherDate", "lastModified", F::unixMicroseconds},
    {"WebPageTitle", "title"},
    {"guid", "guid"},
}};
constexpr std::array<FieldRule, 12> kFirefoxCookieFields = {{
    {"URL", "host"},
    {"URLRawValue", "host"},
    {"Host", "host"},
    {"URLFileName", "name"},
    {"MetaData", "value"},
    {"URLParameters", "value"},
    {"ActionDateUTC", "lastAccessed", F::unixMicroseconds},
    {"ExpiryDate", "expiry", F::unixSeconds},
    {"OtherDate", "expiry", F::unixSeconds},
    {"created", "creationTime", F::unixMicroseconds},
    {"last_updated", "updateTime", F::unixMicroseconds},
    {"path", "path"},
}};
constexpr std::array<FieldRule, 9> kFirefoxForms = {{
    {"URLFileName", "fieldname"},
    {"field_name", "fieldname"},
    {"MetaData", "value"},
    {"field_value", "value"},
    {"count", "timesUsed", F::number},
    {"ActionDateUTC", "lastUsed", F::unixMicroseconds},
    {"last_used", "lastUsed", F::unixMicroseconds},
    {"OtherDate", "firstUsed", F::unixMicroseconds},
    {"first_used", "firstUsed", F::unixMicroseconds},
}};

constexpr std::array<KindRules, 11> kRules = {{
    {&kChromeHistory, "urls", kChromePages},
    {&kChromeVisit, "visits", kChromeVisits},
    {&kChromeDownload, "downloads", kChromeDownloads},
    {&kChromeSearchTerm, "keyword_search_terms", kChromeSearches},
    {&kChromeCookies, "cookies", kChromeCookieFields},
    {&kChromeLogin, "logins", kChromeLogins},
    {&kFirefox3History, "moz_places", kFirefoxPages},
    {&kFirefoxVisit, "moz_historyvisits", kFirefoxVisits},
    {&kFirefoxBookmark, "moz_bookmarks", kFirefoxBookmarks},
    {&kFirefoxCookies, "moz_cookies", kFirefoxCookieFields},
    {&kFirefoxFormValue, "moz_formhistory", kFirefoxForms},
}};

} // namespace

std::string_view wordsOf(SourceForm form) {
    switch (form) {
    case F::text:
        return "text";
    case F::number:
        return "number";
    case F::chromeTime:
        return "microseconds since 1601-01-01, UTC";
    case F::chromeOrUnixTime:
        return "microseconds since 1601-01-01, UTC; in early versions seconds since 1970-01-01, "
               "told by the size of the number";
    case F::unixSeconds:
        return "seconds since 1970-01-01, UTC; in the newest versions milliseconds, told by the "
               "size of the number";
    case F::unixMicroseconds:
        return "microseconds since 1970-01-01, UTC";
    case F::fileTime:
        return "FILETIME: 100 nanoseconds since 1601-01-01, UTC";
    case F::fileTimeLocal:
        return "FILETIME: 100 nanoseconds since 1601-01-01, in the local time of the machine that "
               "wrote it";
    case F::fileTimeMoved:
        return "FILETIME: 100 nanoseconds since 1601-01-01, UTC, moved to the zone that the "
               "machine of the import had then";
    case F::dosDate:
        return "FAT: date in the lower 16 bits, time in the upper ones, in steps of 2 seconds, UTC";
    case F::secondsOf1904:
        return "seconds since 1904-01-01, five hours added, taken as UTC";
    }
    return {};
}

Date dateOf(SourceForm form, std::int64_t number) {
    constexpr std::int64_t kLongNumber = 100'000'000'000; // more than seconds of any year to come
    constexpr std::uint64_t kHalf = 0xFFFF;
    if (number == 0)
        return {};
    const auto bits = static_cast<std::uint64_t>(number);
    switch (form) {
    case F::chromeTime:
        return chromeTimeToDate(number);
    case F::chromeOrUnixTime:
        return number > kLongNumber * 100 ? chromeTimeToDate(number)
                                          : Date::fromUnixSeconds(number);
    case F::unixSeconds:
        return Date::fromUnixSeconds(number > kLongNumber ? number / 1000 : number);
    case F::unixMicroseconds:
        return Date::fromUnixMicroseconds(number);
    case F::fileTime:
    case F::fileTimeLocal:
    case F::fileTimeMoved:
        return fileTimeToUtc(bits);
    case F::dosDate:
        return dosDateToUtc(static_cast<std::uint16_t>(bits & kHalf),
                            static_cast<std::uint16_t>(bits >> 16 & kHalf));
    case F::secondsOf1904:
        return macStampToDate(static_cast<std::uint32_t>(bits));
    case F::text:
    case F::number:
        break;
    }
    return {};
}

std::span<const KindRules> fieldRules() {
    return kRules;
}

const FieldRule *fieldRule(const KindRules &rules, std::string_view field) {
    const auto found = std::ranges::find_if(
        rules.fields, [field](const FieldRule &rule) { return equalsNoCase(rule.field, field); });
    return found == rules.fields.end() ? nullptr : &*found;
}

const KindRules *rulesOf(std::string_view cacheType) {
    const RecordKind *kind = recordKind(cacheType);
    const auto found = std::ranges::find(kRules, kind, &KindRules::kind);
    return kind && found != kRules.end() ? &*found : nullptr;
}

std::string_view pageOf(std::string_view cacheType) {
    const RecordKind *kind = recordKind(cacheType);
    for (const Reader *reader : registry())
        if (kind && std::ranges::find(reader->kinds, kind) != reader->kinds.end())
            return reader->page;
    return {};
}

} // namespace nv
