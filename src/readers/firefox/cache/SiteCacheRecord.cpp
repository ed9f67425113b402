#include "readers/firefox/cache/SiteCacheRecord.h"

#include "base/Files.h"
#include "base/Text.h"
#include "readers/FolderLayout.h"
#include "readers/HeaderDate.h"
#include "readers/HttpHeaders.h"
#include "readers/firefox/Kinds.h"
#include "readers/firefox/ProfileValues.h"
#include "readers/firefox/cache/CachedAddress.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace nv {

namespace {

namespace fs = std::filesystem;

constexpr std::array<MozWord, 6> kTypes = {{{0, "basic"},
                                            {1, "cors"},
                                            {2, "default"},
                                            {3, "error"},
                                            {4, "opaque"},
                                            {5, "opaqueredirect"}}};

std::string textOf(const Row &row, SiteCacheColumn column) {
    return row.text(static_cast<std::size_t>(column));
}

std::optional<std::int64_t> numberOf(const Row &row, SiteCacheColumn column) {
    return row.number(static_cast<std::size_t>(column));
}

std::string urlOf(const Row &row) {
    const std::string whole = textOf(row, SiteCacheColumn::wholeUrl);
    std::string url = whole.empty() ? textOf(row, SiteCacheColumn::urlWithoutQuery) +
                                          textOf(row, SiteCacheColumn::query)
                                    : whole;
    const std::string fragment = textOf(row, SiteCacheColumn::fragment);
    if (!fragment.empty())
        url += (fragment.starts_with('#') ? "" : "#") + fragment;
    return url;
}

/// The body is stored unpacked, whatever that header says.
std::string withoutPacking(std::string_view headers) {
    std::string rest;
    for (const std::string_view line : split(headers, '\n'))
        if (!line.empty() && !startsWithNoCase(line, "content-encoding:"))
            rest.append(line).append("\n");
    return rest;
}

Date dateIn(std::string_view headers) {
    const auto dates = headerValues(headers, "date");
    return dates.empty() ? Date() : headerDate(dates.front());
}

void setPlace(UrlRecord &record, const ReadContext &ctx) {
    const fs::path &file = ctx.file.fullPath;
    record.SourceFile_ID = ctx.file.sourceFileID;
    record.HistoryFilePath = nv::textOf(file);
    record.HistoryVersion = ctx.file.version;
    record.RootPath = ctx.evidence.rootOf(file);
    record.CacheRootPath = nv::textOf(fs::path(ctx.evidence.relativeOf(file)).parent_path());
    record.CacheFileRelativePath = record.CacheRootPath;
    record.facts.add("cache_layout", ctx.file.version);
}

void addOwner(UrlRecord &record, const ReadContext &ctx) {
    const fs::path folder = ctx.file.fullPath.parent_path().parent_path();
    const SiteOrigin origin = siteOriginOf(nv::textOf(folder.filename()));
    record.facts.add("site_url", origin.site);
    addOriginAttributes(record.facts, origin.attributes);
}

void setAnswer(UrlRecord &record, const Row &row, const SiteCacheEntry &entry, const Clock &clock) {
    const auto status = numberOf(row, SiteCacheColumn::status);
    const std::string text = textOf(row, SiteCacheColumn::statusText);
    const std::string line = status.value_or(0) == 0
                                 ? std::string()
                                 : std::string(trim(fmt::format("{} {}", *status, text)));
    record.MetaData = (line.empty() ? std::string() : fmt::format("HTTP {}\r\n", line)) +
                      withoutPacking(entry.headers);
    record.MIMEType = mimeTypeOf(entry.headers);
    record.IsWebPage = record.MIMEType == "text/html" || record.MIMEType == "application/xhtml+xml";
    record.ActionDateUTC = dateIn(entry.headers);
    record.ActionDateLocal = utcDateToLocal(record.ActionDateUTC, clock);
    if (!line.empty())
        record.facts.add("response_code", *status, line);
    record.facts.add("charset", charsetOf(entry.headers));
    record.facts.add("http_headers", entry.headers);
}

void addElement(FactList &facts, std::string_view name, std::string_view value) {
    constexpr std::size_t kMost = 1000; // such texts are short
    if (!value.empty())
        facts.add("cache_element", fmt::format("{}={}", name, value.substr(0, kMost)));
}

void addElements(FactList &facts, const Row &row, const SiteCacheEntry &entry) {
    addElement(facts, entry.isOfBrowser ? "cache of the browser's own" : "cache", entry.cacheName);
    const auto type = numberOf(row, SiteCacheColumn::type);
    const std::string word = mozWord(kTypes, type);
    addElement(facts, "response_type", word.empty() && type ? std::to_string(*type) : word);
    addElement(facts, "request_body", textOf(row, SiteCacheColumn::requestBody));
    addElement(facts, "padding", textOf(row, SiteCacheColumn::padding));
    for (const std::string_view line : split(entry.requestHeaders, '\n'))
        addElement(facts, "request_header", trim(line));
}

/// More than the address that was asked for.
void addWay(UrlRecord &record, const Row &row, const SiteCacheEntry &entry) {
    std::vector<std::string> way = entry.urls;
    if (std::string earlier = textOf(row, SiteCacheColumn::answerUrl); !earlier.empty())
        way.push_back(std::move(earlier));
    const std::string asked = record.URLRawValue.substr(0, record.URLRawValue.find('#'));
    if (way.size() == 1 && way.front() == asked)
        return;
    for (std::string &url : way)
        record.facts.add("url_chain", std::move(url));
}

bool isUuid(std::string_view id) {
    constexpr std::string_view kForm = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
    return id.size() == kForm.size() && std::ranges::equal(id, kForm, [](char c, char form) {
               return form == 'x' ? isHexName({&c, 1}, 1) : c == form;
           });
}

} // namespace

std::string siteBodyFile(std::string_view id) {
    if (!isUuid(id))
        return {};
    constexpr std::size_t kLastDigits = 3; // two, and the brace
    const std::string_view last = id.substr(id.size() - kLastDigits, 2);
    unsigned folder = 0;
    std::from_chars(last.data(), last.data() + last.size(), folder, 16);
    return fmt::format("morgue/{}/{}.final", folder, id);
}

SiteOrigin siteOriginOf(std::string_view folder) {
    const std::size_t end = std::min(folder.find('^'), folder.size());
    const std::string_view name = folder.substr(0, end);
    const std::size_t scheme = name.find("+++");
    SiteOrigin origin;
    if (scheme == std::string_view::npos)
        return origin;
    origin.site = fmt::format("{}://{}", name.substr(0, scheme),
                              replaceAll(std::string(name.substr(scheme + 3)), "+", ":"));
    origin.attributes = folder.substr(end);
    return origin;
}

UrlRecord siteCacheRecord(const ReadContext &ctx, const Row &row, const SiteCacheEntry &entry) {
    UrlRecord record;
    record.Action = "Visited";
    record.Status = "URL";
    record.cacheType = kFirefoxSiteCache.word;
    record.Visits = kVisitsUnknown;
    setPlace(record, ctx);
    const std::string url = urlOf(row);
    setCachedAddress(record, decodeText(url), decodeText(url));
    const std::string referrer = textOf(row, SiteCacheColumn::referrer);
    record.Referrer = referrer == "about:client" ? std::string() : referrer; // nobody set one
    addOwner(record, ctx);
    setAnswer(record, row, entry, ctx.clock);
    record.facts.add("http_method", textOf(row, SiteCacheColumn::method));
    addWay(record, row, entry);
    if (entry.certificate) {
        record.facts.add("certificate_name", entry.certificate->name);
        record.facts.add("certificate_issuer", entry.certificate->issuer);
    }
    addElements(record.facts, row, entry);
    return record;
}

UrlRecord siteRemnantRecord(const ReadContext &ctx, const std::string &file) {
    UrlRecord record;
    record.Action = "Visited";
    record.Status = "Recovered";
    record.cacheType = kFirefoxCacheRemnant.word;
    record.Visits = kVisitsUnknown;
    record.IsWebPage = true; // unless its first bytes say otherwise
    setPlace(record, ctx);
    addOwner(record, ctx);
    record.facts.add("recovered_from", file + ", which no entry names");
    return record;
}

void setSiteBody(UrlRecord &record, const std::string &file, std::uint64_t size) {
    const std::size_t end = file.rfind('/');
    record.CacheFolderName = file.substr(0, end);
    record.DataBlockFile = file.substr(end + 1);
    record.CacheFileSize = static_cast<std::int64_t>(size);
    record.CacheFileExists = size > 0;
    record.IsWebPage &= size > 0;
    record.facts.add("source_file", file);
}

} // namespace nv
