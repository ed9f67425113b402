// log    = block*                        block: 32 KB, the last one shorter
// block  = piece* zeros
// piece  = checksum:u32 size:u16 kind:u8 byte[size]       1 a whole batch; 2, 3*, 4 its parts
// batch  = sequence:u64 count:u32 ( 01 key value | 00 key ){count}
// Numbers are little-endian; key and value stand behind their sizes.

#include "readers/Crc32c.h"
#include "readers/leveldb/LevelBytes.h"
#include "readers/leveldb/LevelStore.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

constexpr std::uint64_t kBlock = std::uint64_t{32} << 10;
constexpr std::uint64_t kHead = 7;
enum Kind : std::uint8_t { kWhole = 1, kFirst = 2, kMiddle = 3, kLast = 4 };

class LogReading {
  public:
    LogReading(ByteView file, const TakeLevelEntry &take) : m_file(file), m_take(take) {}

    std::string read() {
        for (std::uint64_t block = 0; block < m_file.size(); block += kBlock)
            readBlock(block, std::min<std::uint64_t>(block + kBlock, m_file.size()));
        return m_problem;
    }

  private:
    void readBlock(std::uint64_t at, std::uint64_t end) {
        while (at + kHead <= end) {
            const std::uint64_t size = m_file.u8(at + 4) | m_file.u8(at + 5) << 8U;
            const std::uint8_t kind = m_file.u8(at + 6);
            if (kind == 0 && size == 0)
                return; // the rest is room
            if (at + kHead + size > end)
                return damaged(at, "a piece that goes on behind its block");
            const std::string_view checked = m_file.sub(at + 6, size + 1).raw();
            if (maskedCrc(crc32c(checked)) != m_file.u32le(at))
                damaged(at, "a piece that isn't as its checksum says");
            else
                takePiece(at, kind, checked.substr(1));
            at += kHead + size;
        }
    }

    void takePiece(std::uint64_t at, std::uint8_t kind, std::string_view bytes) {
        if (kind == kWhole || kind == kFirst)
            m_batch.clear();
        m_batch += bytes;
        if (kind == kWhole || kind == kLast)
            takeBatch(at, viewOf(m_batch));
        else if (kind > kLast)
            damaged(at, "a piece of an unknown kind");
    }

    void takeBatch(std::uint64_t place, ByteView batch) {
        constexpr std::uint64_t kBatchHead = 12;
        if (!batch.has(0, kBatchHead))
            return damaged(place, "a batch without its head");
        std::uint64_t sequence = batch.u64le(0);
        std::uint64_t at = kBatchHead;
        for (std::uint32_t left = batch.u32le(8); left > 0; --left, ++sequence) {
            if (!batch.has(at, 1))
                return damaged(place, "a batch with fewer entries than it counts");
            const std::uint8_t kind = batch.u8(at++);
            const auto key = levelText(batch, at);
            const bool hasValue = kind == 1;
            const auto value =
                key && hasValue ? levelText(batch, at) : std::optional<std::string_view>("");
            if (kind > 1 || !key || !value)
                return damaged(place, "an entry that isn't whole");
            m_take({*key, *value, sequence, !hasValue});
        }
    }

    /// The first problem is told: the others mostly follow from it.
    void damaged(std::uint64_t at, std::string_view what) {
        if (m_problem.empty())
            m_problem = fmt::format("{} at {}", what, at);
    }

    ByteView m_file;
    const TakeLevelEntry &m_take;
    std::string m_batch;
    std::string m_problem;
};

} // namespace

std::string eachOfLevelLog(ByteView file, const TakeLevelEntry &take) {
    return LogReading(file, take).read();
}

} // namespace nv
