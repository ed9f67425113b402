#include "readers/chrome/cache/LaterIndex.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace nv {

namespace {

constexpr std::uint32_t kMagic = 0xC103'CAC3;
constexpr std::uint64_t kTableAt = 0x170;
constexpr std::uint64_t kWord = 4;
constexpr std::uint64_t kPart = std::uint64_t{64} << 10;
constexpr std::uint32_t kUsualSlots = 0x1'0000;
/// 2 to the 28th slots would be an index of 1 GB.
constexpr std::uint64_t kMostSlots = std::uint64_t{1} << 28;

} // namespace

LaterIndexFile::LaterIndexFile(EvidenceFile file) : m_file(std::move(file)) {
    const Bytes head = m_file.read(0, ChromeIndex::kSize);
    if (head.size() == ChromeIndex::kSize)
        m_head = chromeIndexOf(ByteView(head));
}

bool LaterIndexFile::isLater() const {
    constexpr std::uint32_t kNeverTheFirstLayout[] = {0x2'0001, 0x3'0000};
    const std::uint32_t major = m_head.version >> 16;
    if (m_head.magic != kMagic || (major != 2 && major != 3))
        return false;
    return std::ranges::find(kNeverTheFirstLayout, m_head.version) !=
               std::end(kNeverTheFirstLayout) ||
           m_file.size() >= kTableAt + std::uint64_t{slots()} * kWord;
}

bool LaterIndexFile::isOfFirstVersions() const {
    return m_head.magic == kMagic && m_head.version >> 16 == 1;
}

std::string LaterIndexFile::damage() const {
    const std::uint32_t major = m_head.version >> 16;
    if (m_file.size() < ChromeIndex::kSize)
        return fmt::format("the index has {} bytes, its head alone has {}", m_file.size(),
                           ChromeIndex::kSize);
    if (m_head.magic != kMagic)
        return fmt::format("the index begins with {:08X}, {:08X} was expected", m_head.magic,
                           kMagic);
    if (major != 2 && major != 3)
        return fmt::format("the index is of version {}, which isn't known", versionText());
    return {};
}

std::string LaterIndexFile::versionText() const {
    return fmt::format("{}.{}", m_head.version >> 16, m_head.version & 0xFFFF);
}

std::uint32_t LaterIndexFile::slots() const {
    return m_head.addressCount == 0 ? kUsualSlots : m_head.addressCount;
}

std::uint32_t LaterIndexFile::slotsThere() const {
    const std::uint64_t words = m_file.size() < kTableAt ? 0 : (m_file.size() - kTableAt) / kWord;
    return static_cast<std::uint32_t>(std::min({words, std::uint64_t{slots()}, kMostSlots}));
}

/// Tables have a power of two for their length.
std::uint32_t LaterIndexFile::slotOf(std::uint32_t hash) const {
    return hash & (slots() - 1);
}

std::uint64_t LaterIndexFile::placeOf(std::uint32_t slot) {
    return kTableAt + std::uint64_t{slot} * kWord;
}

std::uint32_t LaterIndexFile::word(std::uint32_t slot) {
    const std::uint64_t at = placeOf(slot);
    if (at < m_partAt || at + kWord > m_partAt + m_part.size()) {
        m_part = m_file.read(at, kPart);
        m_partAt = at;
    }
    return ByteView(m_part, m_partAt).u32le(at - m_partAt);
}

} // namespace nv
