#pragma once

#include "base/Trap.h"
#include "readers/firefox/cache/CacheBlocks.h"
#include "readers/firefox/cache/CacheRemnants.h"

#include <cstdint>
#include <string_view>
#include <unordered_set>

namespace nv {

/// What a disk cache holds beyond its classic rows: entries that the map lists and the classic
/// rules pass over, of the kind of the others, and what the map doesn't list any more.
class CacheFurther {
  public:
    /// The cache was read with `listsFurther`. All must outlive this.
    CacheFurther(ReadContext &ctx, MozillaCache &cache, std::string_view procedure);

    /// Saves the records after the classic ones. `from` is how much of the task is done. False when
    /// cancelled; throws EvidenceFailure.
    bool run(double from, ReadResult &result);

  private:
    bool walkRemnants(double from, ReadResult &result);
    void ownListed();
    void saveListed(const FurtherBucket &entry, ReadResult &result);
    void saveUnlisted(const FurtherBucket &entry, ReadResult &result);
    void saveRemnant(const CacheRemnant &remnant);
    UrlRecord recordOf(CacheRecord record);
    std::string_view bodyOf(const FurtherBucket &entry) const;

    ReadContext &m_ctx;
    MozillaCache &m_cache;
    MozillaCacheBlocks m_blocks;
    RecordTrap m_records;
    RecordTrap m_searches;
    std::unordered_set<std::int64_t> m_hashes; ///< of listed entries
};

/// Adds what the metadata of an entry tell and a classic record has no column for.
void addCacheFacts(UrlRecord &url, const CacheRecordMetaData &metaData);

} // namespace nv
