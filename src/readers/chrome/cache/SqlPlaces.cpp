#include "readers/chrome/cache/CachePlaces.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <fmt/format.h>

#include <cstdlib>
#include <stdexcept>
#include <string>

namespace nv {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view kTable = "resources";

/// A number of the row, as text says it.
void placeNumber(std::string_view field, const SourceBytes &cell, SourceForm form,
                 FieldPlaces &places) {
    const std::int64_t number =
        std::strtoll(std::string(cell.bytes.begin(), cell.bytes.end()).c_str(), nullptr, 10);
    places.value(field, cell, 0, cell.bytes.size(),
                 form == SourceForm::number ? MadeValue(number) : MadeValue(dateOf(form, number)),
                 std::string(wordsOf(form, number)));
}

/// A body lies in pieces, each a row.
void placeSize(const PlaceSearch &search, const fs::path &file, std::int64_t id,
               FieldPlaces &places) {
    EvidenceDatabase &database = search.database(file);
    if (!database.hasTable("blobs"))
        return;
    SQLite::Statement pieces =
        database.prepare("SELECT rowid, \"start\", \"end\" FROM blobs WHERE res_id = ? "
                         "ORDER BY \"start\"");
    pieces.bind(1, id);
    std::string rows;
    std::string stored;
    std::int64_t size = 0;
    database.expectOneRow();
    while (pieces.executeStep()) {
        const std::int64_t from = pieces.getColumn(1).getInt64();
        const std::int64_t end = pieces.getColumn(2).getInt64();
        size += end < from ? 0 : end - from;
        rows += fmt::format("{}{}", rows.empty() ? "" : ", ", pieces.getColumn(0).getInt64());
        stored += fmt::format("{}{} to {}", stored.empty() ? "" : ", ", from, end);
        database.expectOneRow();
    }
    if (rows.empty())
        return places.derived("CacheFileSize", "no row of table blobs has the entry's number");
    const SourceBytes cell{"the body's pieces", file,
                           fmt::format("table blobs, row {}, columns start and end", rows), 0,
                           Bytes(stored.begin(), stored.end())};
    places.value("CacheFileSize", cell, 0, stored.size(), size, "sum of end less start");
}

} // namespace

void locateInSqlCache(const PlaceSearch &search, FieldPlaces &places) {
    const fs::path file = ownFile(search);
    if (factWords(search.record, "recovered_from").starts_with("page "))
        throw std::runtime_error(fmt::format(
            "the row lies in {}: no query reaches it there, and its bytes may be parts of rows",
            factWords(search.record, "recovered_from")));
    const std::int64_t row = factNumber(search.record, "source_rowid").value_or(0);
    if (row == 0) { // pieces of a body without their entry
        placeSize(search, file, search.record.Reference_ID, places);
        return placeChromeRest(places);
    }
    const SourceBytes key = cellBytes(search, file, kTable, row, "cache_key");
    placeChromeKey(key, places);
    placeChromeHead(cellBytes(search, file, kTable, row, "head"), key.view().raw(), places);
    placeNumber("last_used", cellBytes(search, file, kTable, row, "last_used"),
                SourceForm::chromeTime, places);
    placeSize(search, file, row, places);
    placeChromeRest(places);
}

} // namespace nv
