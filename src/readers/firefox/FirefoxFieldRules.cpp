#include "readers/firefox/FirefoxFieldRules.h"

#include "readers/firefox/Kinds.h"

#include <array>

namespace nv {

namespace {

using F = SourceForm;

// The documents of the formats have the same in words; every golden case holds these rows against
// records that the readers make.

constexpr auto kPages = std::to_array<FieldRule>({
    {"URL", "url"},
    {"URLRawValue", "url"},
    {"WebPageTitle", "title"},
    {"title", "title"},
    {"Visits", "visit_count", F::number},
    {"Visits", "visit_count_local", F::summand},
    {"Hidden", "hidden", F::truth},
    {"typed_count", "typed", F::number},
    {"guid", "guid"},
    {"site_title", "site_name"},
    {"description", "description"},
    {"icon_url", "favicon_id>moz_favicons.id:url"},
    {"ActionDateUTC", "@visit_id>moz_historyvisits.id:visit_date", F::unixMicroseconds},
    {"ActionDateUTC", "@visit_id>moz_historyvisits.id:visit_date", F::unixMilliseconds},
    {"ActionDateUTC", "rowid>moz_historyvisits.place_id:visit_date", F::unixMicroseconds},
    {"ActionDateUTC", "rowid>moz_historyvisits.place_id:visit_date", F::unixMilliseconds},
    {"LastVisited", "@visit_id>moz_historyvisits.id:visit_date", F::unixMicroseconds},
    {"LastVisited", "@visit_id>moz_historyvisits.id:visit_date", F::unixMilliseconds},
    {"LastVisited", "rowid>moz_historyvisits.place_id:visit_date", F::unixMicroseconds},
    {"LastVisited", "rowid>moz_historyvisits.place_id:visit_date", F::unixMilliseconds},
    {"ActionDateUTC", "@visit_id>moz_historyvisits.id:visit_date", F::unixFirstTen},
    {"ActionDateUTC", "rowid>moz_historyvisits.place_id:visit_date", F::unixFirstTen},
    {"LastVisited", "@visit_id>moz_historyvisits.id:visit_date", F::unixFirstTen},
    {"LastVisited", "rowid>moz_historyvisits.place_id:visit_date", F::unixFirstTen},
    {"last_visited", "last_visit_date", F::unixMicroseconds},
    {"last_visited", "last_visit_date", F::unixMilliseconds},
    {"last_visited", "last_visit_date_local", F::unixMicroseconds},
    {"last_visited", "last_visit_date_local", F::unixMilliseconds},
    {"visit_id", "@visit_id>moz_historyvisits.id:id", F::number},
    {"from_visit_id", "@visit_id>moz_historyvisits.id:from_visit", F::number},
    {"transition", "@visit_id>moz_historyvisits.id:visit_type", F::number},
    {"visit_source", "@visit_id>moz_historyvisits.id:source", F::number},
    {"visit_source", "@visit_id>moz_historyvisits.id:is_local", F::number},
    {"from_url",
     "@visit_id>moz_historyvisits.id:from_visit>moz_historyvisits.id:place_id>moz_places.id:url"},
    {"keyword", "rowid>moz_keywords.place_id:keyword"},
    {"typed_input", "rowid>moz_inputhistory.place_id:input"},
    {"annotation", "rowid>moz_annos.place_id:content", F::within},
    {"interaction", "rowid>moz_places_metadata.place_id:created_at", F::unixMilliseconds},
    {"view_time", "rowid>moz_places_metadata.place_id:total_view_time", F::number},
    {"key_presses", "rowid>moz_places_metadata.place_id:key_presses", F::number},
    {"search_term", "rowid>moz_places_metadata.place_id:search_query_id>moz_places_metadata_search_"
                    "queries.id:terms"},
    {"search_term", "rowid>moz_places_metadata.place_id:search_query_id>moz_places_metadata_search_"
                    "queries.id:term"},
});
constexpr auto kVisits = std::to_array<FieldRule>({
    {"ActionDateUTC", "visit_date", F::unixMicroseconds},
    {"ActionDateUTC", "visit_date", F::unixMilliseconds},
    {"LastVisited", "visit_date", F::unixMicroseconds},
    {"LastVisited", "visit_date", F::unixMilliseconds},
    {"visit_id", "id", F::number},
    {"from_visit_id", "from_visit", F::number},
    {"transition", "visit_type", F::number},
    {"visit_source", "source", F::number},
    {"visit_source", "is_local", F::number},
    {"URL", "place_id>moz_places.id:url"},
    {"URLRawValue", "place_id>moz_places.id:url"},
    {"WebPageTitle", "place_id>moz_places.id:title"},
    {"Hidden", "place_id>moz_places.id:hidden", F::truth},
    {"page_id", "place_id", F::number},
    {"Referrer", "from_visit>moz_historyvisits.id:place_id>moz_places.id:url"},
});
constexpr auto kBookmarks = std::to_array<FieldRule>({
    {"ActionDateUTC", "dateAdded", F::unixMicroseconds},
    {"ActionDateUTC", "dateAdded", F::unixMilliseconds},
    {"LastVisited", "dateAdded", F::unixMicroseconds},
    {"LastVisited", "dateAdded", F::unixMilliseconds},
    {"created", "dateAdded", F::unixMicroseconds},
    {"created", "dateAdded", F::unixMilliseconds},
    {"OtherDate", "lastModified", F::unixMicroseconds},
    {"OtherDate", "lastModified", F::unixMilliseconds},
    {"URL", "fk>moz_places.id:url"},
    {"URLRawValue", "fk>moz_places.id:url"},
    {"WebPageTitle", "title"},
    {"guid", "guid"},
    {"folder", "parent>moz_bookmarks.id:title", F::within},
    {"tags", "fk>moz_bookmarks.fk:parent>moz_bookmarks.id:title"},
    {"keyword", "keyword_id>moz_keywords.id:keyword"},
    {"keyword", "fk>moz_keywords.place_id:keyword"},
    {"annotation", "rowid>moz_items_annos.item_id:content", F::within},
});
constexpr auto kDeletedBookmarks = std::to_array<FieldRule>({
    {"ActionDateUTC", "dateRemoved", F::unixMicroseconds},
    {"ActionDateUTC", "dateRemoved", F::unixMilliseconds},
    {"LastVisited", "dateRemoved", F::unixMicroseconds},
    {"LastVisited", "dateRemoved", F::unixMilliseconds},
    {"guid", "guid"},
});
constexpr auto kAnnotatedDownloads = std::to_array<FieldRule>({
    {"URL", "place_id>moz_places.id:url"},
    {"URLRawValue", "place_id>moz_places.id:url"},
    {"ActionDateUTC", "@visit_id>moz_historyvisits.id:visit_date", F::unixMicroseconds},
    {"ActionDateUTC", "@visit_id>moz_historyvisits.id:visit_date", F::unixMilliseconds},
    {"ActionDateUTC", "dateAdded", F::unixMicroseconds},
    {"ActionDateUTC", "dateAdded", F::unixMilliseconds},
    {"LastVisited", "@visit_id>moz_historyvisits.id:visit_date", F::unixMicroseconds},
    {"LastVisited", "@visit_id>moz_historyvisits.id:visit_date", F::unixMilliseconds},
    {"LastVisited", "dateAdded", F::unixMicroseconds},
    {"LastVisited", "dateAdded", F::unixMilliseconds},
    {"start_time", "@visit_id>moz_historyvisits.id:visit_date", F::unixMicroseconds},
    {"start_time", "@visit_id>moz_historyvisits.id:visit_date", F::unixMilliseconds},
    {"created", "dateAdded", F::unixMicroseconds},
    {"created", "dateAdded", F::unixMilliseconds},
    {"visit_id", "@visit_id>moz_historyvisits.id:id", F::number},
    {"download_id", "id", F::number},
    {"Referrer",
     "@visit_id>moz_historyvisits.id:from_visit>moz_historyvisits.id:place_id>moz_places.id:url"},
    {"target_path", "place_id>moz_annos.place_id:content"},
    {"annotation", "place_id>moz_annos.place_id:content", F::within},
    {"end_time", "place_id>moz_annos.place_id:content", F::part},
    {"total_bytes", "place_id>moz_annos.place_id:content", F::part},
    {"download_state", "place_id>moz_annos.place_id:content", F::part},
    {"deleted", "place_id>moz_annos.place_id:content", F::part},
    {"danger", "place_id>moz_annos.place_id:content", F::part},
});
constexpr auto kDownloads = std::to_array<FieldRule>({
    {"URL", "source"},
    {"URLRawValue", "source"},
    {"ActionDateUTC", "startTime", F::unixMicroseconds},
    {"ActionDateUTC", "startTime", F::unixMilliseconds},
    {"LastVisited", "startTime", F::unixMicroseconds},
    {"LastVisited", "startTime", F::unixMilliseconds},
    {"start_time", "startTime", F::unixMicroseconds},
    {"start_time", "startTime", F::unixMilliseconds},
    {"OtherDate", "endTime", F::unixMicroseconds},
    {"OtherDate", "endTime", F::unixMilliseconds},
    {"end_time", "endTime", F::unixMicroseconds},
    {"end_time", "endTime", F::unixMilliseconds},
    {"download_id", "id", F::number},
    {"download_guid", "guid"},
    {"target_path", "target"},
    {"current_path", "tempPath"},
    {"received_bytes", "currBytes", F::number},
    {"total_bytes", "maxBytes", F::number},
    {"download_state", "state", F::number},
    {"etag", "entityID"},
    {"Referrer", "referrer"},
    {"MIMEType", "mimeType"},
});
constexpr auto kCookieFields = std::to_array<FieldRule>({
    {"URL", "host"},
    {"URLRawValue", "host"},
    {"Host", "host"},
    {"URLFileName", "name"},
    {"MetaData", "value"},
    {"URLParameters", "value"},
    {"ActionDateUTC", "lastAccessed", F::unixMicroseconds},
    {"ExpiryDate", "expiry", F::unixSeconds},
    {"ExpiryDate", "expiry", F::storedFirstTen},
    {"OtherDate", "expiry", F::unixSeconds},
    {"OtherDate", "expiry", F::storedFirstTen},
    {"expires", "expiry", F::unixSeconds},
    {"created", "creationTime", F::unixMicroseconds},
    {"last_updated", "updateTime", F::unixMicroseconds},
    {"path", "path"},
    {"secure", "isSecure", F::truth},
    {"http_only", "isHttpOnly", F::truth},
    {"same_site", "sameSite", F::number},
    {"source_scheme", "schemeMap", F::number},
    {"partition", "originAttributes", F::part},
    {"container", "originAttributes", F::part},
});
constexpr auto kForms = std::to_array<FieldRule>({
    {"URLFileName", "fieldname"},
    {"field_name", "fieldname"},
    {"MetaData", "value"},
    {"field_value", "value"},
    {"search_term", "value"},
    {"guid", "guid"},
    {"count", "timesUsed", F::number},
    {"ActionDateUTC", "lastUsed", F::unixMicroseconds},
    {"LastVisited", "lastUsed", F::unixMicroseconds},
    {"last_used", "lastUsed", F::unixMicroseconds},
    {"OtherDate", "firstUsed", F::unixMicroseconds},
    {"first_used", "firstUsed", F::unixMicroseconds},
    {"search_engine", "rowid>moz_history_to_sources.history_id:source_id>moz_sources.id:source"},
});
constexpr auto kDeletedForms = std::to_array<FieldRule>({
    {"ActionDateUTC", "timeDeleted", F::unixMicroseconds},
    {"LastVisited", "timeDeleted", F::unixMicroseconds},
    {"guid", "guid"},
});
constexpr auto kPermissions = std::to_array<FieldRule>({
    {"URL", "origin", F::part},
    {"URL", "host", F::part},
    {"URLRawValue", "origin", F::part},
    {"URLRawValue", "host", F::part},
    {"Host", "host", F::part},
    {"permission", "type"},
    {"setting", "permission", F::number},
    {"ActionDateUTC", "modificationTime", F::unixMilliseconds},
    {"LastVisited", "modificationTime", F::unixMilliseconds},
    {"last_updated", "modificationTime", F::unixMilliseconds},
    {"ExpiryDate", "expireTime", F::unixMilliseconds},
    {"last_interaction", "origin>moz_origin_interactions.origin:lastInteractionTime",
     F::unixMilliseconds},
    {"partition", "origin", F::part},
    {"container", "origin", F::part},
});
constexpr auto kNeverLogins = std::to_array<FieldRule>({
    {"URL", "hostname"},
    {"URLRawValue", "hostname"},
});
constexpr auto kLogins = std::to_array<FieldRule>({
    {"URL", "hostname"},
    {"URLRawValue", "hostname"},
    {"signon_realm", "httpRealm"},
    {"action_url", "formSubmitURL"},
    {"field_name", "usernameField"},
    {"encrypted", "encryptedUsername", F::encryptedBase64},
    {"guid", "guid"},
    {"count", "timesUsed", F::number},
    {"ActionDateUTC", "timeCreated", F::unixMilliseconds},
    {"LastVisited", "timeCreated", F::unixMilliseconds},
    {"created", "timeCreated", F::unixMilliseconds},
    {"OtherDate", "timeLastUsed", F::unixMilliseconds},
    {"last_used", "timeLastUsed", F::unixMilliseconds},
    {"password_changed", "timePasswordChanged", F::unixMilliseconds},
});
constexpr auto kDeletedLogins = std::to_array<FieldRule>({
    {"ActionDateUTC", "timeDeleted", F::unixMilliseconds},
    {"LastVisited", "timeDeleted", F::unixMilliseconds},
    {"guid", "guid"},
});
constexpr auto kIcons = std::to_array<FieldRule>({
    {"URL", "page_url"},
    {"URLRawValue", "page_url"},
    {"icon_url", "rowid>moz_icons_to_pages.page_id:icon_id>moz_icons.id:icon_url"},
    {"ExpiryDate", "rowid>moz_icons_to_pages.page_id:icon_id>moz_icons.id:expire_ms",
     F::unixMilliseconds},
});

constexpr auto kRules = std::to_array<KindRules>({
    {&kFirefox3History, "moz_places", kPages},
    {&kFirefoxVisit, "moz_historyvisits", kVisits},
    {&kFirefoxBookmark, "moz_bookmarks", kBookmarks},
    {&kFirefoxBookmark, "moz_bookmarks_deleted", kDeletedBookmarks},
    {&kFirefoxDownload, "moz_annos", kAnnotatedDownloads},
    {&kFirefoxDownload, "moz_downloads", kDownloads},
    {&kFirefoxCookies, "moz_cookies", kCookieFields},
    {&kFirefoxFormValue, "moz_formhistory", kForms},
    {&kFirefoxFormValue, "moz_deleted_formhistory", kDeletedForms},
    {&kFirefoxPermission, "moz_perms", kPermissions},
    {&kFirefoxPermission, "moz_hosts", kPermissions},
    {&kFirefoxPermission, "moz_disabledHosts", kNeverLogins},
    {&kFirefoxLogin, "moz_logins", kLogins},
    {&kFirefoxLogin, "moz_deleted_logins", kDeletedLogins},
    {&kFirefoxIcon, "moz_pages_w_icons", kIcons},
});

} // namespace

std::span<const KindRules> firefoxFieldRules() {
    return kRules;
}

} // namespace nv
