// What browsers write beside the fields that are read, numbers big-endian:
//   record = 0x01 length:u16 field*
//   other  = tag:u8 length:u16 value:byte[length]     tag is 0x02 to 0x7F
//   flag   = tag:u8                                   tag is 0x80 or more

#include "readers/opera/CacheGaps.h"

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr std::uint64_t kHead = 3; ///< a tag and a length
constexpr std::uint8_t kRecord = 0x01;
constexpr std::uint8_t kFlag = 0x80;
constexpr std::uint64_t kFirstRecord = 0x0C;
/// The least that a record with a URL takes.
constexpr std::uint64_t kShortestGap = 8;

} // namespace

CacheGaps::CacheGaps(ByteView file, Tell tell) : m_file(file), m_tell(std::move(tell)) {
    if (file.has(kFirstRecord, kHead) && file.u8(kFirstRecord) == kRecord)
        opens(kFirstRecord);
}

void CacheGaps::stepsOver(std::uint64_t at) {
    if (m_gapAt || at < m_otherEnd)
        return;
    comesTo(at);
    if (m_file.u8(at) == kRecord)
        opens(at);
    const std::uint64_t length = lengthOfOther(at);
    if (length == 0)
        m_gapAt = at;
    m_otherAt = at;
    m_otherEnd = at + length;
}

void CacheGaps::takes(const OperaField &field, std::uint64_t at) {
    const bool isUrl = field.tag == OperaTag::url;
    // No URL lies within another field: what looked like one is none.
    if (isUrl && !m_gapAt && at < m_otherEnd)
        m_gapAt = m_otherAt;
    if (isUrl || at >= m_otherEnd) {
        closeGap(at);
        comesTo(at);
        m_otherEnd = at + field.length;
    }
    if (isUrl)
        m_openedAt.reset();
}

void CacheGaps::ends() {
    closeGap(m_file.size());
    comesTo(m_file.size());
    closeRecord(m_file.size());
}

std::uint64_t CacheGaps::lengthAt(std::uint64_t at) const {
    return std::uint64_t{m_file.u8(at + 1)} << 8 | m_file.u8(at + 2);
}

/// 0 where no field of any kind stands.
std::uint64_t CacheGaps::lengthOfOther(std::uint64_t at) const {
    const std::uint8_t tag = m_file.u8(at);
    if (tag >= kFlag)
        return 1;
    if (tag == 0 || !m_file.has(at, kHead))
        return 0;
    if (tag == kRecord)
        return kHead;
    const std::uint64_t value = lengthAt(at);
    const std::uint64_t end = at + kHead + value;
    const bool goesOn = end < m_file.size() && m_file.u8(end) != 0;
    return goesOn || end == m_file.size() ? kHead + value : 0;
}

void CacheGaps::opens(std::uint64_t at) {
    closeRecord(at);
    m_openedAt = at;
    m_recordAt = at;
    m_recordEnd.reset();
    if (const std::uint64_t length = m_file.has(at, kHead) ? lengthAt(at) : 0; length > 0)
        m_recordEnd = at + kHead + length;
}

/// A field that isn't told by its own bytes may be garbage with a length that leads into another
/// record: then the record that it began in doesn't end where it says. Files whose records don't
/// keep their word at all are laid out in another way.
void CacheGaps::comesTo(std::uint64_t at) {
    if (!m_recordEnd || at < *m_recordEnd)
        return;
    const bool keepsItsWord = at == *std::exchange(m_recordEnd, std::nullopt);
    if (!keepsItsWord && m_hasLengths) {
        m_tell(m_recordAt, at);
        m_openedAt.reset();
    }
    m_hasLengths |= keepsItsWord;
}

/// Bytes too few for a record are not worth a word, such as an end mark's.
void CacheGaps::closeGap(std::uint64_t end) {
    if (!m_gapAt)
        return;
    const std::uint64_t from = *std::exchange(m_gapAt, std::nullopt);
    if (end - from < kShortestGap)
        return;
    m_tell(from, end);
    m_openedAt.reset();
    m_recordEnd.reset();
}

void CacheGaps::closeRecord(std::uint64_t end) {
    if (m_openedAt && end - *m_openedAt >= kShortestGap)
        m_tell(*m_openedAt, end);
    m_openedAt.reset();
}

} // namespace nv
