#pragma once

#include "readers/EvidenceFile.h"
#include "readers/chrome/cache/CacheRecords.h"

#include <cstdint>

namespace nv {

/// The open file "index" with its table of addresses, of which a part is held at a time: a table
/// as long as the file says would fill the memory.
class ChromeIndexFile {
  public:
    /// Throws EvidenceFailure.
    explicit ChromeIndexFile(EvidenceFile file);

    std::uint64_t size() const { return m_file.size(); }
    bool hasHead() const { return size() >= ChromeIndex::kSize; }
    /// All zeros without hasHead().
    const ChromeIndex &head() const { return m_head; }
    /// The block cache of later versions, whose entries are made otherwise.
    bool isLater() const;
    /// An index by its first bytes, of a version above those that are known.
    bool isOfUnknownVersion() const;
    /// Whole words from the start of the table to the end of the file.
    std::uint64_t wordsThere() const;
    /// `slot` is 1-based and not above wordsThere(). Throws EvidenceFailure.
    std::uint32_t word(std::uint64_t slot);

    /// Where the slot's word stands in the file.
    static std::uint64_t placeOf(std::uint64_t slot);

  private:
    EvidenceFile m_file;
    ChromeIndex m_head;
    Bytes m_part;
    std::uint64_t m_partAt = 0;
};

} // namespace nv
