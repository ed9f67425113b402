#pragma once

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace nv {

namespace detail {

// docs/formats/facts.md says of each what it means and in which unit it stands.
inline constexpr auto kFactNames = std::to_array<std::string_view>({
    // where the record lies
    "source_table",
    "source_rowid",
    "source_offset",
    "recovered_from",
    // visits
    "visit_id",
    "from_visit_id",
    "opener_visit_id",
    "transition",
    "visit_duration",
    "visit_source",
    "external_referrer",
    "device",
    "device_visit_id",
    "typed_count",
    "segment",
    "cluster",
    "page_language",
    "response_code",
    "foreground_duration",
    "typed_input",
    "annotation",
    "site_title",
    "description",
    "title",
    "from_url",
    "page_id",
    "last_visited",
    "interaction",
    "view_time",
    "key_presses",
    "url_from",
    "linked_from",
    // searches
    "search_term",
    "search_engine",
    // downloads
    "download_id",
    "download_guid",
    "target_path",
    "current_path",
    "start_time",
    "end_time",
    "received_bytes",
    "total_bytes",
    "download_state",
    "danger",
    "interrupt_reason",
    "opened",
    "deleted",
    "url_chain",
    "site_url",
    "tab_url",
    "tab_referrer",
    "by_extension",
    "sha256",
    "etag",
    "last_modified",
    "http_method",
    "original_mime_type",
    // cookies
    "path",
    "secure",
    "http_only",
    "same_site",
    "partition",
    "container",
    "source_scheme",
    "source_port",
    "created",
    "last_updated",
    "encrypted",
    "value",
    "cookie_name",
    "cookie_value",
    "cookie_flags",
    // forms, logins, permissions, settings
    "field_name",
    "field_value",
    "count",
    "first_used",
    "last_used",
    "user_name",
    "signon_realm",
    "action_url",
    "password",
    "password_changed",
    "permission",
    "setting",
    "zoom",
    "account",
    "field_label",
    "used",
    "last_filled",
    "never_save",
    "full_name",
    "email",
    "company",
    "address",
    "card_expiry",
    "card_network",
    "bank",
    "nickname",
    "embedded_in",
    "profile_name",
    "account_id",
    "last_interaction",
    // bookmarks, icons
    "folder",
    "guid",
    "keyword",
    "tags",
    "icon_url",
    "rank",
    "misses",
    // caches and indexes
    "last_checked",
    "stale_hash",
    "cache_key",
    "chain",
    "expires",
    "http_headers",
    "mime_type",
    "body",
    "classic_rule",
    "cache_layout",
    "frecency",
    "pinned",
    "anonymous",
    "charset",
    "server_address",
    "certificate_name",
    "certificate_issuer",
    "answer_began",
    "answer_ended",
    "content_kind",
    "alternative_data",
    "cache_element",
    "content_coding",
    "content_md5",
    "content_sha1",
    "content_sha256",
    "page_text",
    "request_time",
    "first_response_time",
    "status_line",
    "upload_id",
    "source_file",
    "byte_ranges",
    "further_stream",
    // hash sets
    "hashset_known",
    "hashset_notable",
});

} // namespace detail

/// The name of a fact. Only those of the list above can be made, so a name that is spelt wrongly
/// doesn't compile and none is used that the documents don't know.
class FactName {
  public:
    consteval FactName(const char *word) : m_word(word) {
        if (std::ranges::find(detail::kFactNames, m_word) == detail::kFactNames.end())
            throw "the list of facts doesn't have this name";
    }
    constexpr std::string_view word() const { return m_word; }

  private:
    std::string_view m_word;
};

constexpr std::span<const std::string_view> factNames() {
    return detail::kFactNames;
}

} // namespace nv
