#include "readers/firefox/cache/Cache2Record.h"

#include "base/Base64.h"
#include "base/Files.h"
#include "base/Text.h"
#include "readers/Certificate.h"
#include "readers/FactDate.h"
#include "readers/HttpHeaders.h"
#include "readers/firefox/Kinds.h"
#include "readers/firefox/ProfileValues.h"
#include "readers/firefox/cache/CacheBody.h"
#include "readers/firefox/cache/CachedAddress.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace nv {

namespace {

namespace fs = std::filesystem;

constexpr std::array<MozWord, 8> kContentKinds = {{{0, "unknown"},
                                                   {1, "other"},
                                                   {2, "script"},
                                                   {3, "picture"},
                                                   {4, "media"},
                                                   {5, "style sheet"},
                                                   {6, "WebAssembly"},
                                                   {7, "dictionary"}}};

// What has a fact or a column of its own, and what says nothing of the content or its user.
constexpr std::array<std::string_view, 11> kTold = {"response-head",   "original-response-headers",
                                                    "request-method",  "ctid",
                                                    "security-info",   "net-response-time-onstart",
                                                    "alt-data",        "net-response-time-onstop",
                                                    "peer-ip-address", "peer-port",
                                                    "strongly-framed"};

/// What stands in a fact of an element; such texts are short.
constexpr std::size_t kElementBytes = 1000;

constexpr std::uint32_t kNever = 0xFFFFFFFF;

Date dateOf(std::uint32_t seconds) {
    return seconds == 0 || seconds == kNever ? Date() : Date::fromUnixSeconds(seconds);
}

std::optional<std::int64_t> numberOf(std::string_view text) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    return isNumber ? std::optional(number) : std::nullopt;
}

/// The folder of the cache, by which its records belong together, and the file in it. Where the
/// folder of the entries is all that there is of the evidence, it stands for the cache's.
void setPlace(UrlRecord &url, const Cache2Entry &entry, const Cache2File &file,
              const ReadContext &ctx) {
    const fs::path own = fs::path(ctx.evidence.relativeOf(file.path)).parent_path();
    const bool isBelow = !file.folder.empty() && !own.empty();
    url.SourceFile_ID = ctx.file.sourceFileID;
    url.HistoryFilePath = textOf(file.path);
    url.HistoryVersion = fmt::format("cache2 version {}", entry.version);
    url.RootPath = ctx.evidence.rootOf(file.path);
    url.CacheRootPath = textOf(isBelow ? own.parent_path() : own);
    url.CacheFileRelativePath = url.CacheRootPath;
    url.CacheFolderName = isBelow ? file.folder : std::string();
    url.DataBlockFile = textOf(file.path.filename());
    url.CacheFileSize = static_cast<std::int64_t>(entry.body);
    url.CacheFileExists = entry.body > 0;
    url.MapFileOffset = static_cast<std::int64_t>(entry.stored);
    url.MetaDataRecordOffset = entry.stored;
    url.RecordSize = entry.size;
}

void setDates(UrlRecord &url, const Cache2Entry &entry, const Clock &clock) {
    url.ActionDateUTC = dateOf(entry.lastFetched);
    url.ActionDateLocal = utcDateToLocal(url.ActionDateUTC, clock);
    url.OtherDate = dateOf(entry.lastModified);
    url.OtherDateMeaning = "Last Modified";
    url.ExpiryDate = dateOf(entry.expires);
}

std::string headersOf(const Cache2Entry &entry) {
    const std::string_view head = entry.element("response-head");
    return decodeText(head.empty() ? entry.element("original-response-headers") : head);
}

/// What it is comes out when its body is looked at; without a type it may be a page.
void setHeaders(UrlRecord &url, const Cache2Entry &entry) {
    url.MetaData = headersOf(entry);
    url.MIMEType = mimeTypeOf(url.MetaData);
    const bool isPage = url.MIMEType.empty() || url.MIMEType == "text/html" ||
                        url.MIMEType == "application/xhtml+xml";
    url.IsWebPage = isPage && entry.body > 0;
}

void addAnswerFacts(UrlRecord &url, const Cache2Entry &entry) {
    FactList &facts = url.facts;
    if (const int status = statusOf(url.MetaData); status != 0)
        facts.add("response_code", status,
                  std::string(trim(url.MetaData.substr(0, url.MetaData.find('\n')))));
    facts.add("charset", charsetOf(url.MetaData));
    facts.add("http_method", decodeText(entry.element("request-method")));
    const std::string address = decodeText(entry.element("peer-ip-address"));
    const std::string port = decodeText(entry.element("peer-port"));
    if (!address.empty())
        facts.add("server_address", port.empty() ? address : address + ":" + port);
    addMozNumber(facts, "answer_began", numberOf(entry.element("net-response-time-onstart")));
    addMozNumber(facts, "answer_ended", numberOf(entry.element("net-response-time-onstop")));
    addMozWord(facts, "content_kind", kContentKinds, numberOf(entry.element("ctid")));
}

/// It stands amid what else the browser keeps of the connection.
void addCertificate(FactList &facts, const Cache2Entry &entry) {
    const std::string bytes = fromBase64(entry.element("security-info"));
    const auto certificate = certificateIn(viewOf(bytes));
    if (!certificate)
        return;
    facts.add("certificate_name", certificate->name);
    facts.add("certificate_issuer", certificate->issuer);
}

void addAlternative(FactList &facts, const Cache2Entry &entry) {
    const std::string alternative = decodeText(entry.element("alt-data"));
    if (alternative.empty())
        return;
    const std::string kind =
        alternative.substr(std::min(alternative.find(','), alternative.size() - 1) + 1);
    facts.add(
        "alternative_data",
        fmt::format("{}, {} bytes", kind.empty() ? alternative : kind, entry.stored - entry.body),
        alternative);
}

void addElements(FactList &facts, const Cache2Entry &entry) {
    for (const auto &[name, value] : entry.elements)
        if (std::ranges::find(kTold, name) == kTold.end())
            facts.add("cache_element",
                      decodeText(fmt::format("{}={}", name, value).substr(0, kElementBytes)));
}

void addFacts(UrlRecord &url, const Cache2Entry &entry, const Cache2Key &key) {
    FactList &facts = url.facts;
    facts.add("source_offset", url.MapFileOffset);
    facts.add("cache_layout", fmt::format("Firefox cache2, metadata version {}", entry.version));
    facts.add("cache_key", url.URLRawValue);
    addOriginAttributes(facts, decodeText(key.originAttributes));
    if (key.isAnonymous)
        facts.add("anonymous", "yes");
    if (url.ExpiryDate.has())
        facts.add("expires", factDate(url.ExpiryDate), std::int64_t{entry.expires});
    facts.add("frecency", std::int64_t{entry.frecency});
    if ((entry.flags & 1) != 0)
        facts.add("pinned", "yes");
    addAnswerFacts(url, entry);
    addCertificate(facts, entry);
    addAlternative(facts, entry);
    addElements(facts, entry);
}

} // namespace

UrlRecord parseCache2Record(const Cache2Entry &entry, const Cache2File &file,
                            const ReadContext &ctx) {
    UrlRecord url;
    const Cache2Key key = parseCache2Key(entry.key);
    url.Action = "Visited";
    url.Status = file.isGivenUp ? "Recovered" : "URL";
    url.cacheType = file.isGivenUp ? kFirefoxCacheRemnant.word : kFirefoxCache.word;
    url.Visits = file.isGivenUp ? kVisitsUnknown : std::int64_t{entry.fetchCount};
    setPlace(url, entry, file, ctx);
    setCachedAddress(url, decodeText(key.url), decodeText(entry.key));
    setDates(url, entry, ctx.clock);
    setHeaders(url, entry);
    if (file.isGivenUp) {
        url.facts.add("recovered_from", file.name + ", which the browser had given up");
        url.facts.add("count", std::int64_t{entry.fetchCount}); // totals add the column up
    }
    addFacts(url, entry, key);
    return url;
}

bool fetchFirefoxCache2Body(const UrlRecord &record, const Evidence &evidence, BodyTarget &target) {
    const std::string &folder = record.CacheFolderName;
    const std::string name =
        folder.empty() ? record.DataBlockFile : folder + "/" + record.DataBlockFile;
    if (record.DataBlockFile.empty() || record.CacheFileSize < 0)
        return false;
    const auto file = inFirefoxCacheFolder(record, evidence, name);
    if (!file)
        return false;
    const auto wanted = static_cast<std::uint64_t>(record.CacheFileSize);
    return target.copy(evidence.open(*file), 0, wanted) > 0 || wanted == 0;
}

} // namespace nv
