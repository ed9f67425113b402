// An SQLite file; of it are read by the classic rules
//   moz_places        = id url hidden visit_count
//   moz_historyvisits = place_id visit_date     date in microseconds since 1970, UTC
// Versions add columns and tables; the ones above have stayed. What else is read stands at the head
// of PlacesPages.cpp, PlacesNotes.cpp, PlacesBookmarks.cpp and PlacesDownloads.cpp.

#include "readers/firefox/profile/Places.h"

#include "base/Files.h"
#include "readers/FactSource.h"
#include "readers/ReadingPart.h"
#include "readers/firefox/Kinds.h"
#include "readers/firefox/profile/PlacesBookmarks.h"
#include "readers/firefox/profile/PlacesDownloads.h"
#include "readers/firefox/profile/PlacesNotes.h"
#include "readers/firefox/profile/PlacesPages.h"
#include "readers/firefox/profile/PlacesVisits.h"
#include "readers/sqlite/FurtherTables.h"
#include "readers/sqlite/HistoryRow.h"
#include "readers/sqlite/SchemaVersion.h"
#include "readers/sqlite/SqliteReading.h"
#include "time/SourceClocks.h"

#include <array>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"ParserClass.ParseFirefox3HistoryFile()",
                                  "PARSING FIREFOX3 HISTORY FILE", "Firefox", "firefox-32.png"};

constexpr std::array<std::string_view, 14> kColumns = {"id",
                                                       "url",
                                                       "hidden",
                                                       "visit_count",
                                                       "title",
                                                       "guid",
                                                       "typed",
                                                       "favicon_id",
                                                       "last_visit_date",
                                                       "description",
                                                       "site_name",
                                                       "visit_count_local",
                                                       "visit_count_remote",
                                                       "last_visit_date_local"};
enum Column : std::size_t {
    kId,
    kUrl,
    kHidden,
    kVisitCount,
    kTitle,
    kGuid,
    kTyped,
    kIcon,
    kLastVisit,
    kDescription,
    kSiteName,
    kLocalCount, // Android's
    kRemoteCount,
    kLocalLastVisit
};

/// Parts of the task: where one ends, the next begins.
constexpr double kClassicVisits = 0.3;
constexpr double kVisits = 0.1;
constexpr double kTexts = 0.15;
constexpr double kNotes = 0.2;
constexpr double kPages = 0.6;
constexpr double kVisitRows = 0.9;

constexpr std::int64_t kMicrosecondsPerSecond = 1'000'000;

/// A stored 0 is a date that isn't there.
std::int64_t storedDate(const PlacesPages::Page *page) {
    const auto stored = page && page->first ? PlaceVisit::known(page->first->date) : std::nullopt;
    return stored.value_or(0);
}

Date classicDate(const PlacesPages::Page *page) {
    const std::int64_t stored = storedDate(page);
    return stored == 0 ? Date() : unixSecondsToDate(stored / kMicrosecondsPerSecond);
}

/// Of the seconds the first ten characters count, so a stamp of more gives a date that nothing
/// happened at: no visit was so long before 1970 or will be after 2286.
bool isBeyondTen(const PlacesPages::Page *page) {
    constexpr std::int64_t kMost = 9'999'999'999;
    constexpr std::int64_t kLeast = -999'999'999; // with the sign
    const std::int64_t seconds = storedDate(page) / kMicrosecondsPerSecond;
    return seconds > kMost || seconds < kLeast;
}

constexpr const char *kBeyondTen =
    "page whose stored date has more than ten digits of seconds, of which the first ten count: its "
    "Action Date is that of no visit";

/// Firefox counts no visit of these kinds: a page that was only downloaded, shown in a frame or
/// loaded again has a count of 0 like one that nobody opened.
constexpr const char *kUncounted =
    "page with visits that Firefox doesn't count (a download, a frame, a reload), so \"(autogen)\"";

/// Puts what a further part met behind what the pages' did.
void addTo(ReadResult &result, const ReadResult &further) {
    addLosses(result, further);
    if (further.state == ReadState::cancelled)
        result.state = ReadState::cancelled;
}

/// One reading of the file.
class PlacesReading {
  public:
    PlacesReading(ReadContext &ctx, EvidenceDatabase &database)
        : m_ctx(ctx), m_database(database), m_places(database, "moz_places", kColumns),
          m_fileCreated(ctx.evidence.factsOf(ctx.file.fullPath).created) {}

    ReadResult classicRows();
    ReadResult allRows();

  private:
    bool readVisits(double until);
    bool readTexts();
    ReadResult savePages(double from, double until,
                         const std::function<UrlRecord(const Row &, PlacesPages::Page *)> &make);
    UrlRecord classicRecord(const Row &row, const PlacesPages::Page *page,
                            std::optional<std::int64_t> visitCount) const;
    UrlRecord pageRecord(const Row &row, PlacesPages::Page *page, const PlacesDownloads &downloads);
    UrlRecord androidRecord(const Row &row, const PlacesPages::Page *page) const;
    bool saveFurther(const PlacesDownloads &downloads, ReadResult &further);
    bool countOrigins(ReadResult &further);
    void tellLoss(ReadResult &result) const;

    ReadContext &m_ctx;
    EvidenceDatabase &m_database;
    TableCursor m_places;
    Date m_fileCreated;
    PlacesPages m_pages;
    PlacesNotes m_notes;
};

/// Dates that can't be looked up are no reason to lose the places. The one pass does the work of a
/// look-up for each place, and its failures are logged under that name. False when cancelled.
bool PlacesReading::readVisits(double until) {
    SubTask task(m_ctx.task, 0, until);
    const auto goOn = [&task](double fraction) { return task.advance(fraction); };
    const bool isDone = m_pages.readVisits(m_database, goOn);
    if (isDone && !m_pages.loss().empty())
        m_ctx.log.write({textOf(m_ctx.file.fullPath) + ": " + m_pages.loss(), "ADO.GetDB3Field()",
                         Severity::Warning, std::string(kContactSupport)});
    return isDone;
}

bool PlacesReading::readTexts() {
    SubTask task(m_ctx.task, kVisits, kTexts);
    return m_pages.readTexts(m_database,
                             [&task](double fraction) { return task.advance(fraction); });
}

ReadResult
PlacesReading::savePages(double from, double until,
                         const std::function<UrlRecord(const Row &, PlacesPages::Page *)> &make) {
    SubTask task(m_ctx.task, from, until);
    std::uint64_t uncounted = 0;
    std::uint64_t beyondTen = 0;
    ReadResult result = eachRow(m_places, m_ctx, task, kReader.procedure, [&](const Row &row) {
        PlacesPages::Page *page = m_pages.listed(row.number(kId).value_or(0));
        UrlRecord record = make(row, page);
        PlaceVisit *visit = page ? page->first : nullptr;
        if (record.Visits == 0 && visit)
            ++uncounted;
        if (!m_pages.isAndroid() && isBeyondTen(page))
            ++beyondTen;
        m_ctx.sink.save(record);
        if (visit)
            visit->isTold = true;
    });
    if (uncounted > 0)
        result.noted[kUncounted] = uncounted;
    if (beyondTen > 0)
        result.noted[kBeyondTen] = beyondTen;
    return result;
}

void PlacesReading::tellLoss(ReadResult &result) const {
    if (!m_pages.loss().empty() && result.state != ReadState::cancelled)
        addDamage(result, m_pages.loss() + ", so places may lack their dates");
}

UrlRecord PlacesReading::classicRecord(const Row &row, const PlacesPages::Page *page,
                                       std::optional<std::int64_t> visitCount) const {
    UrlRecord record = historyRecord(
        m_ctx, {row.number(kId).value_or(0), row.text(kUrl), row.truth(kHidden), visitCount},
        kFirefox3History.word, m_fileCreated);
    record.ActionDateUTC = classicDate(page);
    if (record.Visits == 0)
        record.Action.clear();
    return record;
}

ReadResult PlacesReading::classicRows() {
    if (!readVisits(kClassicVisits))
        return {ReadState::cancelled, {}, 0, {}};
    ReadResult result =
        savePages(kClassicVisits, 1, [this](const Row &row, const PlacesPages::Page *page) {
            return classicRecord(row, page, row.number(kVisitCount));
        });
    // With places lost it can't be told whose visits are whose.
    if (result.state == ReadState::complete) {
        if (const auto further = m_pages.furtherVisits())
            result.passedOver["later visits of a page, only the first is stored"] = further;
        if (const auto unlisted = m_pages.visitsOfUnlistedPages())
            result.passedOver["visits of pages that are no longer listed"] = unlisted;
    }
    tellLoss(result);
    return result;
}

/// The classic rules know no files of Android, whose dates and counts they would read wrongly.
UrlRecord PlacesReading::androidRecord(const Row &row, const PlacesPages::Page *page) const {
    std::optional<std::int64_t> visits = row.number(kLocalCount);
    if (const auto remote = row.number(kRemoteCount))
        visits = static_cast<std::int64_t>(static_cast<std::uint64_t>(visits.value_or(0)) +
                                           static_cast<std::uint64_t>(*remote));
    UrlRecord record = classicRecord(row, page, visits);
    record.ActionDateUTC = page && page->first
                               ? mozDate(PlaceVisit::known(page->first->date), m_pages.unit())
                               : Date();
    return record;
}

UrlRecord PlacesReading::pageRecord(const Row &row, PlacesPages::Page *page,
                                    const PlacesDownloads &downloads) {
    UrlRecord record = m_pages.isAndroid() ? androidRecord(row, page)
                                           : classicRecord(row, page, row.number(kVisitCount));
    FactList &facts = record.facts;
    addSource(facts, "moz_places", record.Reference_ID);
    facts.add("title", row.text(kTitle));
    if (page && page->first)
        addVisit(facts, *page->first, m_pages, downloads);
    if (page && page->first)
        facts.add("from_url", std::string(m_pages.referrerOf(*page->first)));
    if (row.truth(kTyped))
        addMozNumber(facts, "typed_count", row.number(kTyped));
    const std::size_t lastVisit = m_pages.isAndroid() ? kLocalLastVisit : kLastVisit;
    addMozDate(facts, "last_visited", row.number(lastVisit), m_pages.unit());
    facts.add("guid", row.text(kGuid));
    facts.add("site_title", row.text(kSiteName));
    facts.add("description", row.text(kDescription));
    if (const auto icon = row.number(kIcon))
        facts.add("icon_url", m_notes.iconOf(*icon));
    m_notes.addTo(facts, record.Reference_ID);
    return record;
}

bool PlacesReading::saveFurther(const PlacesDownloads &downloads, ReadResult &further) {
    ReadingPart visits(m_ctx, {kPages, kVisitRows});
    ReadingPart rest(m_ctx, {kVisitRows, 1});
    return saveVisits(visits.context, m_pages, downloads, m_fileCreated, further) &&
           saveBookmarks(rest.context, m_database, m_pages, m_notes, m_fileCreated, further) &&
           downloads.save(rest.context, m_fileCreated, further);
}

/// Firefox removes a site with its last page. One that is left tells of pages that were taken out
/// by other means.
bool PlacesReading::countOrigins(ReadResult &further) {
    return FurtherTables(m_ctx, m_database, kReader.procedure, further)
        .each("moz_origins", {}, [&](std::int64_t id, const Row &) {
            if (!m_pages.hasPageOf(id))
                ++further.passedOver["site of table moz_origins of which no page is listed"];
        });
}

ReadResult PlacesReading::allRows() {
    const ReadResult cancelled{ReadState::cancelled, {}, 0, {}};
    ReadResult further;
    ReadingPart notes(m_ctx, {kTexts, kNotes});
    if (!readVisits(kVisits) || !readTexts() || !m_notes.read(m_database, notes.context, further))
        return cancelled;
    const PlacesDownloads downloads(m_notes, m_pages);
    ReadResult result = savePages(kNotes, kPages, [&](const Row &row, PlacesPages::Page *page) {
        return pageRecord(row, page, downloads);
    });
    if (result.state == ReadState::cancelled || !saveFurther(downloads, further)) {
        addTo(result, further);
        return result;
    }
    if (result.state == ReadState::complete) {
        m_notes.countUntold(further);
        if (!countOrigins(further))
            further.state = ReadState::cancelled;
    }
    addTo(result, further);
    tellLoss(result);
    return result;
}

ReadResult readAll(ReadContext &ctx) {
    CountingSink sink(ctx.sink);
    ReadContext counted = withSink(ctx, sink);
    return readSqliteFile(counted, kReader, [&](EvidenceDatabase &database) {
        noteSchemaVersion(counted, "places", userVersion(database));
        ReadResult result = PlacesReading(counted, database).allRows();
        if (result.state == ReadState::failed && sink.saved() > 0) // pages, but not all is lost
            result.state = ReadState::cutShort;
        return result;
    });
}

} // namespace

ReadResult parseFirefox3HistoryFile(ReadContext &ctx) {
    if (!ctx.classicOnly)
        return readAll(ctx);
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        return PlacesReading(ctx, database).classicRows();
    });
}

} // namespace nv
