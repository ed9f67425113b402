#include "readers/FieldRules.h"

#include "base/Text.h"
#include "readers/Registry.h"
#include "readers/chrome/Kinds.h"
#include "readers/firefox/Kinds.h"
#include "readers/ie/Kinds.h"

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

constexpr std::int32_t kLong = 8;
constexpr std::int32_t kWord = 4;
constexpr std::array<FieldRule, 7> kIeRecords = {{
    {"ActionDateUTC", "", F::fileTime, 0x10, kLong},
    {"LastVisited", "", F::fileTime, 0x10, kLong},
    {"OtherDate", "", F::fileTime, 8, kLong},
    {"CacheFileSize", "", F::number, 0x20, kWord},
    {"Visits", "", F::number, 0x54, kWord},
    {"URL", "", F::text, 0x68},
    {"URLRawValue", "", F::text, 0x68},
}};
constexpr std::array<FieldRule, 6> kIeWeekly = {{
    {"ActionDateUTC", "", F::fileTimeLocal, 8, kLong},
    {"LastVisited", "", F::fileTimeLocal, 8, kLong},
    {"OtherDate", "", F::fileTimeLocal, 0x10, kLong},
    {"Visits", "", F::number, 0x54, kWord},
    {"URL", "", F::text, 0x68},
    {"URLRawValue", "", F::text, 0x68},
}};

constexpr std::array<KindRules, 15> kRules = {{
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
    {&kIEHistory, "", kIeRecords},
    {&kIEDaily, "", kIeRecords},
    {&kIECache, "", kIeRecords},
    {&kIEWeekly, "", kIeWeekly},
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
