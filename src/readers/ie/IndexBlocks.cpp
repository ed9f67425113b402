#include "readers/ie/IndexBlocks.h"

#include <algorithm>

namespace nv {

namespace {

// The browser's map of blocks: a bit a block, the lowest bit first, for the blocks after the head.
constexpr std::uint64_t kMap = 0x250;
constexpr std::uint64_t kFirstBlock = 0x4000;
constexpr std::uint64_t kVersion = 0x18;

constexpr std::uint64_t kLengthInBlocks = 4;

} // namespace

std::string_view looseSignatureAt(ByteView file, std::uint64_t at) {
    if (!file.has(at, 4))
        return {};
    const auto *known = std::ranges::find(kLooseSignatures, file.sub(at, 4).raw());
    return known == kLooseSignatures.end() ? std::string_view() : *known;
}

IndexBlocks::IndexBlocks(ByteView file, std::initializer_list<const HashChain *> chains)
    : m_file(file), m_listed(file.size() / kIndexBlock + 1), m_owned(m_listed.size()),
      m_ends(m_listed.size()) {
    for (const HashChain *chain : chains) {
        for (const HashTable &table : chain->tables)
            mark(table);
        for (const HashTable &table : chain->behindCap)
            mark(table);
    }
    settle();
}

void IndexBlocks::mark(const HashTable &table) {
    own(table.fileOffset, static_cast<std::uint64_t>(std::max<std::int64_t>(table.tableSize, 0)));
    for (std::int64_t i = 0; i < table.recordCount; ++i) {
        if (!m_file.has(placeOfEntry(table, i), 8))
            return;
        const HashEntry entry = hashEntry(m_file, table, i);
        const std::uint64_t offset = entry.recordOffset;
        if (!entry.isUsed() || !m_file.has(offset, kLengthInBlocks + 4))
            continue;
        if (offset % kIndexBlock == 0)
            m_listed[offset / kIndexBlock] = true;
        if (!looseSignatureAt(m_file, offset).empty() || m_file.sub(offset, 4).raw() == "FILE")
            own(offset, m_file.u32le(offset + kLengthInBlocks) * kIndexBlock);
    }
}

void IndexBlocks::own(std::uint64_t offset, std::uint64_t bytes) {
    const std::uint64_t end = std::min<std::uint64_t>(offset + bytes, m_file.size());
    std::uint32_t &known = m_ends[offset / kIndexBlock];
    known = std::max(known, static_cast<std::uint32_t>((end + kIndexBlock - 1) / kIndexBlock));
}

/// One pass over all blocks, however long the records claim to be.
void IndexBlocks::settle() {
    std::uint64_t reach = 0;
    for (std::size_t block = 0; block < m_owned.size(); ++block) {
        reach = std::max<std::uint64_t>(reach, m_ends[block]);
        m_owned[block] = block < reach;
    }
    m_ends = {};
}

std::optional<bool> IndexBlocks::isAllocated(std::uint64_t offset) const {
    if (offset < kFirstBlock || !m_file.has(kVersion, 1) || m_file.u8(kVersion) != '5')
        return std::nullopt; // earlier versions keep it otherwise
    const std::uint64_t block = (offset - kFirstBlock) / kIndexBlock;
    const std::uint64_t at = kMap + block / 8;
    if (at >= kFirstBlock || !m_file.has(at, 1))
        return std::nullopt;
    return (m_file.u8(at) >> (block % 8) & 1) != 0;
}

} // namespace nv
