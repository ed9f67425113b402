#include "readers/chrome/cache/CacheRow.h"

#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "readers/Certificate.h"
#include "readers/Dissection.h"
#include "readers/HttpHeaders.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/cache/ResponseInfo.h"
#include "readers/chrome/cache/SiteCacheAnswer.h"
#include "readers/chrome/shared/Stamps.h"
#include "time/SourceClocks.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <utility>

namespace nv {

namespace {

/// Before the address of a script in the key of its compiled form.
constexpr std::string_view kCompiledMark = "_key";

/// What the line of that name says; empty without one.
std::string headerOf(std::string_view headers, std::string_view name) {
    for (const std::string_view line : split(headers, '\n'))
        if (startsWithNoCase(line, name) && line.substr(name.size()).starts_with(':'))
            return std::string(trim(line.substr(name.size() + 1)));
    return {};
}

std::string charsetOf(std::string_view headers) {
    constexpr std::string_view kName = "charset=";
    const std::string type = headerOf(headers, "content-type");
    const std::size_t at = findNoCase(type, kName);
    if (at == std::string::npos)
        return {};
    std::string_view value = std::string_view(type).substr(at + kName.size());
    value = trim(value.substr(0, value.find(';')));
    if (value.size() > 1 && value.starts_with('"') && value.ends_with('"'))
        value = value.substr(1, value.size() - 2);
    return toLower(value);
}

std::string withoutHeader(std::string_view headers, std::string_view name) {
    std::string rest;
    for (const std::string_view line : split(headers, '\n'))
        if (!line.empty() && !startsWithNoCase(line, name))
            rest.append(line).append("\n");
    return rest;
}

void setPlace(UrlRecord &record, const ReadContext &ctx, const ChromeEntryPlace &place) {
    const std::filesystem::path file = place.folder / place.file;
    record.SourceFile_ID = ctx.file.sourceFileID;
    record.HistoryFilePath = textOf(ctx.file.fullPath);
    record.HistoryVersion = ctx.file.version;
    record.facts.add("cache_layout", ctx.file.version);
    record.RootPath = ctx.evidence.rootOf(file);
    record.CacheRootPath = textOf(place.folder);
    record.CacheFolderName = textOf(place.folder.filename());
    record.CacheFileRelativePath = ctx.evidence.relativeOf(file);
    record.DataBlockFile = place.file;
    record.DataBlockFileOffset = static_cast<std::int64_t>(place.bodyAt);
    record.CacheFileSize = static_cast<std::int64_t>(place.bodySize);
    record.CacheFileExists = place.bodySize > 0;
    record.MapFileOffset = static_cast<std::int64_t>(place.entryAt.value_or(0));
}

void setAnswered(UrlRecord &record, std::int64_t answered, const Clock &clock) {
    const Date utc = answered > 0 ? chromeTimeToDate(answered) : Date();
    record.ActionDateUTC = utc;
    record.ActionDateLocal = utcDateToLocal(utc, clock);
    record.LastVisited = utc;
    record.CacheFileLastAccessed = utc;
}

void setRequested(UrlRecord &record, std::int64_t requested) {
    record.OtherDate = requested > 0 ? chromeTimeToDate(requested) : Date();
    if (record.OtherDate.has())
        record.OtherDateMeaning = "Last Requested Time";
    addStamp(record.facts, "request_time", requested);
}

void takeResponse(UrlRecord &record, ChromeResponse response, const Clock &clock) {
    setAnswered(record, response.answered, clock);
    setRequested(record, response.requested);
    if (response.first && *response.first != response.answered)
        addStamp(record.facts, "first_response_time", response.first);
    record.MetaData = std::move(response.headers);
    record.MIMEType = mimeTypeOf(record.MetaData);
    const std::string_view lines = record.MetaData;
    record.facts.add("status_line", std::string(trim(lines.substr(0, lines.find('\r')))));
    record.facts.add("charset", charsetOf(lines));
    record.facts.add("server_address", response.server);
    const auto certificate = response.certificates.empty()
                                 ? std::nullopt
                                 : certificateOf(ByteView(response.certificates.front()));
    if (certificate) {
        record.facts.add("certificate_name", certificate->name);
        record.facts.add("certificate_issuer", certificate->issuer);
    }
    if (response.isTruncated)
        record.facts.add("body", "the transfer broke off");
}

/// The column goes without the packing that the stored body has no more.
void takeSiteAnswer(UrlRecord &record, const ChromeSiteAnswer &answer, const Clock &clock) {
    setAnswered(record, answer.answered != 0 ? answer.answered : answer.stored, clock);
    const std::string status =
        answer.statusLine.empty() ? "" : fmt::format("HTTP {}\r\n", answer.statusLine);
    record.MetaData = status + withoutHeader(answer.headers, "content-encoding:");
    record.MIMEType = mimeTypeOf(record.MetaData);
    if (record.MIMEType.empty())
        record.MIMEType = answer.mimeType;
    record.facts.add("status_line", std::string(trim(status)));
    record.facts.add("charset", charsetOf(answer.headers));
    record.facts.add("http_method", answer.method);
    record.facts.add("http_headers", answer.headers);
    addStamp(record.facts, "created", answer.stored);
}

std::size_t endOfScript(std::string_view key) {
    return std::min(key.find_first_of(" \n"), key.size());
}

/// The compiled form of a script: "_key" URL " \n" the site that ran it, and the time of the
/// script's own answer at the start of the stream.
void takeCompiled(UrlRecord &record, std::string_view key, ByteView head, const Clock &clock) {
    if (!key.starts_with(kCompiledMark))
        return;
    setChromeAddress(record, compiledScriptIn(key));
    record.facts.add("partition", std::string(trim(key.substr(endOfScript(key)))));
    const std::int64_t time = head.has(0, 8) ? static_cast<std::int64_t>(head.u64le(0)) : 0;
    // What is no time of this century is no such stream.
    constexpr std::int64_t kYear2001 = 12'600'000'000'000'000;
    constexpr std::int64_t kYear2100 = 15'750'000'000'000'000;
    if (time > kYear2001 && time < kYear2100)
        setAnswered(record, time, clock);
}

} // namespace

/// A zero character becomes the visible U+2400: half of the programs cut a text there.
std::string chromeKeyText(std::string_view stored) {
    return replaceAll(decodeText(stored), std::string_view("\0", 1), "\u2400");
}

std::string compiledScriptIn(std::string_view key) {
    if (!key.starts_with(kCompiledMark))
        return {};
    return std::string(key.substr(kCompiledMark.size(), endOfScript(key) - kCompiledMark.size()));
}

void setChromeAddress(UrlRecord &record, const std::string &url) {
    record.URL = url;
    record.HashedURL = hashOfUrl(url);
    record.host = parseHost(url);
    record.URLProtocol = getURLProtocol(url);
    record.URLFileName = getFilenameFromPath(url);
    record.CacheFileName = record.URLFileName;
}

UrlRecord chromeEntryRecord(const ReadContext &ctx, const ChromeEntryPlace &place,
                            std::string_view storedKey, ByteView head) {
    UrlRecord record;
    record.Action = "Visited";
    record.Status = "URL";
    record.Visits = kVisitsUnknown;
    record.RecordSize = storedKey.size();
    record.URLRawValue = chromeKeyText(storedKey);
    const ChromeCacheKey key = chromeCacheKeyOf(record.URLRawValue);
    setChromeAddress(record, key.url);
    setPlace(record, ctx, place);
    if (key.url != record.URLRawValue)
        record.facts.add("cache_key", record.URLRawValue);
    record.facts.add("partition", key.partition);
    record.facts.add("upload_id", key.upload);
    auto response = chromeResponseOf(head);
    // Without its head an entry is what its key says. Sites' own caches have bare addresses.
    const bool isOfBrowser = key.url != record.URLRawValue;
    const bool isOfPage = (response || head.empty() || isOfBrowser) &&
                          !key.url.starts_with(kCompiledMark) &&
                          key.url.find(':') != std::string::npos;
    record.cacheType = isOfPage ? kChromeCache.word : kChromeSiteCache.word;
    if (response)
        takeResponse(record, *std::move(response), ctx.clock);
    else if (isOfPage && !head.empty())
        record.facts.add("body", "the head of its answer is damaged");
    else if (const auto answer = chromeSiteAnswerOf(head))
        takeSiteAnswer(record, *answer, ctx.clock);
    else
        takeCompiled(record, record.URLRawValue, head, ctx.clock);
    record.facts.add("source_file", place.file);
    if (place.entryAt)
        record.facts.add("source_offset", record.MapFileOffset);
    return record;
}

void makeChromeRemnant(UrlRecord &record, std::string_view foundHow) {
    record.cacheType = kChromeCacheRemnant.word;
    record.Status = "Recovered";
    record.facts.add("recovered_from", std::string(foundHow));
}

std::uint64_t contentLengthIn(std::string_view headers) {
    const std::string length = headerOf(headers, "content-length");
    const char *end = length.data() + length.size();
    std::uint64_t told = 0;
    const auto [stop, error] = std::from_chars(length.data(), end, told);
    return error == std::errc() && stop == end ? told : 0;
}

/// Packed bodies have the length of the header too, but not what was unpacked before it was stored.
/// An answer without a body may name any.
void addBodyDoubts(UrlRecord &record, std::uint64_t size) {
    const std::uint64_t told = contentLengthIn(record.MetaData);
    if (record.cacheType != kChromeSiteCache.word && size > 0 && told > 0 && told != size)
        record.facts.add("body", fmt::format("{} bytes, Content-Length says {}", size, told));
}

} // namespace nv
