#pragma once

#include "readers/firefox/cache/Cache.h"

#include <array>
#include <cstdint>
#include <vector>

namespace nv {

/// Which blocks of a disk cache belong to entries that its map lists.
class MozillaCacheBlocks {
  public:
    /// The cache must be open.
    explicit MozillaCacheBlocks(const MozillaCache &cache);

    /// All blocks of the location; those after the end of their file are left out.
    void own(const CacheRecordInfo &info);
    /// Notes that metadata begin there, which need no second record.
    void begin(const CacheRecordInfo &info);

    bool isOwned(std::int64_t file, std::int64_t block) const;
    bool hasBegun(const CacheRecordInfo &info) const;
    /// Whether none of the location's blocks is a listed entry's, and all are there.
    bool isFree(const CacheRecordInfo &info) const;
    /// How many blocks the file has, as far as locations reach.
    std::int64_t count(std::int64_t file) const;

  private:
    static constexpr std::size_t kFiles = 4; ///< 0 is not used

    std::array<std::vector<bool>, kFiles> m_owned;
    std::array<std::vector<bool>, kFiles> m_begun;
};

} // namespace nv
