// An SQLite file; of it are read
//   urls   = id url title visit_count last_visit_time hidden
//   visits = url visit_time                                      url names the page's id
// with dates in microseconds since 1601, UTC.
// Versions add columns and tables; the ones above have stayed.

#include "readers/chrome/History.h"

#include "base/Files.h"
#include "readers/chrome/Kinds.h"
#include "readers/sqlite/HistoryRow.h"
#include "readers/sqlite/SqliteReading.h"
#include "readers/sqlite/VisitTable.h"
#include "time/SourceClocks.h"

#include <array>
#include <vector>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"ParserClass.ParseChromeHistoryFile()",
                                  "PARSING CHROME HISTORY FILE", "Google Chrome", "chrome-32.png"};

constexpr std::array<std::string_view, 6> kColumns = {"id",     "url",         "title",
                                                      "hidden", "visit_count", "last_visit_time"};
enum Column : std::size_t { kId, kUrl, kTitle, kHidden, kVisitCount, kLastVisitTime };

constexpr VisitTable::Columns kVisits = {"visits", "url", "visit_time"};

/// Chrome stores 0 for a page without a visit; it is not the year 1601.
Date visitDate(std::optional<std::int64_t> stored) {
    return stored.value_or(0) == 0 ? Date() : ChromeTimeToDate(*stored);
}

URLClass pageRecord(const ReadContext &ctx, const Row &row, Date fileCreated) {
    URLClass record = historyRecord(
        ctx,
        {row.number(kId).value_or(0), row.text(kUrl), row.truth(kHidden), row.number(kVisitCount)},
        kChromeHistory.word, fileCreated);
    record.ActionDateUTC = visitDate(row.number(kLastVisitTime));
    record.LastVisited = record.ActionDateUTC;
    record.ActionDateLocal = UTCDateToLocal(record.ActionDateUTC, ctx.clock);
    record.WebpageTitle = row.text(kTitle);
    return record;
}

/// Counts what the table of visits holds beyond the records. False when cancelled.
bool countVisits(ReadContext &ctx, EvidenceDatabase &database,
                 const std::vector<std::int64_t> &pages, ReadResult &result) {
    VisitTable visits;
    if (!visits.read(database, kVisits, [&ctx](double) { return ctx.task.advance(1); }))
        return false;
    if (visits.isThere() && !visits.loss().empty())
        ctx.log.write({textOf(ctx.file.FullPath) +
                           ": visits that are not stored can't all be counted: " + visits.loss(),
                       std::string(kReader.procedure), Severity::Low, std::string(kNotSerious)});
    for (const std::int64_t page : pages)
        visits.listed(page);
    if (const auto further = visits.furtherVisits())
        result.passedOver["visits of a page other than the last are not stored"] = further;
    if (const auto unlisted = visits.visitsOfUnlistedPages())
        result.passedOver["visits of pages that are no longer listed"] = unlisted;
    return true;
}

ReadResult readPages(ReadContext &ctx, EvidenceDatabase &database) {
    TableCursor cursor(database, "urls", kColumns);
    const Date fileCreated = ctx.evidence.factsOf(ctx.file.FullPath).created;
    std::vector<std::int64_t> pages;
    ReadResult result = eachRow(cursor, ctx, ctx.task, kReader.procedure, [&](const Row &row) {
        URLClass record = pageRecord(ctx, row, fileCreated);
        pages.push_back(record.Reference_ID);
        ctx.sink.save(record);
    });
    // With pages lost it can't be told whose visits are whose.
    if (result.state == ReadState::complete && !countVisits(ctx, database, pages, result))
        result.state = ReadState::cancelled;
    return result;
}

} // namespace

ReadResult ParseChromeHistoryFile(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader,
                          [&ctx](EvidenceDatabase &database) { return readPages(ctx, database); });
}

} // namespace nv
