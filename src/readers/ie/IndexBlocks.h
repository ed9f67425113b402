#pragma once

#include "base/ByteView.h"
#include "readers/ie/HashChain.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <vector>

namespace nv {

/// Tables and records begin at multiples of it and have whole ones.
inline constexpr std::uint64_t kIndexBlock = 0x80;

/// Signatures of records that may stand outside of the hash, as the browser writes them.
inline constexpr std::array<std::string_view, 3> kLooseSignatures = {"URL ", "LEAK", "REDR"};

/// Which of kLooseSignatures stands at `at`; empty for none.
std::string_view looseSignatureAt(ByteView file, std::uint64_t at);

/// Whose the blocks of an index are.
class IndexBlocks {
  public:
    /// `chains` are all that are known of the file.
    IndexBlocks(ByteView file, std::initializer_list<const HashChain *> chains);

    /// Whether a hash entry leads to a record at this offset, a multiple of the block.
    bool isListed(std::uint64_t offset) const { return m_listed[offset / kIndexBlock]; }
    /// Whether the block belongs to a hash table or to a record that a hash entry leads to.
    bool isOwned(std::uint64_t offset) const { return m_owned[offset / kIndexBlock]; }
    /// Whether the index's own map has the block as in use; nothing where it doesn't say.
    std::optional<bool> isAllocated(std::uint64_t offset) const;

  private:
    void mark(const HashTable &table);
    void own(std::uint64_t offset, std::uint64_t bytes);
    void settle();

    ByteView m_file;
    std::vector<bool> m_listed;
    std::vector<bool> m_owned;
    std::vector<std::uint32_t> m_ends; ///< by first block: the block after the last one
};

} // namespace nv
