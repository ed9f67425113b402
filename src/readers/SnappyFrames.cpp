// stream = frame*
// frame  = kind:u8 length:u24le content{length}
//   FF "sNaPpY"                begins a stream, and may stand again
//   00 checksum:u32le packed   01 checksum:u32le bytes     at most 64 KB unpacked
//   80 to FE                   padding and what may be passed over

#include "readers/Crc32c.h"
#include "readers/Unpacker.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <snappy.h>

namespace nv {

namespace {

constexpr std::size_t kHead = 4;
constexpr std::size_t kChecksum = 4;
constexpr std::size_t kMostUnpacked = std::size_t{64} << 10;
/// What Snappy can make of that at its worst, with the checksum.
constexpr std::size_t kMostPacked = kChecksum + 32 + kMostUnpacked + kMostUnpacked / 6;
constexpr std::string_view kMark = "sNaPpY";

enum Kind : std::uint8_t { kPacked = 0x00, kBytes = 0x01, kFirstSkipped = 0x80, kBegin = 0xFF };

std::uint32_t numberAt(std::string_view bytes, std::size_t at, std::size_t size) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < size; ++i)
        number |= std::uint32_t{static_cast<std::uint8_t>(bytes[at + i])} << (8 * i);
    return number;
}

class SnappyFrames final : public Unpacker {
  public:
    bool feed(std::string_view block, const Take &take) override {
        while (!block.empty()) {
            const std::size_t wanted = m_skip > 0 ? m_skip : m_wanted - m_frame.size();
            const std::string_view part = block.substr(0, wanted);
            block.remove_prefix(part.size());
            if (m_skip > 0)
                m_skip -= part.size();
            else if (!add(part, take))
                return false;
        }
        return true;
    }

    bool isWhole() const override { return m_isBegun && m_frame.empty() && m_skip == 0; }

  private:
    bool add(std::string_view part, const Take &take) {
        m_frame += part;
        if (m_frame.size() == kHead && m_wanted == kHead && !begin())
            return false;
        if (m_frame.size() < m_wanted)
            return true;
        const bool goesOn = m_frame.empty() || finish(take);
        m_frame.clear();
        m_wanted = kHead;
        return goesOn;
    }

    std::uint8_t kind() const { return static_cast<std::uint8_t>(m_frame.front()); }

    /// By its first bytes.
    bool begin() {
        const std::size_t length = numberAt(m_frame, 1, 3);
        if (!m_isBegun && kind() != kBegin)
            return damaged("it doesn't begin as Snappy's frames do");
        if (kind() >= kFirstSkipped && kind() != kBegin) {
            m_skip = length;
            m_frame.clear();
            m_wanted = 0;
            return true;
        }
        if (kind() > kBytes && kind() != kBegin)
            return damaged(fmt::format("a frame of the unknown kind {}", kind()));
        const bool isSized = kind() == kBegin ? length == kMark.size()
                                              : length >= kChecksum && length <= kMostPacked;
        if (!isSized)
            return damaged(fmt::format("a frame of kind {} with {} bytes", kind(), length));
        m_wanted = kHead + length;
        return true;
    }

    bool finish(const Take &take) {
        const std::string_view content = std::string_view(m_frame).substr(kHead);
        if (kind() == kBegin) {
            m_isBegun = content == kMark;
            return m_isBegun || damaged("it doesn't begin as Snappy's frames do");
        }
        const std::string_view stored = content.substr(kChecksum);
        const bool isPacked = kind() == kPacked;
        if (isPacked ? !unpack(stored) : stored.size() > kMostUnpacked)
            return damaged("a frame that can't be unpacked");
        const std::string_view bytes = isPacked ? std::string_view(m_unpacked) : stored;
        const std::uint32_t checksum = numberAt(content, 0, kChecksum);
        const std::uint32_t crc = crc32c(bytes);
        // Firefox leaves the last step out, in which all bits are turned over.
        if (checksum != maskedCrc(~crc) && checksum != maskedCrc(crc))
            return damaged("a frame that isn't as its checksum says");
        return bytes.empty() || take(bytes);
    }

    bool unpack(std::string_view packed) {
        std::size_t size = 0;
        if (!snappy::GetUncompressedLength(packed.data(), packed.size(), &size) ||
            size > kMostUnpacked)
            return false;
        m_unpacked.resize(size);
        return snappy::RawUncompress(packed.data(), packed.size(), m_unpacked.data());
    }

    std::string m_frame; ///< as far as it has come
    std::size_t m_wanted = kHead;
    std::size_t m_skip = 0;
    std::string m_unpacked;
    bool m_isBegun = false;
};

} // namespace

std::unique_ptr<Unpacker> snappyUnpacker() {
    return std::make_unique<SnappyFrames>();
}

} // namespace nv
