#include "readers/ie/RemnantWalk.h"

#include "base/Files.h"
#include "readers/ie/HashWalk.h"
#include "readers/ie/Kinds.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <stdexcept>

namespace nv {

namespace {

constexpr std::uint64_t kLength = 4;
/// Of the texts that stand elsewhere in the record: the file's name and the headers.
constexpr std::array<std::uint64_t, 2> kOffsets = {0x3C, 0x44};

/// A text that began in blocks which hold something else by now is gone.
void clearOffsetsBeyond(Bytes &record) {
    for (const std::uint64_t at : kOffsets)
        if (ByteView(record).u32le(at) >= record.size())
            std::fill_n(record.begin() + static_cast<std::ptrdiff_t>(at), 4, std::uint8_t{0});
}

bool endsItsUrl(ByteView record, std::string_view signature) {
    const std::uint64_t url = signature == "REDR" ? 0x10 : 0x68;
    return url + record.untilZero(url).size() < record.size();
}

std::string wordOf(std::optional<bool> isAllocated) {
    if (!isAllocated)
        return {};
    return *isAllocated ? ", in use by the index's map of blocks"
                        : ", free by the index's map of blocks";
}

} // namespace

RemnantWalk::RemnantWalk(ReadContext &ctx, ByteView file, const IndexBlocks &blocks,
                         std::string_view procedure)
    : m_ctx(ctx), m_file(file), m_blocks(blocks),
      m_trap(ctx.log, procedure, textOf(ctx.file.fullPath)) {}

void RemnantWalk::run(const Take &take, ReadResult &result) {
    const auto size = static_cast<double>(m_file.size());
    for (std::uint64_t at = 0; m_file.has(at, kLength); at += kIndexBlock) {
        const std::string_view signature = looseSignatureAt(m_file, at);
        if (signature.empty() || m_blocks.isListed(at))
            continue;
        const double done = static_cast<double>(at) / size;
        if (!m_ctx.task.advance(HashWalk::kShare + (1 - HashWalk::kShare) * done)) {
            result.state = ReadState::cancelled;
            break;
        }
        if (m_blocks.isOwned(at))
            ++result.passedOver["signature within the blocks of a listed record"];
        else
            m_trap.attempt(at, [&] { take(remnantAt(at, signature)); });
    }
    if (m_trap.failed() > 0)
        result.passedOver["damaged record outside of the hash tables"] += m_trap.failed();
}

Remnant RemnantWalk::remnantAt(std::uint64_t at, std::string_view signature) const {
    const std::int32_t claimed = m_file.i32le(at + kLength);
    if (claimed <= 0)
        throw std::runtime_error("the record has no length");
    const std::uint64_t own = ownBlocks(at, static_cast<std::uint64_t>(claimed));
    const std::string_view bytes = m_file.sub(at, own * kIndexBlock).raw();
    Remnant found{at, Bytes(bytes.begin(), bytes.end()), {}};
    if (signature != "REDR")
        clearOffsetsBeyond(found.bytes);
    found.foundHow =
        fmt::format("{} record in block 0x{:X}, not in any hash table{}",
                    signature.substr(0, signature.find(' ')), at, wordOf(m_blocks.isAllocated(at)));
    if (own < static_cast<std::uint64_t>(claimed)) {
        found.foundHow += fmt::format(
            "; {} of its {} blocks are left, the others hold something else or aren't there", own,
            claimed);
        if (!endsItsUrl(ByteView(found.bytes), signature))
            found.foundHow += "; the end of its URL was in those";
    }
    return found;
}

/// Blocks that another record begins in were written anew, or are not this record's at all: its
/// texts would go on with those of that other one.
std::uint64_t RemnantWalk::ownBlocks(std::uint64_t at, std::uint64_t claimed) const {
    std::uint64_t own = 1;
    for (; own < claimed; ++own) {
        const std::uint64_t next = at + own * kIndexBlock;
        if (!m_file.has(next, kIndexBlock) || m_blocks.isOwned(next) ||
            !looseSignatureAt(m_file, next).empty())
            break;
    }
    return own;
}

void setRecovered(UrlRecord &url, const Remnant &remnant) {
    url.cacheType = kIERemnant.word;
    url.Status = "Recovered";
    url.facts.add("recovered_from", remnant.foundHow);
    url.facts.add("source_offset", static_cast<std::int64_t>(remnant.offset));
    // Totals add that column up.
    if (url.Visits > 0)
        url.facts.add("count", url.Visits);
    url.Visits = kVisitsUnknown;
}

} // namespace nv
