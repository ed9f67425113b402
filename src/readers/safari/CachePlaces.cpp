#include "readers/safari/CachePlaces.h"

#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/safari/CacheResponse.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <fmt/format.h>

#include <optional>
#include <stdexcept>
#include <string>

namespace nv {

namespace {

constexpr const char *kList = "cfurl_cache_response";
constexpr const char *kBlobs = "cfurl_cache_blob_data";
constexpr const char *kLaterBodies = "cfurl_cache_receiver_data";

/// The row with the entry's number; nothing when there is none. `table` is one of those above.
std::optional<std::int64_t> rowOf(const PlaceSearch &search, const char *table) {
    EvidenceDatabase &database = search.database(search.source);
    if (!database.hasTable(table))
        return std::nullopt;
    SQLite::Statement row =
        database.prepare(std::string("SELECT rowid FROM ") + table + " WHERE entry_id = ? LIMIT 1");
    row.bind(1, search.record.Reference_ID);
    database.expectOneRow();
    return row.executeStep() ? std::optional(row.getColumn(0).getInt64()) : std::nullopt;
}

/// What stands between the string marks behind the key of that name: the last one counts.
void placeField(std::string_view field, const SourceBytes &object, std::string_view name,
                const MadeValue &made, std::string_view rule, FieldPlaces &places) {
    constexpr std::string_view kBegin = "<string>";
    const std::string_view text = object.view().raw();
    const std::string key = fmt::format("<key>{}</key>", name);
    std::optional<std::size_t> last;
    for (std::size_t at = findNoCase(text, key); at != std::string::npos;
         at = findNoCase(text, key, at + key.size()))
        last = at + key.size();
    const std::size_t begin = last ? text.find(kBegin, *last) : std::string_view::npos;
    const std::size_t end = begin == std::string_view::npos ? begin : text.find("</string>", begin);
    if (end == std::string_view::npos)
        return;
    const std::size_t from = begin + kBegin.size();
    places.value(field, object, from, end - from, made,
                 fmt::format("the header \"{}\" in the property list{}{}", name,
                             rule.empty() ? "" : ": ", rule));
}

void placeResponse(const PlaceSearch &search, FieldPlaces &places) {
    const auto row = rowOf(search, kBlobs);
    if (!row)
        return;
    const SourceBytes object = cellBytes(search, search.source, kBlobs, *row, "response_object");
    const CacheResponse response = readCacheResponse(object.view());
    for (const std::string_view field : {"ActionDateUTC", "LastVisited"})
        placeField(field, object, "Date", response.date, "when the server sent it, GMT, in words",
                   places);
    placeField("OtherDate", object, "Last-Modified", response.lastModified, "GMT, in words",
               places);
    placeField("MIMEType", object, "Content-Type", response.contentType, {}, places);
    places.value("MetaData", object, 0, object.bytes.size(), response.text, "without zero bytes");
}

/// The upper bound of the bytes counted from 0, as CacheFileSize has it.
void placeBody(const PlaceSearch &search, FieldPlaces &places) {
    const auto later = rowOf(search, kLaterBodies);
    const auto row = later ? later : rowOf(search, kBlobs);
    if (!row)
        return places.derived("CacheFileSize", "no row of the tables has the entry's body");
    const char *table = later ? kLaterBodies : kBlobs;
    const SourceBytes body = cellBytes(search, search.source, table, *row, "receiver_data");
    const bool mayBeFile =
        search.database(search.source).columnsOf(table).contains("isdataonfs") &&
        cellBytes(search, search.source, table, *row, "isDataOnFS").view().raw() == "1";
    const auto file = mayBeFile
                          ? search.evidence.find(search.source.parent_path(),
                                                 "fsCachedData/" + std::string(body.view().raw()))
                          : std::nullopt;
    const std::uint64_t size = file        ? search.evidence.factsOf(*file).size
                               : mayBeFile ? 0
                                           : body.bytes.size();
    places.value("CacheFileSize", body, 0, body.bytes.size(),
                 static_cast<std::int64_t>(size == 0 ? 0 : size - 1),
                 mayBeFile ? "the length of the file of this name, less 1"
                           : "the length of these bytes, less 1");
}

} // namespace

void locateInSafariCache(const PlaceSearch &search, FieldPlaces &places) {
    // Told first, since a damaged page of the tables ends the rest.
    places.derived("CacheFileCreated",
                   "of the cache's own file, as the file system told at the import");
    places.derived("Reference_ID", "number of the entry in the tables");
    const auto row = rowOf(search, kList);
    if (!row)
        throw std::runtime_error(
            fmt::format("table {} has no entry {} any more", kList, search.record.Reference_ID));
    const SourceBytes url = cellBytes(search, search.source, kList, *row, "request_key");
    const std::string raw = decodeText(url.view().raw());
    places.value("URLRawValue", url, 0, url.bytes.size(), raw);
    places.value("URL", url, 0, url.bytes.size(), percentDecode(parseURLFromRawURL(raw)),
                 "the address in it, its percent coding undone");
    placeResponse(search, places);
    placeBody(search, places);
    places.derivedOfAddress();
}

} // namespace nv
