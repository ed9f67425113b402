#include "import/ImportSink.h"

#include "db/RecordNames.h"
#include "readers/Scratch.h"

namespace nv {

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

void ImportSink::write(UrlRecord &record, SavedContent &content) {
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
