#include "readers/chrome/cache/LaterSparse.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

constexpr std::uint64_t kMapAt = 64;
constexpr std::uint64_t kMostMap = 8 << 10; ///< of a parent: pieces up to 64 GiB
constexpr std::uint64_t kPiece = std::uint64_t{1} << 20;
constexpr std::uint64_t kBlock = std::uint64_t{1} << 10;
/// A map of nothing but pieces that aren't there would be looked up bit by bit.
constexpr std::uint64_t kMostMissing = 1000;
constexpr std::uint64_t kBlocksOfPiece = kPiece / kBlock;

bool isSet(ByteView map, std::uint64_t bit) {
    return (map.u8(kMapAt + bit / 8) >> (bit % 8) & 1) != 0;
}

} // namespace

LaterSparse::LaterSparse(LaterEntries &entries, const LaterEntry &parent, const FindKey &find) {
    const Bytes bytes = entries.read(parent.streams[LaterEntry::further], kMostMap);
    const ByteView map(bytes);
    if (map.size() < kMapAt)
        return;
    const std::uint64_t signature = map.u64le(0);
    for (std::uint64_t number = 0; number < (map.size() - kMapAt) * 8 && m_missing < kMostMissing;
         ++number) {
        if (!isSet(map, number))
            continue;
        const auto piece = find(fmt::format("Range_{}:{:x}:{:x}", parent.key, signature, number));
        if (piece)
            addPiece(entries, *piece, number);
        else
            ++m_missing;
    }
}

/// Blocks that follow each other become one stretch.
void LaterSparse::addPiece(LaterEntries &entries, const LaterEntry &piece, std::uint64_t number) {
    m_pieces.push_back(piece.address.address);
    const LaterStream &body = piece.streams[LaterEntry::body];
    const std::uint64_t size = std::min({body.size, body.room(), kPiece});
    const Bytes bytes = entries.read(piece.streams[LaterEntry::further], kMostMap);
    const ByteView map(bytes);
    const auto add = [&](std::uint64_t at, std::uint64_t count) {
        count = at < size ? std::min(count, size - at) : 0;
        if (count == 0)
            return;
        LaterStretch *last = m_stretches.empty() ? nullptr : &m_stretches.back();
        if (last && last->offset + last->size == number * kPiece + at &&
            last->at + last->size == at)
            last->size += count;
        else
            m_stretches.push_back({number * kPiece + at, body, at, count});
    };
    if (map.size() < kMapAt)
        return add(0, size); // without its map the piece is taken as it is
    const std::uint64_t blocks = std::min((map.size() - kMapAt) * 8, kBlocksOfPiece);
    const std::int32_t last = map.i32le(16);
    const std::int32_t lastSize = map.i32le(20);
    for (std::uint64_t block = 0; block < blocks; ++block) {
        if (isSet(map, block))
            add(block * kBlock, kBlock);
        else if (last >= 0 && static_cast<std::uint64_t>(last) == block && lastSize > 0)
            add(block * kBlock,
                std::min<std::uint64_t>(static_cast<std::uint64_t>(lastSize), kBlock));
    }
}

std::uint64_t LaterSparse::size() const {
    std::uint64_t size = 0;
    for (const LaterStretch &each : m_stretches)
        size += each.size;
    return size;
}

} // namespace nv
