// top_sites  = url url_rank title
// thumbnails = url url_rank title redirects last_updated     until 2018
// with dates in microseconds since 1601, UTC. Ranks count from 0; -1 is a page that was given.

#include "readers/chrome/history/TopSites.h"

#include "base/Text.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/history/HistoryBeside.h"
#include "readers/chrome/shared/MetaTable.h"
#include "readers/chrome/shared/ProfileRow.h"
#include "readers/chrome/shared/StoredDate.h"
#include "readers/sqlite/SchemaVersion.h"
#include "readers/sqlite/SqliteReading.h"

#include <array>
#include <limits>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"ParserClass.ParseChromeTopSitesFile()",
                                  "PARSING CHROME TOP SITES FILE", "Google Chrome",
                                  "chrome-32.png"};

constexpr auto kColumns =
    std::to_array<std::string_view>({"url", "url_rank", "title", "last_updated", "redirects"});
enum Column : std::size_t { kUrl, kRank, kTitle, kUpdated, kRedirects };

void addRank(FactList &facts, const Row &row) {
    const auto rank = row.number(kRank);
    if (rank && *rank >= 0 && *rank < std::numeric_limits<std::int64_t>::max())
        facts.add("rank", *rank + 1, *rank);
    else if (rank)
        facts.add("rank", "none", *rank);
}

UrlRecord siteRecord(const ReadContext &ctx, const ProfileRow &site, const Row &row,
                     Date fileCreated) {
    UrlRecord record = profileRecord(ctx, site, kChromeTopSite.word, fileCreated);
    addRank(record.facts, row);
    const std::string redirects = row.text(kRedirects);
    if (const auto hops = split(redirects, ' '); hops.size() > 1)
        for (const std::string_view hop : hops)
            record.facts.add("url_chain", std::string(hop));
    record.OtherDate = chromeDate(row.number(kUpdated));
    if (record.OtherDate.has())
        record.OtherDateMeaning = "Thumbnail Updated (UTC)";
    addChromeDate(record.facts, "last_updated", row.number(kUpdated));
    return record;
}

ReadResult readSites(ReadContext &ctx, EvidenceDatabase &database, std::string_view table) {
    HistoryBeside history(ctx, kReader.procedure);
    const Date fileCreated = ctx.evidence.factsOf(ctx.file.fullPath).created;
    TableCursor cursor(database, table, kColumns);
    ReadResult result = eachRow(cursor, ctx, ctx.task, kReader.procedure, [&](const Row &row) {
        const std::string url = row.text(kUrl);
        if (history.holds(url))
            return;
        UrlRecord record =
            siteRecord(ctx, {table, cursor.rowId(), url, row.text(kTitle)}, row, fileCreated);
        ctx.sink.save(record);
    });
    history.note(result);
    return result;
}

} // namespace

ReadResult parseChromeTopSitesFile(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        noteSchemaVersion(ctx, "Top Sites", schemaVersion(ctx, database));
        const bool isOld = !database.hasTable("top_sites") && database.hasTable("thumbnails");
        return readSites(ctx, database, isOld ? "thumbnails" : "top_sites");
    });
}

} // namespace nv
