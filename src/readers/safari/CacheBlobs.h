#pragma once

#include "base/ByteView.h"
#include "readers/Body.h"
#include "readers/Evidence.h"
#include "readers/sqlite/EvidenceDatabase.h"
#include "readers/sqlite/RowLookup.h"

#include <cstdint>
#include <filesystem>
#include <optional>

namespace nv {

/// Where a Safari cache keeps a body: in a table, or in a file of folder "fsCachedData" beside it.
struct SafariBody {
    std::optional<ByteView> bytes;
    std::optional<std::filesystem::path> file;
    const Evidence *evidence = nullptr; ///< which opens the file
    bool fileIsGone = false;            ///< it was kept in a file that isn't there

    /// In bytes.
    std::uint64_t size() const;
    /// Throws EvidenceFailure when its file can't be read.
    void writeTo(BodyTarget &target) const;
};

/// What the tables beside the list of a Safari cache hold of an entry, in the layout of any
/// version. Header and body are looked up apart: damage to a body, which is spread over many pages,
/// so costs no header. All that is handed in must outlive it.
class CacheBlobs {
  public:
    /// `file` is the cache in the evidence. Throws EvidenceDamage when its table is not there.
    CacheBlobs(EvidenceDatabase &database, const Evidence &evidence,
               const std::filesystem::path &file);

    // Bytes live until the next look-up of the same kind. Both throw EvidenceDamage where a table
    // can't be read.

    /// Nothing when there is no response object.
    std::optional<ByteView> response(std::int64_t entryId);
    /// Of size 0 when there is none.
    SafariBody body(std::int64_t entryId);

  private:
    SafariBody bodyIn(const Row &row) const;

    const Evidence &m_evidence;
    std::filesystem::path m_folder;
    RowLookup m_responses;
    RowLookup m_bodies;
    std::optional<RowLookup> m_laterBodies; ///< a table of their own, which later versions have
};

} // namespace nv
