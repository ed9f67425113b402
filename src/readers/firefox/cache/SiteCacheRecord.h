#pragma once

#include "readers/Certificate.h"
#include "readers/Reader.h"
#include "readers/sqlite/Row.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What the tables beside an entry's own row say of it.
struct SiteCacheEntry {
    std::string headers;           ///< of the answer, lines with "\r\n"
    std::string requestHeaders;    ///< the same
    std::vector<std::string> urls; ///< on the way to the answer, the last one gave it
    std::string cacheName;
    bool isOfBrowser = false; ///< the browser's own cache: scripts of service workers
    std::optional<Certificate> certificate;
};

/// The columns of an entry's row that are read.
inline constexpr std::array<std::string_view, 16> kSiteCacheColumns = {"id",
                                                                       "request_method",
                                                                       "request_url_no_query",
                                                                       "request_url_query",
                                                                       "request_url_fragment",
                                                                       "request_url",
                                                                       "request_referrer",
                                                                       "request_body_id",
                                                                       "response_type",
                                                                       "response_status",
                                                                       "response_status_text",
                                                                       "response_body_id",
                                                                       "response_security_info_id",
                                                                       "cache_id",
                                                                       "response_url",
                                                                       "response_padding_size"};
enum class SiteCacheColumn : std::size_t {
    id,
    method,
    urlWithoutQuery,
    query,
    fragment,
    wholeUrl, ///< of earlier versions
    referrer,
    requestBody,
    type,
    status,
    statusText,
    body,
    security,
    cache,
    answerUrl, ///< of earlier versions
    padding,
};

/// Where a body lies: "morgue/158/{5F79CB9B-...}.final". Empty when the text is no such number.
std::string siteBodyFile(std::string_view id);

/// What an origin's folder says: "https+++app.example+8080^partitionKey=..."
struct SiteOrigin {
    std::string site; ///< "https://app.example:8080"
    std::string attributes;
};
SiteOrigin siteOriginOf(std::string_view folder);

/// The record of an entry, without its body.
UrlRecord siteCacheRecord(const ReadContext &ctx, const Row &row, const SiteCacheEntry &entry);

/// A record of a body alone, that lies in `file` below the cache's folder.
UrlRecord siteRemnantRecord(const ReadContext &ctx, const std::string &file);

/// Says where the body lies, and how long it is unpacked.
void setSiteBody(UrlRecord &record, const std::string &file, std::uint64_t size);

} // namespace nv
