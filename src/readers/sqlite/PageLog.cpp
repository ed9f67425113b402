// The log of pages beside an SQLite file, numbers big-endian:
//   log   = magic:u32 version:u32 page size:u32 number:u32 Salt Checksum Frame{}
//   Frame = page:u32 pages after a commit:u32 Salt Checksum byte[page size]
//   Salt  = u32 u32      new for each use of the log; frames of an earlier use have another one
//   Checksum = u32 u32   of all before it: of the log's head, and on from frame to frame, of each
//                        its first 8 bytes and its page
// The last bit of the magic says that the words which are summed up are big-endian too.

#include "readers/sqlite/PageLog.h"

#include "base/Text.h"
#include "readers/BigEndian.h"

#include <fmt/format.h>

#include <bit>
#include <cstdint>
#include <optional>

namespace nv {

namespace {

constexpr std::uint64_t kHead = 32;
constexpr std::uint64_t kFrameHead = 24;
constexpr std::uint64_t kSmallestPage = 512;
constexpr std::uint64_t kLargestPage = 65536;
constexpr std::uint64_t kSummed = 8; ///< of a frame's head

std::uint32_t wordAt(ByteView bytes, std::uint64_t at) {
    return static_cast<std::uint32_t>(bigEndian(bytes.sub(at, 4)));
}

/// Goes on from block to block.
class Sum {
  public:
    explicit Sum(bool isBigEndian) : m_isBigEndian(isBigEndian) {}

    void add(ByteView bytes) {
        for (std::uint64_t at = 0; at + 8 <= bytes.size(); at += 8) {
            m_first += word(bytes, at) + m_second;
            m_second += word(bytes, at + 4) + m_first;
        }
    }
    bool isAt(ByteView bytes, std::uint64_t at) const {
        return wordAt(bytes, at) == m_first && wordAt(bytes, at + 4) == m_second;
    }

  private:
    std::uint32_t word(ByteView bytes, std::uint64_t at) const {
        return m_isBigEndian ? wordAt(bytes, at) : bytes.u32le(at);
    }

    bool m_isBigEndian;
    std::uint32_t m_first = 0;
    std::uint32_t m_second = 0;
};

class LogWalk {
  public:
    explicit LogWalk(const ByteSource &log) : m_log(log) {}

    std::string damage() {
        if (m_log.size() == 0)
            return {};
        const Bytes bytes = m_log.read(0, kHead);
        const ByteView head(bytes);
        if (head.size() < kHead)
            return fmt::format("it ends amid its head, at offset {}", head.size());
        if (!begin(head))
            return m_log.size() < kHead + kFrameHead + kSmallestPage
                       ? std::string()
                       : "at offset 0 stands no head of a log: none of its pages is read";
        return damageOfFrames(head);
    }

  private:
    bool begin(ByteView head) {
        constexpr std::uint32_t kMagic = 0x377F0682;
        constexpr std::uint32_t kVersion = 3007000;
        constexpr std::uint64_t kChecksumAt = 24;
        const std::uint32_t magic = wordAt(head, 0);
        m_pageSize = wordAt(head, 8);
        m_sum.emplace((magic & 1U) != 0);
        m_sum->add(head.sub(0, kChecksumAt));
        return (magic & ~1U) == kMagic && wordAt(head, 4) == kVersion &&
               std::has_single_bit(m_pageSize) && m_pageSize >= kSmallestPage &&
               m_pageSize <= kLargestPage && m_sum->isAt(head, kChecksumAt);
    }

    std::string damageOfFrames(ByteView head) {
        m_salt = head.sub(16, 8).raw();
        std::uint64_t at = kHead;
        while (isSound(at))
            at += frameSize();
        const std::uint64_t lost = committedFrom(at);
        if (lost > 0)
            return fmt::format("the frame at offset {} is damaged: {} from there on can't be read",
                               at, counted(lost, "committed change"));
        return m_tornAt == 0 ? std::string()
                             : fmt::format("it ends amid the frame at offset {}", m_tornAt);
    }

    std::uint64_t frameSize() const { return kFrameHead + m_pageSize; }

    /// Whether a whole frame of the log's present use is there, as it was written.
    bool isSound(std::uint64_t at) {
        const Bytes bytes = m_log.read(at, frameSize());
        const ByteView frame(bytes);
        if (frame.size() < frameSize() || !hasSalt(frame))
            return false;
        Sum sum = *m_sum;
        sum.add(frame.sub(0, kSummed));
        sum.add(frame.from(kFrameHead));
        if (!sum.isAt(frame, 16) || wordAt(frame, 0) == 0)
            return false;
        m_sum = sum;
        return true;
    }

    bool hasSalt(ByteView frame) const { return frame.sub(8, 8).raw() == m_salt; }

    /// How many changes of the log's present use end at `at` or behind. A change that spilled into
    /// the log and was taken back leaves frames too, but none that commits them.
    std::uint64_t committedFrom(std::uint64_t from) {
        constexpr std::uint64_t kUpToSalt = 16;
        std::uint64_t commits = 0;
        for (std::uint64_t at = from; at < m_log.size(); at += frameSize()) {
            const Bytes bytes = m_log.read(at, kFrameHead);
            const ByteView head(bytes);
            const bool isPresent = head.size() < kUpToSalt ? at == from : hasSalt(head);
            if (isPresent && at + frameSize() > m_log.size())
                m_tornAt = at;
            else if (isPresent && wordAt(head, 4) != 0)
                ++commits;
        }
        return commits;
    }

    const ByteSource &m_log;
    std::uint64_t m_pageSize = 0;
    std::optional<Sum> m_sum; ///< up to the last sound frame
    std::string m_salt;
    std::uint64_t m_tornAt = 0; ///< 0 when it ends behind a frame
};

} // namespace

std::string pageLogDamage(const ByteSource &log) {
    return LogWalk(log).damage();
}

} // namespace nv
