#pragma once

#include "base/Workers.h"
#include "db/hashes/HashLookup.h"
#include "db/records/RecordStore.h"
#include "db/sql/WriteBatch.h"
#include "import/AskedKinds.h"
#include "import/ImportSummary.h"
#include "import/RecordLook.h"
#include "readers/Reader.h"

#include <cstdint>
#include <deque>
#include <future>
#include <memory>

namespace nv {

/// Where the records of one artefact become rows, in their order. All that a record undergoes on
/// its way into the project happens in save(), or beside it on other threads, and then in one
/// write.
class ImportSink final : public RecordSink {
  public:
    /// All must outlive this. Rows are counted in `result` as they come, so that the count stands
    /// whatever ends the import.
    ImportSink(RecordStore &store, const ContentLooks &looks, const Extraction &extraction,
               ContentProbe &content, WriteBatch &batch, const HistoryFile &file,
               ArtefactResult &result)
        : m_store(store), m_looks(looks), m_extraction(extraction), m_content(content),
          m_batch(batch), m_file(file), m_result(result) {}
    /// What wasn't written by then is not.
    ~ImportSink() override;
    ImportSink(const ImportSink &) = delete;
    ImportSink &operator=(const ImportSink &) = delete;

    /// The contents of several records are looked at by these at a time.
    void lookWith(Workers &workers) { m_workers = &workers; }
    /// Content is looked for in these, as far as `looks` has it hashed.
    void lookUpIn(HashLookup *hashSets) { m_hashSets = hashSets; }

    void save(UrlRecord &record) override;
    /// Writes the rows of the records whose contents are still looked at.
    void finish();

  private:
    struct Waiting {
        std::unique_ptr<RecordLook> look;
        std::future<void> isDone; ///< of nobody where it was done at once
    };

    void lookBeside(std::unique_ptr<RecordLook> look);
    bool isFirstDone() const;
    void writeFirst();
    void write(RecordLook &look);
    void count(const UrlRecord &record);
    void dropBody(UrlRecord &record);

    RecordStore &m_store;
    ContentLooks m_looks;
    Extraction m_extraction;
    ContentProbe &m_content;
    WriteBatch &m_batch;
    const HistoryFile &m_file;
    ArtefactResult &m_result;
    Workers *m_workers = nullptr;
    HashLookup *m_hashSets = nullptr;
    std::deque<Waiting> m_waiting; ///< in the order of their rows
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
