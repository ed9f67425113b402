#include "import/ImportSink.h"

#include "db/RecordNames.h"
#include "readers/Scratch.h"

namespace nv {

/// The category is found before the row is written, which so is written once. The row keeps
/// CacheType and extension in the reader's words; the record in memory gets the verdict's.
void ImportSink::save(URLClass &record) {
    orderNames(record);
    // The reader may have found only now which type its file is of.
    m_extraction.source = m_file.HistoryFileType;
    SavedContent content(record, m_extraction, m_content);
    const Verdict verdict = m_categories.verdictOn(record, content);
    record.Category = verdict.Category;
    write(record, content);
    verdict.applyTo(record);
    if (record.URLID == UrlId::none)
        ++m_result.rowsLost;
    else
        ++m_result.rowsSaved;
    dropBody(record);
    m_batch.written();
}

void ImportSink::write(URLClass &record, SavedContent &content) {
    if (!m_metadata)
        return m_store.SaveRecord(record, m_file);
    const PageFindings found = m_metadata->ParseAdvancedMetadata(record, content);
    m_store.SaveRecord(record, m_file);
    m_metadata->store(record, found, m_store);
}

/// A fetched body is of use for this one record, and the next one's gets the same name.
void ImportSink::dropBody(URLClass &record) {
    if (record.RunTimeTempFilePath.empty())
        return;
    scratch::drop(record.RunTimeTempFilePath);
    record.RunTimeTempFilePath.clear();
    m_content.forget();
}

} // namespace nv
