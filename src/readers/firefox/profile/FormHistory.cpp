// An SQLite file; of it are read
//   moz_formhistory         = fieldname value timesUsed firstUsed lastUsed guid
//   moz_deleted_formhistory = timeDeleted guid
//   moz_history_to_sources  = history_id source_id       moz_sources = id source
// with dates in microseconds since 1970, UTC. The first versions had field and value only.

#include "readers/firefox/profile/FormHistory.h"

#include "readers/firefox/Kinds.h"
#include "readers/firefox/ProfileValues.h"
#include "readers/sqlite/FurtherTables.h"
#include "readers/sqlite/SchemaVersion.h"
#include "readers/sqlite/SqliteReading.h"

#include <array>
#include <unordered_map>
#include <vector>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"FormHistory.parseFirefoxFormsFile()",
                                  "PARSING FIREFOX FORM HISTORY FILE", "Mozilla Firefox",
                                  "firefox-32.png"};
constexpr const char *kTable = "moz_formhistory";
constexpr const char *kDeletedTable = "moz_deleted_formhistory";
constexpr std::array<std::string_view, 6> kColumns = {"fieldname", "value",    "timesUsed",
                                                      "firstUsed", "lastUsed", "guid"};
enum Column : std::size_t { kField, kValue, kCount, kFirst, kLast, kGuid };

/// The field of the browser's own search box.
constexpr const char *kSearchBox = "searchbar-history";

/// Engines that a value of the search box was sent to, by the value's row.
using Engines = std::unordered_map<std::int64_t, std::vector<std::string>>;

bool readEngines(EvidenceDatabase &database, ReadContext &ctx, Engines &engines,
                 ReadResult &result) {
    constexpr std::array<std::string_view, 1> kSource = {"source"};
    constexpr std::array<std::string_view, 2> kJoin = {"history_id", "source_id"};
    std::unordered_map<std::int64_t, std::string> names;
    FurtherTables tables(ctx, database, kReader.procedure, result);
    return tables.each("moz_sources", kSource, [&](std::int64_t id, const Row &row) {
        names[id] = row.text(0);
    }) && tables.eachByKey("moz_history_to_sources", kJoin, [&](std::int64_t, const Row &row) {
        engines[row.number(0).value_or(0)].push_back(names[row.number(1).value_or(0)]);
    });
}

UrlRecord valueRecord(const ReadContext &ctx, std::int64_t id, const Row &row, Date fileCreated) {
    const std::string field = row.text(kField);
    const bool isSearch = field == kSearchBox;
    UrlRecord record =
        profileRecord(ctx, kFirefoxFormValue, isSearch ? "Searched" : "Typed", {}, fileCreated);
    addSource(record, kTable, id);
    record.Status = ctx.deleted ? "Deleted" : "";
    record.URLFileName = field;
    record.MetaData = row.text(kValue);
    record.ActionDateUTC = mozDate(row.number(kLast), MozUnit::microseconds);
    record.OtherDate = mozDate(row.number(kFirst), MozUnit::microseconds);
    if (record.OtherDate.has())
        record.OtherDateMeaning = "First Used";
    record.facts.add("field_name", field);
    record.facts.add("field_value", record.MetaData);
    if (isSearch)
        record.facts.add("search_term", record.MetaData);
    addMozNumber(record.facts, "count", row.number(kCount));
    addMozDate(record.facts, "first_used", row.number(kFirst), MozUnit::microseconds);
    addMozDate(record.facts, "last_used", row.number(kLast), MozUnit::microseconds);
    record.facts.add("guid", row.text(kGuid));
    return record;
}

/// Of a removed value the browser keeps when that was, to tell its other devices.
bool saveDeleted(EvidenceDatabase &database, ReadContext &ctx, Date fileCreated,
                 ReadResult &result) {
    constexpr std::array<std::string_view, 2> kGone = {"timeDeleted", "guid"};
    return FurtherTables(ctx, database, kReader.procedure, result)
        .each(kDeletedTable, kGone, [&](std::int64_t id, const Row &row) {
            UrlRecord record = profileRecord(ctx, kFirefoxFormValue, "Deleted", {}, fileCreated);
            addSource(record, kDeletedTable, id);
            record.Status = "Deleted";
            record.ActionDateUTC = mozDate(row.number(0), MozUnit::microseconds);
            record.facts.add("guid", row.text(1));
            ctx.sink.save(record);
        });
}

ReadResult readForms(ReadContext &ctx, EvidenceDatabase &database) {
    const Date fileCreated = ctx.evidence.factsOf(ctx.file.fullPath).created;
    noteSchemaVersion(ctx, "formhistory", userVersion(database));
    ReadResult further;
    Engines engines;
    if (!readEngines(database, ctx, engines, further))
        return further;
    ReadResult result = mainRows(
        database, kTable, kColumns, ctx, kReader.procedure, [&](std::int64_t id, const Row &row) {
            UrlRecord record = valueRecord(ctx, id, row, fileCreated);
            if (const auto found = engines.find(id); found != engines.end())
                for (const std::string &engine : found->second)
                    record.facts.add("search_engine", engine);
            ctx.sink.save(record);
        });
    addLosses(result, further);
    if (result.state != ReadState::cancelled && result.state != ReadState::failed)
        static_cast<void>(saveDeleted(database, ctx, fileCreated, result));
    return result;
}

} // namespace

ReadResult parseFirefoxFormsFile(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader,
                          [&ctx](EvidenceDatabase &database) { return readForms(ctx, database); });
}

} // namespace nv
