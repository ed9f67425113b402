#include "readers/firefox/cache/CacheParse.h"

#include "base/Files.h"
#include "base/Text.h"
#include "base/Trap.h"
#include "readers/WholeFile.h"
#include "readers/firefox/cache/Cache.h"
#include "readers/firefox/cache/CacheFurther.h"
#include "readers/firefox/cache/CacheRecord.h"

#include <fmt/format.h>

#include <map>
#include <stdexcept>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ParserClass.ParseFirefoxCache()";

/// Reading the map is this part of the task.
constexpr double kShareOfMap = 0.1;
/// With it and the classic records this part is done, when all of the cache is read.
constexpr double kShareOfClassic = 0.8;

class CacheReading {
  public:
    explicit CacheReading(ReadContext &ctx)
        : m_ctx(ctx), m_path(textOf(ctx.file.fullPath)), m_cache(ctx.log),
          m_records(ctx.log, kProcedure, m_path), m_doubts(ctx.log, kProcedure, m_path) {}

    ReadResult run() {
        m_cache.listsFurther = !m_ctx.classicOnly;
        if (!openFirefoxCache(m_cache, m_ctx.file.fullPath, m_ctx.evidence, m_ctx.log))
            return {ReadState::failed, "could not be opened: " + m_path, 0, {}};
        if (!m_cache.readCache(m_ctx.file, m_ctx.task, m_result)) {
            m_result.state = m_cache.isLaterVersion ? ReadState::notReadYet : ReadState::failed;
            noteLoss(m_cache.cacheError);
        } else if (m_result.state != ReadState::cancelled) {
            readRecords();
        }
        return m_result;
    }

  private:
    void readRecords() {
        if (m_result.state == ReadState::cutShort)
            noteLoss(std::exchange(m_result.reason, {}));
        const auto count = static_cast<std::int64_t>(m_cache.cacheRecords.count());
        m_ctx.task.describe({"PARSING MOZILLA FIREFOX CACHE",
                             fmt::format("A total of {} URLs were found.", count),
                             {},
                             "firefox-32.gif"});
        for (std::int64_t i = 1; i <= count; ++i) {
            if (!m_ctx.task.advance(fractionOf(i, count))) {
                m_result.state = ReadState::cancelled;
                break;
            }
            readRecord(i, count);
        }
        if (!m_ctx.classicOnly && m_result.state != ReadState::cancelled &&
            !CacheFurther(m_ctx, m_cache, kProcedure).run(kShareOfClassic, m_result))
            m_result.state = ReadState::cancelled;
        countLosses();
        if (m_result.state != ReadState::cancelled && m_ctx.task.wantsStep())
            m_ctx.task.show({"All done.", count, count, {}, 0, 0});
    }

    double fractionOf(std::int64_t i, std::int64_t count) const {
        const double share = (m_ctx.classicOnly ? 1 : kShareOfClassic) - kShareOfMap;
        return kShareOfMap + share * static_cast<double>(i) / static_cast<double>(count);
    }

    void readRecord(std::int64_t i, std::int64_t count) {
        CacheRecord record = m_cache.cacheRecords.item(static_cast<std::size_t>(i));
        const std::int64_t blockFile = record.bucketMetaData.cacheBlockFileNumber;
        if (!m_cache.getFileHandle(blockFile)) {
            ++m_missing[blockFile];
            return;
        }
        const auto place = static_cast<std::uint64_t>(record.bucket.fileOffset);
        const bool stored = m_records.run(place, [&] {
            record.recordMetaData = m_cache.getRecordMetaData(record.bucketMetaData);
            auto url = parseFirefoxCacheURL(record, m_ctx.file, m_ctx.evidence, m_ctx.clock);
            show(i, count, url->URL);
            if (!m_ctx.classicOnly)
                addCacheFacts(*url, *record.recordMetaData);
            m_ctx.sink.save(*url);
        });
        if (stored)
            noteDoubt(place, doubtOn(record));
    }

    void noteDoubt(std::uint64_t place, const std::string &doubt) {
        if (doubt.empty())
            return;
        ++m_result.noted[doubt];
        // The trap gives the line its form, and their number an end.
        m_doubts.attempt(place, [&doubt] { throw std::runtime_error("stored from " + doubt); });
    }

    void show(std::int64_t i, std::int64_t count, const std::string &url) {
        if (m_ctx.task.wantsStep())
            m_ctx.task.show({fmt::format("Record {} of {}", i, count), i, count, url, 0, 0});
    }

    void countLosses() {
        if (m_records.failed() > 0)
            m_result.passedOver["damaged record"] += m_records.failed();
        for (const auto &[blockFile, entries] : m_missing) {
            m_result.notReached += entries;
            if (m_result.state == ReadState::complete)
                m_result.state = ReadState::cutShort;
            noteLoss(fmt::format("{} entries have their metadata in {}, which can't be read",
                                 entries, blockFileName(blockFile)));
        }
    }

    void noteLoss(const std::string &reason) {
        const std::string text = fmt::format("{}: {}", m_path, reason);
        m_ctx.log.write(
            {text, std::string(kProcedure), Severity::Warning, std::string(kContactSupport)});
        m_result.reason += (m_result.reason.empty() ? "" : "; ") + text;
    }

    ReadContext &m_ctx;
    std::string m_path;
    MozillaCache m_cache;
    RecordTrap m_records;
    RecordTrap m_doubts; ///< of records that are stored
    ReadResult m_result;
    std::map<std::int64_t, std::uint64_t> m_missing; ///< entries by block file
};

} // namespace

ReadResult parseFirefoxCache(ReadContext &ctx) {
    return trapped(ctx.log, Severity::Warning, kProcedure, kContactSupport, unreadable(ctx),
                   [&ctx] { return CacheReading(ctx).run(); });
}

} // namespace nv
