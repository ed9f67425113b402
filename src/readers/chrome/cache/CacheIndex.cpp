#include "readers/chrome/cache/CacheIndex.h"

#include <utility>

namespace nv {

namespace {

constexpr std::uint64_t kTableAt = 0x40;
constexpr std::uint64_t kLaterTableAt = 0x170;
constexpr std::uint64_t kWord = 4;
constexpr std::uint64_t kPart = std::uint64_t{64} << 10; ///< bytes, a multiple of words

} // namespace

ChromeIndexFile::ChromeIndexFile(EvidenceFile file) : m_file(std::move(file)) {
    if (!hasHead())
        return;
    const Bytes head = m_file.read(0, ChromeIndex::kSize);
    m_head = chromeIndexOf(ByteView(head));
}

/// The sizes tell the layouts apart. A longer file may also be one whose count of slots was
/// damaged: there the version has to agree.
bool ChromeIndexFile::isLater() const {
    const std::uint64_t laterSize = kLaterTableAt + m_head.hashTableSize;
    const std::uint32_t major = m_head.version >> 16;
    return size() == laterSize || (size() > laterSize && (major == 2 || major == 3));
}

bool ChromeIndexFile::isOfUnknownVersion() const {
    constexpr std::uint32_t kMagic = 0xC103'CAC3;
    constexpr std::uint32_t kLastMajor = 3;
    return m_head.magic == kMagic && m_head.version >> 16 > kLastMajor;
}

std::uint64_t ChromeIndexFile::wordsThere() const {
    return size() < kTableAt ? 0 : (size() - kTableAt) / kWord;
}

std::uint64_t ChromeIndexFile::placeOf(std::uint64_t slot) {
    return kTableAt + (slot - 1) * kWord;
}

std::uint32_t ChromeIndexFile::word(std::uint64_t slot) {
    const std::uint64_t at = placeOf(slot);
    if (at < m_partAt || at - m_partAt >= m_part.size()) {
        m_part = m_file.read(at, kPart);
        m_partAt = at;
    }
    return ByteView(m_part, m_partAt).u32le(at - m_partAt);
}

} // namespace nv
