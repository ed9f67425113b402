#pragma once

#include "db/HashLookup.h"
#include "db/RecordStore.h"
#include "db/WriteBatch.h"
#include "import/AdvancedMetadata.h"
#include "import/AskedKinds.h"
#include "import/Categories.h"
#include "import/ImportSummary.h"
#include "readers/Reader.h"

#include <cstdint>

namespace nv {

/// Where the records of one artefact become rows. All that a record undergoes on its way into the
/// project happens in save(), in one write.
class ImportSink final : public RecordSink {
  public:
    /// All must outlive this. Rows are counted in `result` as they come, so that the count stands
    /// whatever ends the import. Without `metadata` no page is looked into; with `hashSets` all
    /// content is hashed and looked for in them.
    ImportSink(RecordStore &store, const Categories &categories, const Extraction &extraction,
               ContentProbe &content, WriteBatch &batch, const HistoryFile &file,
               ArtefactResult &result, const AdvancedMetadata *metadata = nullptr,
               HashLookup *hashSets = nullptr)
        : m_store(store), m_categories(categories), m_extraction(extraction), m_content(content),
          m_batch(batch), m_file(file), m_result(result), m_metadata(metadata),
          m_hashSets(hashSets) {}

    void save(UrlRecord &record) override;

  private:
    void write(UrlRecord &record, SavedContent &content);
    bool hashesContent(const UrlRecord &record) const;
    void addContentFacts(UrlRecord &record, SavedContent &content) const;
    void count(const UrlRecord &record);
    void dropBody(UrlRecord &record);

    RecordStore &m_store;
    const Categories &m_categories;
    Extraction m_extraction;
    ContentProbe &m_content;
    WriteBatch &m_batch;
    const HistoryFile &m_file;
    ArtefactResult &m_result;
    const AdvancedMetadata *m_metadata;
    HashLookup *m_hashSets;
};

/// Passes on the records of those kinds that the import was asked for, and counts the others.
class AskedSink final : public RecordSink {
  public:
    /// All must outlive this.
    AskedSink(RecordSink &next, const AskedKinds &asked, const Reader &reader)
        : m_next(next), m_asked(asked), m_reader(reader) {}

    void save(UrlRecord &record) override;
    std::uint64_t notAsked() const { return m_notAsked; }

  private:
    RecordSink &m_next;
    const AskedKinds &m_asked;
    const Reader &m_reader;
    std::uint64_t m_notAsked = 0;
};

} // namespace nv
