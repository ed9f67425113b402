// An SQLite file; of it is read
//   moz_downloads = name source target tempPath startTime endTime state referrer entityID currBytes
//                   maxBytes mimeType guid
// with dates in microseconds since 1970, UTC.

#include "readers/firefox/profile/DownloadsFile.h"

#include "readers/firefox/Kinds.h"
#include "readers/firefox/ProfileValues.h"
#include "readers/sqlite/SqliteReading.h"

#include <array>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"DownloadsFile.parseFirefoxDownloadsFile()",
                                  "PARSING FIREFOX DOWNLOADS FILE", "Mozilla Firefox",
                                  "firefox-32.png"};
constexpr const char *kTable = "moz_downloads";
constexpr std::array<std::string_view, 12> kColumns = {
    "source",   "target",    "tempPath", "startTime", "endTime",  "state",
    "referrer", "currBytes", "maxBytes", "mimeType",  "entityID", "guid"};
enum Column : std::size_t {
    kSource,
    kTarget,
    kTemp,
    kStart,
    kEnd,
    kState,
    kReferrer,
    kReceived,
    kTotal,
    kType,
    kEntity,
    kGuid
};

constexpr auto kStates = std::to_array<MozWord>({{-1, "not started"},
                                                 {0, "in progress"},
                                                 {1, "complete"},
                                                 {2, "failed"},
                                                 {3, "cancelled"},
                                                 {4, "paused"},
                                                 {5, "queued"},
                                                 {6, "blocked by parental controls"},
                                                 {7, "being scanned"},
                                                 {8, "blocked as dangerous"},
                                                 {9, "blocked by policy"}});

void addFacts(FactList &facts, std::int64_t id, const Row &row) {
    facts.add("download_id", id);
    facts.add("download_guid", row.text(kGuid));
    facts.add("target_path", pathOfFileUrl(row.text(kTarget)), row.text(kTarget));
    facts.add("current_path", row.text(kTemp));
    addMozDate(facts, "start_time", row.number(kStart), MozUnit::microseconds);
    addMozDate(facts, "end_time", row.number(kEnd), MozUnit::microseconds);
    addMozNumber(facts, "received_bytes", row.number(kReceived));
    if (row.number(kTotal).value_or(-1) >= 0) // the server didn't tell
        addMozNumber(facts, "total_bytes", row.number(kTotal));
    addMozWord(facts, "download_state", kStates, row.number(kState));
    facts.add("etag", row.text(kEntity));
}

UrlRecord downloadRecord(const ReadContext &ctx, const Row &row, Date fileCreated) {
    UrlRecord record =
        profileRecord(ctx, kFirefoxDownload, "Downloaded", row.text(kSource), fileCreated);
    record.ActionDateUTC = mozDate(row.number(kStart), MozUnit::microseconds);
    record.OtherDate = mozDate(row.number(kEnd), MozUnit::microseconds);
    if (record.OtherDate.has())
        record.OtherDateMeaning = "End Time";
    record.Referrer = row.text(kReferrer);
    record.MIMEType = row.text(kType);
    if (const std::string state = mozWord(kStates, row.number(kState));
        !state.empty() && !ctx.deleted)
        record.Status = state;
    return record;
}

} // namespace

ReadResult parseFirefoxDownloadsFile(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        const Date fileCreated = ctx.evidence.factsOf(ctx.file.fullPath).created;
        return mainRows(database, kTable, kColumns, ctx, kReader.procedure,
                        [&](std::int64_t id, const Row &row) {
                            UrlRecord record = downloadRecord(ctx, row, fileCreated);
                            addSource(record, kTable, id);
                            addFacts(record.facts, id, row);
                            ctx.sink.save(record);
                        });
    });
}

} // namespace nv
