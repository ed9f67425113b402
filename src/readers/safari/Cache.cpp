// An SQLite file; of it are read
//   cfurl_cache_response      = entry_id request_key(URL)
//   cfurl_cache_blob_data     = entry_id response_object receiver_data
//   cfurl_cache_receiver_data = entry_id receiver_data isDataOnFS       in later versions only
// `entry_id` joins them. A body "on FS" is a file of folder "fsCachedData", and receiver_data its
// name. Response objects: CacheResponse.cpp.

#include "readers/safari/Cache.h"

#include "base/Files.h"
#include "base/Succeeds.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/HeldBody.h"
#include "readers/Limits.h"
#include "readers/Scratch.h"
#include "readers/safari/CacheBlobs.h"
#include "readers/safari/CacheResponse.h"
#include "readers/safari/Kinds.h"
#include "readers/sqlite/EvidenceCopy.h"
#include "readers/sqlite/HistoryRow.h"
#include "readers/sqlite/KeptMessage.h"
#include "readers/sqlite/SqliteReading.h"

#include <fmt/format.h>

#include <array>
#include <unordered_set>
#include <utility>

namespace nv {

namespace {

constexpr SqliteReader kReader = {"ParserClass.ParseSafariCacheFile()", "PARSING SAFARI CACHE",
                                  "Safari", "safari-32.png"};
constexpr std::string_view kLookUp = "ADO.GetDB3Field()";
constexpr std::string_view kBodyName = "~safari_body";

constexpr std::array<std::string_view, 2> kColumns = {"entry_id", "request_key"};
enum Column : std::size_t { kEntryId, kRequestKey };

class CacheReading {
  public:
    CacheReading(ReadContext &ctx, EvidenceDatabase &database)
        : m_ctx(ctx), m_database(database), m_cursor(database, "cfurl_cache_response", kColumns),
          m_lookUps(ctx.log, kLookUp, textOf(ctx.file.fullPath)),
          m_fileCreated(ctx.evidence.factsOf(ctx.file.fullPath).created) {}

    ReadResult read() {
        openBlobs();
        ReadResult result = eachRow(m_cursor, m_ctx, m_ctx.task, kReader.procedure,
                                    [this](const Row &row) { saveEntry(row); });
        if (result.state == ReadState::complete && !countOrphans())
            result.state = ReadState::cancelled;
        result.passedOver.merge(m_passedOver);
        if (result.state == ReadState::cancelled)
            return result;
        if (!m_missing.empty())
            addDamage(result, m_missing);
        if (m_lookUps.failed() > 0)
            addDamage(result,
                      fmt::format("{} headers or bodies could not be read", m_lookUps.failed()));
        m_ctx.task.show(step("Complete"));
        return result;
    }

  private:
    /// Without the blobs there are no dates and no bodies, but the URLs are there all the same.
    void openBlobs() {
        KeptMessage failure;
        trapped(failure, Severity::Warning, "", "",
                [this] { m_blobs.emplace(m_database, m_ctx.evidence, m_ctx.file.fullPath); });
        if (!failure.text.empty())
            m_missing = failure.text + ", so dates and bodies are missing";
    }

    void saveEntry(const Row &row) {
        showStep();
        const std::int64_t id = row.number(kEntryId).value_or(0);
        m_entries.insert(id);
        UrlRecord record =
            historyRecord(m_ctx, {.id = id, .url = row.text(kRequestKey), .visitCount = {}},
                          kSafariCache.word, m_fileCreated);
        record.IsHistory = false;
        HeldBody held(m_ctx.content);
        if (m_blobs) {
            const auto place = static_cast<std::uint64_t>(id);
            m_lookUps.attempt(place, [&] { takeResponse(record, m_blobs->response(id)); });
            m_lookUps.attempt(place, [&] { takeBody(record, m_blobs->body(id), held); });
        }
        m_ctx.sink.save(record);
    }

    void showStep() {
        ++m_row;
        if (!m_ctx.task.wantsStep())
            return;
        const auto total = static_cast<std::int64_t>(m_cursor.total().value_or(0));
        TaskStep now = step(fmt::format("Reading URL Blob Data {} of {}", m_row, total));
        now.topCounter = m_row;
        now.topTotal = total;
        m_ctx.task.show(now);
    }

    static TaskStep step(std::string message) {
        TaskStep result;
        result.topMessage = std::move(message);
        return result;
    }

    /// What the project's zone makes of the date is computed when the row is written.
    void takeResponse(UrlRecord &record, const std::optional<ByteView> &object) {
        if (!object || object->empty())
            return;
        const CacheResponse response = readCacheResponse(*object);
        record.MetaData = response.text;
        record.MIMEType = response.contentType;
        record.IsWebPage = containsNoCase(response.contentType, "text/html");
        record.OtherDate = response.lastModified;
        if (response.lastModified.has())
            record.OtherDateMeaning = "Last Modified";
        record.ActionDateUTC = response.date;
        record.LastVisited = response.date;
        countUnread(response);
    }

    void countUnread(const CacheResponse &response) {
        if (response.form == CacheResponse::Form::binary)
            ++m_passedOver["response objects in binary form are not read yet: no date, no type"];
        if (response.form == CacheResponse::Form::unreadable)
            ++m_passedOver["response objects that are no sound property list"];
        if (response.dateIsUnreadable)
            ++m_passedOver["response headers with a date in an unusual form, which is not read"];
    }

    /// The size is the upper bound of the bytes counted from 0, one less than their number, and
    /// what has no size above 0 counts as not there: counts agree with those of earlier cases. A
    /// body of a single byte therefore counts as missing.
    void takeBody(UrlRecord &record, const SafariBody &body, HeldBody &held) {
        const std::uint64_t size = body.size();
        record.CacheFileSize = size == 0 ? 0 : static_cast<std::int64_t>(size - 1);
        record.CacheFileExists = record.CacheFileSize > 0;
        if (size == 1)
            ++m_passedOver["bodies of a single byte count as not there"];
        if (body.fileIsGone)
            ++m_passedOver["bodies in files beside the cache that are not there"];
        if (!record.CacheFileExists)
            return;
        // At hand while the record is saved: fetching it would copy the whole cache.
        BodyTarget target(m_ctx.scratch / kBodyName, kBodyInMemory);
        body.writeTo(target);
        held.take(target.take());
    }

    /// Entries that were taken out of the list while their blobs stayed. False when cancelled.
    bool countOrphans() {
        if (!m_blobs)
            return true;
        TableCursor blobs(m_database, "cfurl_cache_blob_data", std::array{kColumns[kEntryId]});
        std::uint64_t orphans = 0;
        while (blobs.next()) {
            if (!m_ctx.task.advance(1))
                return false;
            if (blobs.isReadable() && !m_entries.contains(blobs.row().number(0).value_or(0)))
                ++orphans;
        }
        if (orphans > 0)
            m_passedOver["headers and bodies whose entry is no longer listed"] = orphans;
        return true;
    }

    ReadContext &m_ctx;
    EvidenceDatabase &m_database;
    TableCursor m_cursor;
    RecordTrap m_lookUps;
    Date m_fileCreated;
    std::optional<CacheBlobs> m_blobs;
    std::string m_missing;
    std::unordered_set<std::int64_t> m_entries;
    std::map<std::string, std::uint64_t> m_passedOver;
    std::int64_t m_row = 0;
};

} // namespace

ReadResult parseSafariCacheFile(ReadContext &ctx) {
    return readSqliteFile(ctx, kReader, [&ctx](EvidenceDatabase &database) {
        return CacheReading(ctx, database).read();
    });
}

bool fetchSafariBody(const UrlRecord &record, const Evidence &evidence, BodyTarget &target) {
    const auto file = evidence.byText(record.HistoryFilePath);
    if (!file || evidence.kindOf(*file) != PlaceKind::file)
        return false;
    const EvidenceCopy copy(evidence, *file, target.file().parent_path());
    EvidenceDatabase database(copy.path(), copy.size());
    CacheBlobs blobs(database, evidence, *file);
    const SafariBody body = blobs.body(record.Reference_ID);
    if (body.size() == 0)
        return false;
    body.writeTo(target);
    return true;
}

} // namespace nv
