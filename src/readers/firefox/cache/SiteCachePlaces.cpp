#include "base/Text.h"
#include "readers/HeaderDate.h"
#include "readers/HttpHeaders.h"
#include "readers/firefox/cache/CachePlaces.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <fmt/format.h>

#include <array>
#include <stdexcept>
#include <string>

namespace nv {

namespace {

constexpr std::string_view kEntries = "entries";

void placeText(std::string_view field, const PlaceSearch &search, std::int64_t row,
               std::string_view column, FieldPlaces &places) {
    const SourceBytes cell = cellBytes(search, search.source, kEntries, row, column);
    places.value(field, cell, 0, cell.bytes.size(), decodeText(cell.view().raw()));
}

/// The address lies in pieces, or whole in tables of earlier versions.
void placeAddress(const PlaceSearch &search, std::int64_t row, FieldPlaces &places) {
    constexpr std::array<std::string_view, 4> kPieces = {
        "request_url", "request_url_no_query", "request_url_query", "request_url_fragment"};
    const auto columns = search.database(search.source).columnsOf(kEntries);
    std::string url;
    std::string names;
    for (const std::string_view column : kPieces) {
        if (!columns.contains(std::string(column)))
            continue;
        const SourceBytes cell = cellBytes(search, search.source, kEntries, row, column);
        if (cell.bytes.empty())
            continue;
        const std::string text = decodeText(cell.view().raw());
        const bool isFragment = column == kPieces.back() && !text.starts_with('#');
        url += (isFragment ? "#" : "") + text;
        names += (names.empty() ? "" : " and ") + std::string(column);
    }
    const SourceBytes cell{"the request's address", search.source,
                           fmt::format("table {}, row {}, column {}", kEntries, row, names), 0,
                           Bytes(url.begin(), url.end())};
    for (const std::string_view field : {"URL", "URLRawValue"})
        places.value(field, cell, 0, url.size(), url,
                     "the pieces of the address, one after the "
                     "other");
}

/// Headers are rows of a table of their own.
void placeHeader(const PlaceSearch &search, std::int64_t entry, const char *name,
                 const std::function<void(const SourceBytes &value)> &take) {
    EvidenceDatabase &database = search.database(search.source);
    if (!database.hasTable("response_headers"))
        return;
    SQLite::Statement header =
        database.prepare("SELECT rowid FROM response_headers WHERE entry_id = ? AND "
                         "lower(name) = ? ORDER BY rowid LIMIT 1");
    header.bind(1, entry);
    header.bind(2, name);
    database.expectOneRow();
    if (header.executeStep())
        take(cellBytes(search, search.source, "response_headers", header.getColumn(0).getInt64(),
                       "value"));
}

} // namespace

void locateInSiteCache(const PlaceSearch &search, FieldPlaces &places) {
    places.derived("CacheFileSize", "bytes of the body once it is unpacked, counted at the import");
    const auto row = factNumber(search.record, "source_rowid");
    if (!row)
        throw std::runtime_error("no row of the cache's tables names the record's file");
    placeAddress(search, *row, places);
    placeHeader(search, *row, "date", [&](const SourceBytes &value) {
        for (const std::string_view field : {"ActionDateUTC", "LastVisited"})
            places.value(field, value, 0, value.bytes.size(), headerDate(value.view().raw()),
                         "the server's header \"Date\", GMT: the browser keeps no date");
    });
    placeHeader(search, *row, "content-type", [&](const SourceBytes &value) {
        const std::string line = fmt::format("content-type: {}\r\n", value.view().raw());
        places.value("MIMEType", value, 0, value.bytes.size(), mimeTypeOf(line),
                     "without what follows \";\"");
        places.value("charset", value, 0, value.bytes.size(), charsetOf(line), "its \"charset\"");
    });
    placeText("http_method", search, *row, "request_method", places);
    placeText("Referrer", search, *row, "request_referrer", places);
    const SourceBytes status = cellBytes(search, search.source, kEntries, *row, "response_status");
    places.value("response_code", status, 0, status.bytes.size(), MadeValue(), "number");
    const SourceBytes body = cellBytes(search, search.source, kEntries, *row, "response_body_id");
    places.value("DataBlockFile", body, 0, body.bytes.size(), MadeValue(),
                 "name of the file in folder \"morgue\"");
    for (const std::string_view field : {"MetaData", "http_headers"})
        places.derived(field, "the rows of table response_headers with this entry's number");
    for (const std::string_view field : {"source_table", "source_rowid", "Reference_ID",
                                         "source_file", "recovered_from", "cache_layout"})
        places.derived(field, "where this program found the entry");
    for (const std::string_view field : {"site_url", "partition", "container"})
        places.derived(field, "by the name of the site's folder");
    places.derived("cache_element", "other columns of the entry's row");
    places.derived("url_chain", "the rows of table response_url_list with this entry's number");
    places.derived("CacheFolderName", "folder of the body's file");
    places.derivedOfAddress();
}

} // namespace nv
