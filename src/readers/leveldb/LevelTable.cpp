// table  = (block packed:u8 checksum:u32)* foot
// foot   = place{meta} place{index} zeros magic:u64                     48 bytes
// place  = at:varint size:varint
// block  = entry* restart:u32* count:u32
// entry  = shared:varint own:varint size:varint key[own] value[size]   shared with the one before
// The values of the index are the places of the other blocks. A key ends in kind:u8 sequence:u56.

#include "readers/Crc32c.h"
#include "readers/leveldb/LevelBytes.h"
#include "readers/leveldb/LevelStore.h"

#include <fmt/format.h>

#include <algorithm>
#include <snappy.h>

namespace nv {

namespace {

constexpr std::uint64_t kFoot = 48;
constexpr std::uint64_t kMagic = 0xDB47'7524'8B80'FB57;
constexpr std::uint64_t kBehindBlock = 5;
constexpr std::uint64_t kKeyEnd = 8;
/// Blocks have 4 KB, and a value that is larger one of its own.
constexpr std::size_t kMostOfABlock = std::size_t{16} << 20;

struct Place {
    std::uint64_t at = 0;
    std::uint64_t size = 0;
};

std::optional<Place> placeIn(ByteView bytes, std::uint64_t &at) {
    const auto where = levelVarint(bytes, at);
    const auto size = where ? levelVarint(bytes, at) : std::nullopt;
    return size ? std::optional(Place{*where, *size}) : std::nullopt;
}

class TableReading {
  public:
    TableReading(ByteView file, const TakeLevelEntry &take) : m_file(file), m_take(take) {}

    std::string read() {
        if (!m_file.has(0, kFoot) || m_file.u64le(m_file.size() - 8) != kMagic)
            return "it has no foot of a table";
        const ByteView foot = m_file.from(m_file.size() - kFoot);
        std::uint64_t at = 0;
        const auto meta = placeIn(foot, at);
        const auto index = meta ? placeIn(foot, at) : std::nullopt;
        if (!index)
            return "its foot names no index";
        std::vector<Place> blocks;
        eachEntry(*index, [&](std::string_view, std::string_view value) {
            std::uint64_t begin = 0;
            if (const auto block = placeIn(viewOf(value), begin))
                blocks.push_back(*block);
        });
        // Blocks don't share bytes; places that do would make a small file a large one.
        std::uint64_t left = m_file.size();
        for (const Place &block : blocks) {
            if (block.size > left)
                return m_problem.empty() ? "its blocks lie over each other" : m_problem;
            left -= block.size;
            eachEntry(block, [this](std::string_view key, std::string_view value) {
                takeEntry(key, value);
            });
        }
        return m_problem;
    }

  private:
    /// The block as it was before it was packed; nothing when it can't be had.
    std::optional<std::string> blockAt(const Place &place) {
        if (place.size > m_file.size() || !m_file.has(place.at, place.size + kBehindBlock))
            return damaged(place.at, "a block that isn't whole");
        const std::string_view checked = m_file.sub(place.at, place.size + 1).raw();
        if (maskedCrc(crc32c(checked)) != m_file.u32le(place.at + place.size + 1))
            return damaged(place.at, "a block that isn't as its checksum says");
        const std::string_view stored = checked.substr(0, place.size);
        const char packing = checked.back();
        if (packing == 0)
            return std::string(stored);
        std::size_t size = 0;
        const bool isSnappy =
            packing == 1 && snappy::GetUncompressedLength(stored.data(), stored.size(), &size);
        std::string block(isSnappy && size <= kMostOfABlock ? size : 0, '\0');
        if (!isSnappy || block.size() != size ||
            !snappy::RawUncompress(stored.data(), stored.size(), block.data()))
            return damaged(place.at, "a block that can't be unpacked");
        return block;
    }

    void eachEntry(const Place &place,
                   const std::function<void(std::string_view key, std::string_view value)> &take) {
        const auto bytes = blockAt(place);
        if (!bytes)
            return;
        const ByteView block = viewOf(*bytes);
        const std::uint64_t count = block.has(0, 4) ? block.u32le(block.size() - 4) : block.size();
        if (block.size() < 4 || count > (block.size() - 4) / 4) {
            static_cast<void>(damaged(place.at, "a block without its end"));
            return;
        }
        const ByteView entries = block.sub(0, block.size() - 4 - 4 * count);
        std::string key;
        for (std::uint64_t at = 0; at < entries.size();) {
            const auto shared = levelVarint(entries, at);
            const auto own = shared ? levelVarint(entries, at) : std::nullopt;
            const auto size = own ? levelVarint(entries, at) : std::nullopt;
            const bool isWhole = size && *shared <= key.size() && entries.has(at, *own) &&
                                 entries.has(at + *own, *size);
            if (!isWhole) {
                static_cast<void>(damaged(place.at, "an entry that isn't whole"));
                return;
            }
            key.resize(*shared);
            key += entries.sub(at, *own).raw();
            take(key, entries.sub(at + *own, *size).raw());
            at += *own + *size;
        }
    }

    void takeEntry(std::string_view key, std::string_view value) {
        constexpr unsigned kKindBits = 8;
        if (key.size() < kKeyEnd)
            return;
        const std::uint64_t end = viewOf(key).u64le(key.size() - kKeyEnd);
        m_take({key.substr(0, key.size() - kKeyEnd), value, end >> kKindBits, (end & 0xFFU) == 0});
    }

    std::nullopt_t damaged(std::uint64_t at, std::string_view what) {
        if (m_problem.empty())
            m_problem = fmt::format("{} at {}", what, at);
        return std::nullopt;
    }

    ByteView m_file;
    const TakeLevelEntry &m_take;
    std::string m_problem;
};

} // namespace

std::string eachOfLevelTable(ByteView file, const TakeLevelEntry &take) {
    return TableReading(file, take).read();
}

} // namespace nv
