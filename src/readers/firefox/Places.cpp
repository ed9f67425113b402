// An SQLite file; of it are read
//   moz_places        = id url hidden visit_count
//   moz_historyvisits = place_id visit_date     date in microseconds since 1970, UTC
// Versions add columns and tables; the ones above have stayed.

#include "readers/firefox/Places.h"

#include "base/Files.h"
#include "readers/firefox/Kinds.h"
#include "readers/sqlite/HistoryRow.h"
#include "readers/sqlite/SqliteReading.h"
#include "readers/sqlite/VisitTable.h"
#include "time/SourceClocks.h"

#include <array>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"ParserClass.ParseFirefox3HistoryFile()",
                                  "PARSING FIREFOX3 HISTORY FILE", "Firefox", "firefox-32.png"};

constexpr std::array<std::string_view, 4> kColumns = {"id", "url", "hidden", "visit_count"};
enum Column : std::size_t { kId, kUrl, kHidden, kVisitCount };

constexpr VisitTable::Columns kVisits = {"moz_historyvisits", "place_id", "visit_date"};

/// The part of the task that the table of visits takes.
constexpr double kVisitsShare = 0.3;

/// A stored 0 is a date that isn't there.
Date visitDate(const VisitTable::Page *page) {
    constexpr std::int64_t kMicrosecondsPerSecond = 1'000'000;
    if (!page || page->firstDate.value_or(0) == 0)
        return {};
    return UnixSecondsToDate(*page->firstDate / kMicrosecondsPerSecond);
}

/// Firefox counts no visit of these kinds: a page that was only downloaded, shown in a frame or
/// loaded again has a count of 0 like one that nobody opened.
constexpr const char *kUncounted =
    "page with visits that Firefox doesn't count (a download, a frame, a reload), so \"(autogen)\"";

URLClass placeRecord(const ReadContext &ctx, const Row &row, VisitTable &visits, Date fileCreated) {
    URLClass record = historyRecord(
        ctx,
        {row.number(kId).value_or(0), row.text(kUrl), row.truth(kHidden), row.number(kVisitCount)},
        kFirefox3History.word, fileCreated);
    record.ActionDateUTC = visitDate(visits.listed(record.Reference_ID));
    if (record.Visits == 0)
        record.Action.clear();
    return record;
}

/// Dates that can't be looked up are no reason to lose the places. The one pass does the work of a
/// look-up for each place, and its failures are logged under that name. False when cancelled.
bool readVisits(ReadContext &ctx, EvidenceDatabase &database, VisitTable &visits) {
    SubTask task(ctx.task, 0, kVisitsShare);
    const auto goOn = [&task](double fraction) { return task.advance(fraction); };
    const bool isDone = visits.read(database, kVisits, goOn);
    if (isDone && !visits.loss().empty())
        ctx.log.write({textOf(ctx.file.FullPath) + ": " + visits.loss(), "ADO.GetDB3Field()",
                       Severity::Warning, std::string(kContactSupport)});
    return isDone;
}

void countVisits(ReadResult &result, const VisitTable &visits) {
    if (const auto further = visits.furtherVisits())
        result.passedOver["later visits of a page, only the first is stored"] = further;
    if (const auto unlisted = visits.visitsOfUnlistedPages())
        result.passedOver["visits of pages that are no longer listed"] = unlisted;
}

ReadResult readPlaces(ReadContext &ctx, EvidenceDatabase &database) {
    TableCursor cursor(database, "moz_places", kColumns);
    VisitTable visits;
    if (!readVisits(ctx, database, visits))
        return {ReadState::cancelled, {}, 0, {}};
    const Date fileCreated = ctx.evidence.factsOf(ctx.file.FullPath).created;
    SubTask task(ctx.task, kVisitsShare, 1);
    std::uint64_t uncounted = 0;
    ReadResult result = eachRow(cursor, ctx, task, kReader.procedure, [&](const Row &row) {
        URLClass record = placeRecord(ctx, row, visits, fileCreated);
        if (record.Visits == 0 && visits.listed(record.Reference_ID))
            ++uncounted;
        ctx.sink.save(record);
    });
    if (uncounted > 0)
        result.noted[kUncounted] = uncounted;
    // With places lost it can't be told whose visits are whose.
    if (result.state == ReadState::complete)
        countVisits(result, visits);
    if (!visits.loss().empty() && result.state != ReadState::cancelled)
        addDamage(result, visits.loss() + ", so places may lack their dates");
    return result;
}

} // namespace

ReadResult ParseFirefox3HistoryFile(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader,
                          [&ctx](EvidenceDatabase &database) { return readPlaces(ctx, database); });
}

} // namespace nv
