#include "base/Text.h"
#include "readers/HttpHeaders.h"
#include "readers/firefox/cache/Cache2Entry.h"
#include "readers/firefox/cache/CachePlaces.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <utility>

namespace nv {

namespace {

using F = SourceForm;
using enum ByteOrder;

SourceBytes part(const SourceBytes &whole, std::string name, std::uint64_t at, std::uint64_t size) {
    const std::string_view raw = whole.view().sub(at, size).raw();
    return {
        std::move(name), whole.file, whole.cell, whole.at + at, Bytes(raw.begin(), raw.end()), 0,
        whole.cellBytes};
}

/// Of the metadata from their version on.
constexpr std::array<NumberRule, 8> kEntryNumbers = {{
    {"Visits", 4, 4, F::number, big},
    {"count", 4, 4, F::number, big},
    {"ActionDateUTC", 8, 4, F::unixSeconds, big},
    {"LastVisited", 8, 4, F::unixSeconds, big},
    {"OtherDate", 12, 4, F::unixSeconds, big},
    {"frecency", 16, 4, F::number, big},
    {"ExpiryDate", 20, 4, F::unixSeconds, big},
    {"expires", 20, 4, F::unixSeconds, big},
}};

void placeElement(std::string_view field, const SourceBytes &metaData, const Cache2Entry &entry,
                  std::string_view name, MadeValue made, FieldPlaces &places) {
    if (const auto at = entry.elementAt(name))
        places.value(field, metaData, *at, entry.element(name).size(), std::move(made),
                     fmt::format("element \"{}\" of the metadata", name));
}

void placeAnswer(const UrlRecord &record, const SourceBytes &metaData, const Cache2Entry &entry,
                 FieldPlaces &places) {
    std::string_view name = "response-head";
    if (entry.element(name).empty())
        name = "original-response-headers";
    const auto at = entry.elementAt(name);
    if (!at)
        return;
    const std::string text = decodeText(entry.element(name));
    placeElement("MetaData", metaData, entry, name, text, places);
    const SourceBytes lines =
        part(metaData, "the headers of the answer", *at, entry.element(name).size());
    places.headerLine("MIMEType", lines, "content-type", mimeTypeOf(text),
                      "without what follows \";\"");
    places.headerLine("charset", lines, "content-type", charsetOf(text), "its \"charset\"");
    if (const int status = statusOf(record.MetaData); status != 0)
        places.value("response_code", lines, 0, std::min(lines.bytes.size(), text.find('\n')),
                     std::int64_t{status}, "number in the status line");
}

void placeElements(const SourceBytes &metaData, const Cache2Entry &entry, FieldPlaces &places) {
    const auto text = [&](std::string_view field, std::string_view name) {
        placeElement(field, metaData, entry, name, decodeText(entry.element(name)), places);
    };
    const auto number = [&](std::string_view field, std::string_view name) {
        const std::string digits(entry.element(name));
        placeElement(field, metaData, entry, name,
                     std::int64_t{std::strtoll(digits.c_str(), nullptr, 10)}, places);
    };
    text("http_method", "request-method");
    number("answer_began", "net-response-time-onstart");
    number("answer_ended", "net-response-time-onstop");
    placeElement("content_kind", metaData, entry, "ctid", {}, places);
    const std::string port = decodeText(entry.element("peer-port"));
    if (const auto at = entry.elementAt("peer-ip-address")) {
        const std::string_view address = entry.element("peer-ip-address");
        places.value("server_address", metaData, *at, address.size(),
                     decodeText(address) + (port.empty() ? "" : ":" + port),
                     "element \"peer-ip-address\" of the metadata, then \"peer-port\"");
    }
    for (const std::string_view field : {"certificate_name", "certificate_issuer"})
        placeElement(field, metaData, entry, "security-info", {}, places);
    placeElement("alternative_data", metaData, entry, "alt-data", {}, places);
}

} // namespace

void locateInCache2(const PlaceSearch &search, FieldPlaces &places) {
    constexpr std::uint64_t kWord = 4;
    const EvidenceFile file = search.evidence.open(search.source);
    const SourceBytes last = sourceBytes(file, "the file's last word",
                                         file.size() - std::min(kWord, file.size()), kWord);
    const std::uint64_t at = cache2MetaDataAt(last.view(), file.size());
    const SourceBytes metaData = sourceBytes(file, "the entry's metadata", at, file.size() - at);
    const Cache2Entry entry = parseCache2Entry(metaData.view(), at);
    const SourceBytes key = part(metaData, "the entry's key", entry.keyAt, entry.key.size());
    const Cache2Key parsed = parseCache2Key(entry.key);
    const auto inKey = static_cast<std::uint64_t>(parsed.url.data() - entry.key.data());
    for (const std::string_view field : {"URLRawValue", "cache_key"})
        places.value(field, key, 0, entry.key.size(), decodeText(entry.key));
    places.value("URL", key, inKey, parsed.url.size(), decodeText(parsed.url),
                 "what follows the marks of the key");
    places.value("partition", key, 0, entry.key.size(), MadeValue(), "marks of the key");
    places.value("container", key, 0, entry.key.size(), MadeValue(), "marks of the key");
    places.value("anonymous", key, 0, entry.key.size(), MadeValue(), "marks of the key");
    places.numbers(part(metaData, "the entry's metadata", entry.fieldsAt,
                        metaData.bytes.size() - entry.fieldsAt),
                   kEntryNumbers);
    if (entry.elementAt("alt-data"))
        placeElement("CacheFileSize", metaData, entry, "alt-data",
                     static_cast<std::int64_t>(entry.body), places);
    else
        places.number(last, {"CacheFileSize", 0, kWord, F::number, big});
    places.number(last, {"MapFileOffset", 0, kWord, F::number, big});
    places.number(last, {"source_offset", 0, kWord, F::number, big});
    placeAnswer(search.record, metaData, entry, places);
    placeElements(metaData, entry, places);
    places.derived("MIMEType", "of the line \"Content-Type\" among the headers");
    places.derived("DataBlockFile", "name of the entry's file");
    places.derived("CacheFolderName", "folder of the entry's file");
    places.derived("cache_layout", "by the version in the metadata");
    for (const auto &[name, value] : entry.elements)
        placeElement("cache_element", metaData, entry, name, {}, places);
    places.derived("pinned", "a flag of the metadata");
    places.derivedOfAddress();
}

} // namespace nv
