// The cache file of Internet Explorer for Macintosh, numbers big-endian, offsets from its start:
//   file  = ?[4] first:u32@4 ?[24] size:u32@2C ... block*     the first block lies at `first`
//   block = tag[4] length:u32 value[length]
//   entry = "NTRY" ("URL " | "BSRL" | "MIME" | "HNTT" | "HVRS" | "POST" | "DATA")* "CATE"
//   CATE  = ?[8] entry:u32@10 first:u32@14 last:u32@18 ?[4] size:u32@20
// The offsets within CATE are from its tag; `first` and `last` are dates of visits. After the body
// in DATA comes the filler "XXXX" and a block "cate", which is no "CATE".

#include "readers/mac/CacheFile.h"

#include "base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <string_view>
#include <utility>

namespace nv {

namespace {

constexpr std::uint64_t kFirstBlock = 4;
constexpr std::uint64_t kFileSize = 0x2C;
constexpr std::uint64_t kHeader = 0x30;
constexpr std::uint64_t kBlockHead = 8;

constexpr std::uint64_t kRecordOffset = 0x10;

constexpr std::string_view kMarker = "XXXXcate";
/// The marker's place is counted from 1, so that this leads to its "cate".
constexpr std::uint64_t kBehindMarker = 3;

constexpr std::int64_t kSeconds1904To1970 = 2082862800; // and five hours

std::uint32_t number(ByteView file, std::uint64_t at) {
    const Bytes reversed = reverseBytes(byteSlice(file, at, 4));
    return ByteView(reversed).u32le(0);
}

Date stampAt(ByteView file, std::uint64_t at) {
    return macStampToDate(number(file, at));
}

std::string textIn(ByteView value) {
    return fromAnsi(value.untilZero(0));
}

std::uint64_t entriesIn(ByteView file) {
    constexpr std::string_view kEntry = "NTRY";
    std::uint64_t count = 0;
    for (auto place = file.find(kEntry); place; place = file.find(kEntry, *place + kEntry.size()))
        ++count;
    return count;
}

struct Block {
    std::uint64_t at;
    std::string_view tag;
    ByteView value;

    std::uint64_t valueAt() const { return at + kBlockHead; }
    std::uint64_t end() const { return valueAt() + value.size(); }
};

/// One walk along the blocks.
class BlockWalk {
  public:
    BlockWalk(ByteView file, MacCacheEntries &urls, const MacCacheFile::TakeURL &take)
        : m_file(file), m_urls(urls), m_take(take) {}

    ReadResult run(TaskMonitor &task);

  private:
    std::optional<Block> blockHere();
    std::uint64_t handle(const Block &block);
    void open(const Block &block);
    void noteUnended();
    std::uint64_t bodyEnd(const Block &block);
    void close(const Block &block);
    void endAt(std::string_view what);

    ByteView m_file;
    MacCacheEntries &m_urls;
    const MacCacheFile::TakeURL &m_take;
    std::uint64_t m_at = 0;
    MacCacheEntry m_url;                 ///< the entry in hand
    std::optional<std::size_t> m_marker; ///< the last one found; none when no more are there
    bool m_soughtMarker = false;
    ReadResult m_result;
};

ReadResult BlockWalk::run(TaskMonitor &task) {
    m_at = number(m_file, kFirstBlock);
    if (m_at > m_file.size())
        endAt("the first block");
    while (m_result.state == ReadState::complete && m_at < m_file.size()) {
        if (!task.advance(static_cast<double>(m_at) / static_cast<double>(m_file.size())))
            m_result.state = ReadState::cancelled;
        else if (const auto block = blockHere())
            m_at = handle(*block);
    }
    if (m_result.state != ReadState::cancelled)
        noteUnended();
    return std::move(m_result);
}

std::optional<Block> BlockWalk::blockHere() {
    if (m_file.has(m_at, kBlockHead)) {
        const std::uint32_t length = number(m_file, m_at + 4);
        if (m_file.has(m_at + kBlockHead, length))
            return Block{m_at, m_file.sub(m_at, 4).raw(), m_file.sub(m_at + kBlockHead, length)};
    }
    const std::string_view rest = m_file.from(m_at).raw();
    if (rest.size() < kBlockHead && rest.find_first_not_of('\0') == std::string_view::npos)
        m_at = m_file.size(); // padding
    else
        endAt("the block");
    return std::nullopt;
}

/// No block is sought after one that leads out of the file.
void BlockWalk::endAt(std::string_view what) {
    m_result.state = ReadState::cutShort;
    m_result.reason = fmt::format("{} at {} leads out of the {} bytes", what, m_at, m_file.size());
    if (m_at < m_file.size())
        m_result.notReached = entriesIn(m_file.from(m_at));
}

/// Where the next block is.
std::uint64_t BlockWalk::handle(const Block &block) {
    if (block.tag == "NTRY" || m_url.recordOffset == 0)
        open(block);
    if (block.tag == "URL ") {
        noteUnended();
        m_url.url = textIn(block.value);
        m_url.urlOffset = block.valueAt();
    } else if (block.tag == "BSRL") {
        m_url.bSrl = textIn(block.value);
    } else if (block.tag == "MIME") {
        m_url.mime = textIn(block.value);
        m_url.mimeOffset = block.valueAt();
    } else if (block.tag == "HNTT") {
        m_url.hntt = textIn(block.value);
    } else if (block.tag == "HVRS") {
        m_url.hvrs = block.value.has(0, 4) ? std::to_string(number(block.value, 0)) : "";
        m_url.fetchCount = 1;
    } else if (block.tag == "DATA") {
        return bodyEnd(block);
    } else if (block.tag == "CATE") {
        close(block);
    }
    return block.end();
}

/// An entry begins anew: what another one left open doesn't belong to it.
void BlockWalk::open(const Block &block) {
    noteUnended();
    m_url = {};
    m_url.recordOffset = block.at;
}

void BlockWalk::noteUnended() {
    if (m_url.urlOffset != 0)
        ++m_result.passedOver["entry without its end"];
}

/// A body's length isn't trusted: the marker after it tells where the next block is. Entries that
/// stand before a marker of another one's are passed over with it.
std::uint64_t BlockWalk::bodyEnd(const Block &block) {
    m_url.dataFileOffset = block.valueAt();
    if (!std::exchange(m_soughtMarker, true) || (m_marker && *m_marker < block.at))
        m_marker = m_file.find(kMarker, block.at);
    if (!m_marker) // to stay here would never end
        return block.end();
    if (*m_marker > block.end())
        if (const auto skipped = entriesIn(m_file.sub(block.end(), *m_marker - block.end())))
            m_result.passedOver["entry before the marker behind another one's body"] += skipped;
    return *m_marker + 1 + kBehindMarker;
}

/// The fields are read from the tag on, whatever the length of the block.
void BlockWalk::close(const Block &block) {
    if (m_file.has(block.at, macend::kBytes)) {
        m_url.endOffset = block.at;
        m_url.recordFileOffset = number(m_file, block.at + kRecordOffset);
        m_url.firstVisitDate = stampAt(m_file, block.at + macend::kFirstVisit);
        m_url.lastVisitDate = stampAt(m_file, block.at + macend::kLastVisit);
        m_url.dataSize = number(m_file, block.at + macend::kDataSize);
    } else {
        endAt("the end of an entry");
    }
    m_take(m_urls.add(std::exchange(m_url, {})));
}

} // namespace

ReadResult MacCacheFile::readMACIECache(ByteView file, TaskMonitor &task, const TakeURL &take) {
    macURLs.clear();
    const std::uint64_t size = file.size();
    if (size < kHeader)
        return {ReadState::failed, fmt::format("{} bytes are no cache file", size), 0, {}};
    if (const std::uint32_t told = number(file, kFileSize); told != size)
        return {
            ReadState::failed,
            fmt::format("the header says that the file has {} bytes, but it has {}", told, size),
            entriesIn(file),
            {}};
    return BlockWalk(file, macURLs, take).run(task);
}

std::int64_t sLong2ULong(std::int64_t value) {
    constexpr std::int64_t kLargest = 0x7FFFFFFF;
    constexpr std::int64_t kTwoTo32 = 4294967296;
    return value < 0 ? value + kTwoTo32 : std::min(value, kLargest);
}

Date timeStampToDate(std::int64_t value) {
    return convertSecondsToDate(sLong2ULong(value - kSeconds1904To1970));
}

/// What is after 1972 has its top bit set and is a negative number for timeStampToDate(). A stamp
/// of before 1970 is none: the browser is younger, and an empty stamp would become one of 2040.
Date macStampToDate(std::uint32_t stamp) {
    return stamp < kSeconds1904To1970 ? Date() : timeStampToDate(static_cast<std::int32_t>(stamp));
}

Date convertSecondsToDate(std::int64_t value) {
    return Date::fromUnixSeconds(value);
}

} // namespace nv
