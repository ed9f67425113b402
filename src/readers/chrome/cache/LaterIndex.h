#pragma once

#include "readers/EvidenceFile.h"
#include "readers/chrome/cache/CacheRecords.h"

#include <cstdint>
#include <optional>
#include <string>

namespace nv {

/// The file "index" of a block cache of version 2 or 3, of whose table a part is held at a time.
///   index = magic:u32 version:u32 ... slots:u32@28 ... address:u32{slots}@368
/// 0 slots stand for 65,536.
class LaterIndexFile {
  public:
    /// Throws EvidenceFailure.
    explicit LaterIndexFile(EvidenceFile file);

    /// Whether its table is where these versions have it. Version 2.0 is the first layout's
    /// too: its length tells them apart.
    bool isLater() const;
    /// Whether its head tells of the first layout, whose versions begin with 1.
    bool isOfFirstVersions() const;
    /// Why its table can't be trusted; empty when it can.
    std::string damage() const;
    std::string versionText() const; ///< "3.0"
    std::uint32_t slots() const;     ///< by its head
    std::uint32_t slotsThere() const;
    /// The slot for a key with that hash.
    std::uint32_t slotOf(std::uint32_t hash) const;
    /// From 0; below slotsThere(). Throws EvidenceFailure.
    std::uint32_t word(std::uint32_t slot);
    static std::uint64_t placeOf(std::uint32_t slot);
    const std::filesystem::path &path() const { return m_file.path(); }

  private:
    EvidenceFile m_file;
    ChromeIndex m_head;
    Bytes m_part;
    std::uint64_t m_partAt = 0;
};

} // namespace nv
