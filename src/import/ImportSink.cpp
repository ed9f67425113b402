#include "import/ImportSink.h"

#include "base/Trap.h"
#include "db/records/RecordNames.h"
#include "readers/Scratch.h"

#include <chrono>
#include <string_view>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kLooking = "ImportForm.FindInHashSets()";

/// Records whose rows wait for those before them. Each may hold kBodyInMemory.
constexpr std::size_t kMostWaiting = 16;
/// Handing on a smaller body takes as long as looking at it. In bytes.
constexpr std::int64_t kSmallBody = 4096;

} // namespace

ImportSink::~ImportSink() {
    for (const Waiting &each : m_waiting)
        if (each.isDone.valid())
            m_workers->waitFor(each.isDone);
}

void ImportSink::save(UrlRecord &record) {
    orderNames(record);
    // The reader may have found only now which type its file is of.
    m_extraction.source = m_file.historyFileType;
    auto look = std::make_unique<RecordLook>(std::move(record), m_extraction, m_content, m_looks);
    if (m_workers && look->mayRunBeside()) {
        record = look->record;
        return lookBeside(std::move(look));
    }
    finish();
    look->look();
    write(*look);
    record = std::move(look->record);
}

void ImportSink::lookBeside(std::unique_ptr<RecordLook> look) {
    std::future<void> isDone;
    if (look->record.CacheFileSize < kSmallBody)
        look->look();
    else
        isDone = m_workers->start([look = look.get()] { look->look(); });
    m_waiting.push_back({std::move(look), std::move(isDone)});
    while (m_waiting.size() > kMostWaiting || isFirstDone())
        writeFirst();
}

bool ImportSink::isFirstDone() const {
    if (m_waiting.empty())
        return false;
    const std::future<void> &isDone = m_waiting.front().isDone;
    return !isDone.valid() || isDone.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
}

void ImportSink::finish() {
    while (!m_waiting.empty())
        writeFirst();
}

void ImportSink::writeFirst() {
    Waiting first = std::move(m_waiting.front());
    m_waiting.pop_front();
    if (first.isDone.valid()) {
        m_workers->waitFor(first.isDone);
        first.isDone.get();
    }
    write(*first.look);
}

/// The row keeps CacheType and extension in the reader's words; the record in memory gets the
/// verdict's.
void ImportSink::write(RecordLook &look) {
    look.tell();
    UrlRecord &record = look.record;
    if (m_hashSets)
        trapped(m_extraction.log, Severity::Warning, kLooking, kContactSupport,
                [this, &record] { m_hashSets->addFindings(record.facts); });
    m_store.saveRecord(record, m_file);
    AdvancedMetadata(m_extraction.log).store(record, look.page, m_store);
    count(record);
    look.verdict.applyTo(record);
    dropBody(record);
    m_batch.written();
}

void ImportSink::count(const UrlRecord &record) {
    if (record.URLID == UrlId::none) {
        ++m_result.rowsLost;
        return;
    }
    ++m_result.rowsSaved;
    m_result.byKind[record.cacheType].count(record.ActionDateUTC);
}

/// A fetched body is of use for this one record, and the next one's gets the same name.
void ImportSink::dropBody(UrlRecord &record) {
    if (record.RunTimeTempFilePath.empty())
        return;
    scratch::drop(record.RunTimeTempFilePath);
    record.RunTimeTempFilePath.clear();
}

void AskedSink::save(UrlRecord &record) {
    if (m_asked.wants(m_reader, record.cacheType))
        m_next.save(record);
    else
        ++m_notAsked;
}

} // namespace nv
