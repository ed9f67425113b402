#include "readers/chrome/cache/CachePlaces.h"

#include "base/Text.h"
#include "readers/Certificate.h"
#include "readers/HttpHeaders.h"
#include "readers/chrome/cache/CacheKey.h"
#include "readers/chrome/cache/CacheRow.h"
#include "readers/chrome/cache/ResponseInfo.h"
#include "readers/chrome/cache/SiteCacheAnswer.h"
#include "readers/chrome/shared/StoredDate.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

namespace nv {

namespace {

using F = SourceForm;

/// All columns that have the time of the answer.
constexpr std::array<std::string_view, 3> kAnswered = {"ActionDateUTC", "LastVisited",
                                                       "CacheFileLastAccessed"};
constexpr std::array<std::string_view, 2> kRequested = {"OtherDate", "request_time"};

void placeDate(std::string_view field, const SourceBytes &bytes, ChromeResponse::Place place,
               FieldPlaces &places) {
    if (place.size > 0)
        places.number(bytes, {field, place.at, place.size, F::chromeTime});
}

SourceBytes stretchOf(const SourceBytes &whole, std::string name, ChromeResponse::Place place) {
    const std::string_view raw = whole.view().sub(place.at, place.size).raw();
    return {std::move(name),
            whole.file,
            whole.cell,
            whole.at + place.at,
            Bytes(raw.begin(), raw.end()),
            0,
            whole.cellBytes};
}

void placeHeaders(const SourceBytes &lines, const std::string &text, FieldPlaces &places) {
    constexpr std::string_view kRule = "lines, which zeros part in the file";
    const std::uint64_t size = lines.bytes.size();
    for (const std::string_view field : {"MetaData", "http_headers"})
        places.value(field, lines, 0, size, text, std::string(kRule));
    places.value("status_line", lines, 0, std::min<std::uint64_t>(size, text.find('\r')),
                 std::string(trim(text.substr(0, text.find('\r')))), "the first of the headers");
    for (const std::string_view field : {"MIMEType", "mime_type"})
        places.headerLine(field, lines, "content-type", mimeTypeOf(text),
                          "without what follows \";\"");
    places.headerLine("charset", lines, "content-type", MadeValue(), "its \"charset\"");
}

void placeResponse(const SourceBytes &head, const ChromeResponse &response, FieldPlaces &places) {
    for (const std::string_view field : kAnswered)
        placeDate(field, head, response.answeredPlace, places);
    for (const std::string_view field : kRequested)
        placeDate(field, head, response.requestedPlace, places);
    placeDate("first_response_time", head, response.firstPlace, places);
    placeHeaders(stretchOf(head, "the headers of the answer", response.headersPlace),
                 response.headers, places);
    if (response.serverPlace.size > 0)
        places.value("server_address", head, response.serverPlace.at, response.serverPlace.size,
                     response.server, "text; the port stands behind it, a number of 4 bytes");
    const auto certificate = response.certificates.empty()
                                 ? std::nullopt
                                 : certificateOf(ByteView(response.certificates.front()));
    if (certificate) {
        const auto place = response.certificatePlace;
        places.value("certificate_name", head, place.at, place.size, certificate->name,
                     "X.509, DER: its subject");
        places.value("certificate_issuer", head, place.at, place.size, certificate->issuer,
                     "X.509, DER: its issuer");
    }
}

void placeVarint(std::string_view field, const SourceBytes &head, ChromeResponse::Place place,
                 std::int64_t time, FieldPlaces &places) {
    if (place.size == 0)
        return;
    places.value(field, head, place.at, place.size, chromeDate(time),
                 fmt::format("{} = {}; protocol buffers: 7 bits a byte, the lowest first",
                             wordsOf(F::chromeTime), time));
}

void placeSiteAnswer(const SourceBytes &head, const ChromeSiteAnswer &answer, FieldPlaces &places) {
    const ChromeResponse::Place answered = {answer.answeredAt, answer.answeredSize};
    const ChromeResponse::Place stored = {answer.storedAt, answer.storedSize};
    for (const std::string_view field : kAnswered)
        placeVarint(field, head, answer.answered != 0 ? answered : stored,
                    answer.answered != 0 ? answer.answered : answer.stored, places);
    placeVarint("created", head, stored, answer.stored, places);
    const std::uint64_t size = head.bytes.size();
    constexpr std::string_view kMessage = "a message of protocol buffers: request, answer, headers";
    for (const std::string_view field : {"MetaData", "MIMEType", "status_line", "charset"})
        places.value(field, head, 0, size, MadeValue(), std::string(kMessage));
    places.value("http_headers", head, 0, size, answer.headers, std::string(kMessage));
    places.value("http_method", head, 0, size, answer.method, std::string(kMessage));
}

/// The compiled form of a script begins with the time of the script's own answer.
void placeCompiled(const SourceBytes &head, FieldPlaces &places) {
    if (head.bytes.size() >= 8)
        for (const std::string_view field : kAnswered)
            places.number(head, {field, 0, 8, F::chromeTime});
}

} // namespace

void placeChromeKey(const SourceBytes &key, FieldPlaces &places) {
    const std::string text = chromeKeyText(key.view().raw());
    const std::uint64_t size = key.bytes.size();
    for (const std::string_view field : {"URLRawValue", "cache_key"})
        places.value(field, key, 0, size, text);
    const ChromeCacheKey parts = chromeCacheKeyOf(text);
    const std::string script = compiledScriptIn(text);
    const std::string &url = script.empty() ? parts.url : script;
    const std::size_t at = key.view().raw().find(url);
    const bool isThere = at != std::string_view::npos;
    places.value("URL", key, isThere ? at : 0, isThere ? url.size() : size, url,
                 "the address in the key");
    for (const std::string_view field : {"partition", "upload_id"})
        places.value(field, key, 0, size, MadeValue(), "a part of the key");
}

void placeChromeHead(const SourceBytes &head, std::string_view key, FieldPlaces &places) {
    if (const auto response = chromeResponseOf(head.view()))
        placeResponse(head, *response, places);
    else if (const auto answer = chromeSiteAnswerOf(head.view()))
        placeSiteAnswer(head, *answer, places);
    else if (!compiledScriptIn(key).empty())
        placeCompiled(head, places);
}

void placeChromeRest(FieldPlaces &places) {
    for (const std::string_view field : {"DataBlockFile", "DataBlockFileOffset"})
        places.derived(field, "by the address of the body in the entry");
    for (const std::string_view field : {"MapFileOffset", "source_offset", "source_file"})
        places.derived(field, "where this program found the entry");
    for (const std::string_view field : {"source_table", "source_rowid", "Reference_ID"})
        places.derived(field, "where this program found the entry");
    places.derived("CacheFolderName", "folder of the cache");
    places.derived("cache_layout", "by the layout of the files");
    places.derived("chain", "which slot of the index leads to the entry");
    places.derived("byte_ranges", "by the places of the body's pieces");
    places.derived("further_stream", "by the entry's other streams");
    places.derived("MIMEType", "of the line \"Content-Type\" among the headers");
    places.derived("CacheFileCreated",
                   "of the cache's file, as the file system told at the import");
    places.derivedOfAddress();
}

} // namespace nv
