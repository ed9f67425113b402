#pragma once

#include "readers/Reader.h"
#include "readers/chrome/cache/LaterEntry.h"
#include "readers/chrome/cache/LaterIndex.h"

#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace nv {

class BodyTarget;

/// The entry of that key, by the chain of its slot. Throws EvidenceFailure.
std::optional<LaterEntry> laterEntryOfKey(LaterIndexFile &index, LaterEntries &entries,
                                          const std::string &key);

/// Pieces by their keys, where no index can be trusted to lead to them.
class LaterStrays {
  public:
    void add(const LaterEntry &piece);
    /// Of several of one key the one that was made last. Throws EvidenceFailure.
    std::optional<LaterEntry> find(LaterEntries &entries, const std::string &key) const;

  private:
    std::unordered_map<std::uint32_t, std::vector<std::uint32_t>> m_byHash; ///< addresses
};

/// Whether the record's body is made of pieces.
bool isInPieces(const UrlRecord &record);

/// The body of such a record, its pieces one after the other.
bool fetchLaterPieces(const UrlRecord &record, const Evidence &evidence, BodyTarget &target);

} // namespace nv
