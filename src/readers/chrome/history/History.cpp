// An SQLite file. By the classic rules are read of it
//   urls   = id url title visit_count last_visit_time hidden
//   visits = url visit_time                                      url names the page's id
// with dates in microseconds since 1601, UTC, and otherwise what WholeHistory.h tells.
// Versions add columns and tables; the ones above have stayed.

#include "readers/chrome/history/History.h"

#include "base/Files.h"
#include "readers/chrome/Kinds.h"
#include "readers/chrome/history/WholeHistory.h"
#include "readers/chrome/shared/StoredDate.h"
#include "readers/sqlite/HistoryRow.h"
#include "readers/sqlite/SqliteReading.h"
#include "readers/sqlite/VisitTable.h"
#include "time/SourceClocks.h"

#include <array>
#include <functional>
#include <vector>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"ParserClass.ParseChromeHistoryFile()",
                                  "PARSING CHROME HISTORY FILE", "Google Chrome", "chrome-32.png"};

constexpr std::array<std::string_view, 7> kColumns = {
    "id", "url", "title", "hidden", "visit_count", "last_visit_time", "typed_count"};
enum Column : std::size_t { kId, kUrl, kTitle, kHidden, kVisitCount, kLastVisitTime, kTyped };

constexpr VisitTable::Columns kVisits = {"visits", "url"};

UrlRecord pageRecord(const ReadContext &ctx, const Row &row, Date fileCreated) {
    UrlRecord record = historyRecord(
        ctx,
        {row.number(kId).value_or(0), row.text(kUrl), row.truth(kHidden), row.number(kVisitCount)},
        kChromeHistory.word, fileCreated);
    const auto lastVisit = row.number(kLastVisitTime);
    record.ActionDateUTC = ctx.classicOnly ? chromeDate(lastVisit) : chromeMoment(lastVisit);
    record.LastVisited = record.ActionDateUTC;
    record.ActionDateLocal = utcDateToLocal(record.ActionDateUTC, ctx.clock);
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
        ctx.log.write({textOf(ctx.file.fullPath) +
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

/// A record for each page, which `see` gets before it is saved.
ReadResult readPages(ReadContext &ctx, EvidenceDatabase &database,
                     const std::function<void(UrlRecord &record, std::int64_t typed)> &see) {
    TableCursor cursor(database, "urls", kColumns);
    const Date fileCreated = ctx.evidence.factsOf(ctx.file.fullPath).created;
    return eachRow(cursor, ctx, ctx.task, kReader.procedure, [&](const Row &row) {
        UrlRecord record = pageRecord(ctx, row, fileCreated);
        see(record, row.number(kTyped).value_or(0));
        ctx.sink.save(record);
    });
}

ReadResult readClassicRows(ReadContext &ctx, EvidenceDatabase &database) {
    std::vector<std::int64_t> pages;
    ReadResult result = readPages(ctx, database, [&pages](const UrlRecord &record, std::int64_t) {
        pages.push_back(record.Reference_ID);
    });
    // With pages lost it can't be told whose visits are whose.
    if (result.state == ReadState::complete && !countVisits(ctx, database, pages, result))
        result.state = ReadState::cancelled;
    return result;
}

} // namespace

ReadResult parseChromeHistoryFile(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        if (ctx.classicOnly)
            return readClassicRows(ctx, database);
        return readWholeHistory(ctx, database, kReader.procedure,
                                [&database](ReadContext &part, const auto &addFacts) {
                                    return readPages(part, database, addFacts);
                                });
    });
}

} // namespace nv
