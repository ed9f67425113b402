#include "readers/chrome/cache/SimpleIndex.h"

#include <fmt/format.h>

#include <algorithm>
#include <span>
#include <zlib.h>

namespace nv {

namespace {

constexpr std::uint64_t kMagic = 0x656E'7465'7220'796F;
constexpr std::uint64_t kPayloadAt = 8;
constexpr std::uint64_t kFixed = 28; ///< of the payload: magic, version, entries, bytes
constexpr std::uint64_t kEntry = kSimpleIndexEntry;
constexpr std::uint64_t kChanged = 8;

/// A date of the years 1980 to 2200: other numbers there are none.
bool isDate(std::int64_t used) {
    constexpr std::int64_t kYear1980 = 11'960'000'000'000'000;
    constexpr std::int64_t kYear2200 = 18'900'000'000'000'000;
    return used > kYear1980 && used < kYear2200;
}

bool hasItsChecksum(ByteView file) {
    const ByteView payload = file.from(kPayloadAt);
    const std::string_view raw = payload.raw();
    const uLong crc = crc32(crc32(0, nullptr, 0), reinterpret_cast<const Bytef *>(raw.data()),
                            static_cast<uInt>(raw.size()));
    return crc == file.u32le(4);
}

/// How many there are, one that is listed twice counted twice.
std::uint64_t readEntries(ByteView payload, std::uint64_t count, SimpleIndex &index) {
    const std::uint64_t wordless = kFixed + count * kEntry + kChanged;
    std::uint64_t at = kFixed + (payload.size() > wordless ? 4 : 0);
    std::uint64_t number = 0;
    index.firstAt = kPayloadAt + at;
    for (; number < count && payload.has(at, kEntry); ++number, at += kEntry) {
        const auto used = static_cast<std::int64_t>(payload.u64le(at + 8));
        index.lastUsed[payload.u64le(at)] = isDate(used) ? used : 0;
    }
    return number;
}

} // namespace

SimpleIndex simpleIndexOf(ByteView file) {
    SimpleIndex index;
    if (!file.has(0, kPayloadAt + kFixed) || file.u64le(kPayloadAt) != kMagic) {
        index.damage = "it has no list of entries";
        return index;
    }
    index.isThere = true;
    const ByteView payload = file.from(kPayloadAt);
    index.version = payload.u32le(8);
    const std::uint64_t stored = payload.u64le(12);
    const std::uint64_t count = std::min<std::uint64_t>(stored, payload.size() / kEntry);
    const std::uint64_t met = readEntries(payload, count, index);
    if (!hasItsChecksum(file))
        index.damage = "its checksum is wrong";
    if (met < stored)
        index.damage = fmt::format("it counts {} entries and has {}", stored, met);
    return index;
}

} // namespace nv
