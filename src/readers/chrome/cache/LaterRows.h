#pragma once

#include "readers/Reader.h"
#include "readers/chrome/cache/LaterEntry.h"
#include "readers/chrome/cache/LaterSparse.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <unordered_set>

namespace nv {

/// The records of a block cache of versions 2 and 3.
class LaterRows {
  public:
    /// All must outlive this.
    LaterRows(ReadContext &ctx, const std::filesystem::path &folder, LaterEntries &entries,
              ReadResult &result)
        : m_ctx(ctx), m_folder(folder), m_blocks(entries.blocks()), m_entries(entries),
          m_result(result) {}

    // These throw EvidenceFailure.

    /// A remnant when `foundHow` isn't empty. `find` leads to the pieces of one that has some.
    void save(const LaterEntry &entry, std::string_view foundHow, const LaterSparse::FindKey &find);
    /// The body or the head of an entry that is gone, or a long key.
    void saveSeparateFile(const std::filesystem::path &file);

    /// Tells once of an address in a block file that isn't there.
    void tellMissing(const ChromeAddressMap &map);
    /// Whether a saved record has the piece at that address.
    bool isJoined(std::uint32_t piece) const { return m_joined.contains(piece); }
    std::int64_t count() const { return m_count; }

  private:
    void take(UrlRecord &record);
    void addUse(UrlRecord &record, const LaterEntry &entry);
    void addDoubts(UrlRecord &record, const LaterEntry &entry);
    bool holdsAll(const LaterStream &body);
    void addPieces(UrlRecord &record, const LaterEntry &entry, const LaterSparse::FindKey &find);

    ReadContext &m_ctx;
    const std::filesystem::path &m_folder;
    ChromeBlockFiles &m_blocks;
    LaterEntries &m_entries;
    ReadResult &m_result;
    std::unordered_set<std::uint32_t> m_joined;
    std::int64_t m_count = 0;
};

/// Adds to the reasons why a result is cut short.
void addReason(ReadResult &result, const std::string &reason);
/// The same unless it is among them.
void addReasonOnce(ReadResult &result, const std::string &reason);

} // namespace nv
