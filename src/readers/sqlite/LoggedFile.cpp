#include "readers/sqlite/LoggedFile.h"

#include <algorithm>

namespace nv {

namespace {

constexpr std::uint64_t kLogHead = 32;
constexpr std::uint64_t kFrameHead = 24;
constexpr std::uint64_t kSalts = 8;          ///< bytes of both
constexpr std::uint32_t kMagic = 0x377F0682; ///< the lowest bit says how its sums are made

} // namespace

LoggedFile::LoggedFile(const ByteSource &file, const ByteSource *log)
    : m_file(file), m_log(log), m_size(file.size()) {
    if (m_log)
        readLog(*m_log);
}

/// Frames of an earlier turn, with other salts, are left behind those of this one.
void LoggedFile::readLog(const ByteSource &log) {
    const Bytes head = log.read(0, kLogHead);
    const ByteView view(head);
    if (head.size() < kLogHead || (view.u32be(0) & ~1U) != kMagic)
        return;
    const std::uint64_t pageSize = view.u32be(8);
    if (pageSize < 512 || pageSize > 65536)
        return;
    m_pageSize = pageSize;
    std::map<std::uint64_t, std::uint64_t> pages;
    for (std::uint64_t at = kLogHead; at + kFrameHead + pageSize <= log.size();
         at += kFrameHead + pageSize) {
        const Bytes bytes = log.read(at, kFrameHead);
        const ByteView frame(bytes);
        if (bytes.size() < kFrameHead || frame.sub(8, kSalts).raw() != view.sub(16, kSalts).raw())
            return;
        pages[frame.u32be(0)] = at + kFrameHead;
        if (const std::uint64_t after = frame.u32be(4); after > 0) {
            m_pages = pages;
            m_size = after * pageSize;
        }
    }
}

LoggedFile::Place LoggedFile::placeOf(std::uint64_t offset) const {
    const auto found = m_pageSize == 0 ? m_pages.end() : m_pages.find(offset / m_pageSize + 1);
    if (found == m_pages.end())
        return {&m_file, offset};
    return {m_log, found->second + offset % m_pageSize};
}

Bytes LoggedFile::read(std::uint64_t offset, std::uint64_t count) const {
    if (m_pages.empty())
        return m_file.read(offset, count);
    Bytes all;
    count = offset < m_size ? std::min(count, m_size - offset) : 0;
    while (count > 0) {
        const std::uint64_t part = std::min(count, m_pageSize - offset % m_pageSize);
        const Place place = placeOf(offset);
        const Bytes bytes = place.file->read(place.offset, part);
        all.insert(all.end(), bytes.begin(), bytes.end());
        if (bytes.size() < part)
            break;
        offset += part;
        count -= part;
    }
    return all;
}

} // namespace nv
