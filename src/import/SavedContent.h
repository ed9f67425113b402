#pragma once

#include "db/records/UrlRecord.h"
#include "readers/CachedBody.h"
#include "readers/ContentProbe.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// The cached content of one record, for all who ask what is in it: found once and read once. Only
/// a file of more than kBodyInMemory bytes is read a second time for its text, since it isn't kept.
/// What couldn't be found or read is tried again by the next who asks.
class SavedContent {
  public:
    /// All must outlive this. Up to `inMemory` bytes of a body that has to be fetched are held in
    /// memory, a larger one in a file that `RunTimeTempFilePath` names.
    SavedContent(UrlRecord &record, const Extraction &extraction, ContentProbe &probe,
                 std::uint64_t inMemory = kBodyInMemory)
        : m_record(record), m_extraction(extraction), m_probe(probe), m_inMemory(inMemory) {}

    // Each throws FileFailure when the content can't be read, and StorageFailure when what was
    // fetched into scratch isn't there any more.

    /// Finds the content. False where there is none, and where it lies in scratch, under a name
    /// that the next record's gets too.
    [[nodiscard]] bool isOutsideScratch();
    /// Null when there is no content.
    const ContentFacts *facts();
    /// Where it lies, or would lie if it weren't in memory; empty when there is none.
    std::filesystem::path file();
    /// That of a page in UTF-8. Throws PageTooLarge for more than kPageTextBytes.
    std::string pageText();
    /// Adds to the record's facts MD5, SHA-1 and SHA-256 of the content, which codings were undone,
    /// and why it may not be the whole of it. Nothing is added where there is no content.
    void addFacts();

  private:
    const Body *body();
    bool isScratch(const Body &found) const;
    const ContentFacts &factsIn(const Body &found);
    void expectScratch(const Body &found) const;
    void inBlocksOf(const Body &found, const std::function<void(std::string_view)> &take);

    UrlRecord &m_record;
    const Extraction &m_extraction;
    ContentProbe &m_probe;
    std::uint64_t m_inMemory;
    bool m_isSought = false;
    std::optional<Body> m_body;
    std::optional<ContentFacts> m_facts; ///< of a body in memory
};

} // namespace nv
