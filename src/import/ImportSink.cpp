#include "import/ImportSink.h"

#include "base/Trap.h"
#include "db/RecordNames.h"
#include "readers/Scratch.h"

#include <algorithm>
#include <string_view>

namespace nv {

namespace {

constexpr std::string_view kProcedure = "ImportForm.HashContent()";
constexpr std::string_view kLooking = "ImportForm.FindInHashSets()";

} // namespace

/// The category is found before the row is written, which so is written once. The row keeps
/// CacheType and extension in the reader's words; the record in memory gets the verdict's.
void ImportSink::save(UrlRecord &record) {
    orderNames(record);
    // The reader may have found only now which type its file is of.
    m_extraction.source = m_file.historyFileType;
    SavedContent content(record, m_extraction, m_content);
    const Verdict verdict = m_categories.verdictOn(record, content);
    record.Category = verdict.category;
    write(record, content);
    count(record);
    verdict.applyTo(record);
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

void AskedSink::save(UrlRecord &record) {
    if (m_asked.wants(m_reader, record.cacheType))
        m_next.save(record);
    else
        ++m_notAsked;
}

/// That of the caches of today's browsers. Classic ones have rows by the ten thousand whose bodies
/// nobody else reads while they are imported, so theirs only for hash sets.
bool ImportSink::hashesContent(const UrlRecord &record) const {
    const auto isLayout = [](const RecordFact &fact) { return fact.name == "cache_layout"; };
    return record.CacheFileExists && (m_hashSets || std::ranges::any_of(record.facts, isLayout));
}

void ImportSink::addContentFacts(UrlRecord &record, SavedContent &content) const {
    if (hashesContent(record))
        trapped(m_extraction.log, Severity::Warning, kProcedure, kContactSupport,
                [&content] { content.addFacts(); });
    if (m_hashSets)
        trapped(m_extraction.log, Severity::Warning, kLooking, kContactSupport,
                [this, &record] { m_hashSets->addFindings(record.facts); });
}

void ImportSink::write(UrlRecord &record, SavedContent &content) {
    addContentFacts(record, content);
    if (!m_metadata)
        return m_store.saveRecord(record, m_file);
    const PageFindings found = m_metadata->parseAdvancedMetadata(record, content);
    m_store.saveRecord(record, m_file);
    m_metadata->store(record, found, m_store);
}

/// A fetched body is of use for this one record, and the next one's gets the same name.
void ImportSink::dropBody(UrlRecord &record) {
    if (record.RunTimeTempFilePath.empty())
        return;
    scratch::drop(record.RunTimeTempFilePath);
    record.RunTimeTempFilePath.clear();
    m_content.forget();
}

} // namespace nv
