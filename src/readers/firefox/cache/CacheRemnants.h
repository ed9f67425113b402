#pragma once

#include "base/TaskMonitor.h"
#include "readers/firefox/cache/CacheBlocks.h"

#include <cstdint>
#include <functional>
#include <string>

namespace nv {

/// Metadata in a block file that no bucket of the map leads to.
struct CacheRemnant {
    CacheRecordInfo info; ///< as many blocks as the metadata need
    CacheRecordMetaData metaData;
    std::string foundHow;
};

/// Looks for metadata at the start of every block of the open block files. They have no signature
/// of their own: what begins with the map's version is taken when its lengths fit into four blocks
/// and its key is an address with its closing zero.
class CacheRemnantWalk {
  public:
    using Take = std::function<void(const CacheRemnant &remnant)>;

    /// `version` is the map's. Both must outlive the walk.
    CacheRemnantWalk(const MozillaCache &cache, const MozillaCacheBlocks &blocks,
                     std::int64_t version)
        : m_cache(cache), m_blocks(blocks), m_version(version) {}

    /// In the order of the files. What stands within the blocks of a listed entry is that entry's,
    /// and only counted. False when cancelled; throws EvidenceFailure.
    bool run(TaskMonitor &task, double from, const Take &take, ReadResult &result);

  private:
    bool runFile(std::int64_t number, const std::function<bool(double)> &advance, const Take &take,
                 ReadResult &result);
    void tryBlock(const CacheRecordInfo &info, const Take &take, ReadResult &result);
    bool cutToOwnBlocks(CacheRemnant &remnant) const;

    const MozillaCache &m_cache;
    const MozillaCacheBlocks &m_blocks;
    std::int64_t m_version;
};

} // namespace nv
