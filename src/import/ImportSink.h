#pragma once

#include "db/RecordStore.h"
#include "db/WriteBatch.h"
#include "import/AdvancedMetadata.h"
#include "import/Categories.h"
#include "import/ImportSummary.h"
#include "readers/Reader.h"

namespace nv {

/// Where the records of one artefact become rows. All that a record undergoes on its way into the
/// project happens in save(), in one write.
class ImportSink final : public RecordSink {
  public:
    /// All must outlive this. Rows are counted in `result` as they come, so that the count stands
    /// whatever ends the import. Without `metadata` no page is looked into.
    ImportSink(RecordStore &store, const Categories &categories, const Extraction &extraction,
               ContentProbe &content, WriteBatch &batch, const HistoryFile &file,
               ArtefactResult &result, const AdvancedMetadata *metadata = nullptr)
        : m_store(store), m_categories(categories), m_extraction(extraction), m_content(content),
          m_batch(batch), m_file(file), m_result(result), m_metadata(metadata) {}

    void save(URLClass &record) override;

  private:
    void write(URLClass &record, SavedContent &content);
    void dropBody(URLClass &record);

    RecordStore &m_store;
    const Categories &m_categories;
    Extraction m_extraction;
    ContentProbe &m_content;
    WriteBatch &m_batch;
    const HistoryFile &m_file;
    ArtefactResult &m_result;
    const AdvancedMetadata *m_metadata;
};

} // namespace nv
