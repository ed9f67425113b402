#include "import/ImportSink.h"

#include "db/RecordNames.h"

namespace nv {

/// The category is found before the row is written, which so is written once. The row keeps
/// CacheType and extension in the reader's words; the record in memory gets the verdict's.
void ImportSink::save(URLClass &record) {
    orderNames(record);
    const Verdict verdict = m_categories.verdictOn(record);
    record.Category = verdict.Category;
    m_store.SaveRecord(record, m_file);
    verdict.applyTo(record);
    if (record.URLID == UrlId::none)
        ++m_result.rowsLost;
    else
        ++m_result.rowsSaved;
    dropBody(record);
    m_batch.written();
}

/// A fetched body is of use for this one record, and the next one's gets the same name.
void ImportSink::dropBody(URLClass &record) {
    if (record.RunTimeTempFilePath.empty())
        return;
    std::error_code ignored;
    std::filesystem::remove(record.RunTimeTempFilePath, ignored);
    record.RunTimeTempFilePath.clear();
    m_content.forget();
}

} // namespace nv
