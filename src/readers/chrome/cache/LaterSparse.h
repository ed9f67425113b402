#pragma once

#include "readers/chrome/cache/LaterEntry.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace nv {

/// A stretch of a sparse entry's body: bytes of the body of one of its pieces.
struct LaterStretch {
    std::uint64_t offset = 0; ///< in the whole
    LaterStream piece;
    std::uint64_t at = 0; ///< in the piece
    std::uint64_t size = 0;
};

/// The body of an entry that was loaded in ranges. Its third stream says which pieces of 1 MiB
/// there are, each an entry of its own, and theirs which blocks of 1 KiB:
///   map = signature:u64 magic:u32 length:u32 lastBlock:i32 lastSize:i32 ...@64 bit*
class LaterSparse {
  public:
    using FindKey = std::function<std::optional<LaterEntry>(const std::string &key)>;

    /// Throws EvidenceFailure.
    LaterSparse(LaterEntries &entries, const LaterEntry &parent, const FindKey &find);

    const std::vector<LaterStretch> &stretches() const { return m_stretches; }
    /// Their addresses.
    const std::vector<std::uint32_t> &pieces() const { return m_pieces; }
    std::uint64_t missingPieces() const { return m_missing; }
    std::uint64_t size() const; ///< of all stretches, in bytes

  private:
    void addPiece(LaterEntries &entries, const LaterEntry &piece, std::uint64_t number);

    std::vector<LaterStretch> m_stretches;
    std::vector<std::uint32_t> m_pieces;
    std::uint64_t m_missing = 0;
};

} // namespace nv
