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
    m_batch.written();
}

} // namespace nv
