#include "readers/chrome/cache/LaterPieces.h"

#include "readers/Body.h"
#include "readers/chrome/cache/CacheKey.h"
#include "readers/chrome/cache/LaterSparse.h"
#include "readers/chrome/cache/LaterWalk.h"

#include <algorithm>
#include <span>
#include <utility>

namespace nv {

namespace {

std::optional<LaterIndexFile> trustedIndex(const Evidence &evidence,
                                           const std::filesystem::path &folder) {
    const auto path = evidence.find(folder, "index");
    if (!path)
        return std::nullopt;
    LaterIndexFile index(evidence.open(*path));
    return index.damage().empty() ? std::optional(std::move(index)) : std::nullopt;
}

} // namespace

std::optional<LaterEntry> laterEntryOfKey(LaterIndexFile &index, LaterEntries &entries,
                                          const std::string &key) {
    const std::uint32_t hash = chromeKeyHash(key);
    const std::uint32_t slot = index.slotOf(hash);
    if (slot >= index.slotsThere())
        return std::nullopt;
    // A chain is a few entries long; one without an end leads round and round.
    constexpr int kMostOfChain = 100;
    std::uint32_t address = index.word(slot);
    for (int step = 0; step < kMostOfChain; ++step) {
        auto entry = entries.at(address);
        if (!entry || (entry->hash == hash && entry->key == key))
            return entry;
        address = entry->next;
    }
    return std::nullopt;
}

bool isInPieces(const UrlRecord &record) {
    return record.Reference_ID != 0 && record.HistoryVersion.starts_with("Block files");
}

void LaterStrays::add(const LaterEntry &piece) {
    m_byHash[piece.hash].push_back(piece.address.address);
}

std::optional<LaterEntry> LaterStrays::find(LaterEntries &entries, const std::string &key) const {
    const auto found = m_byHash.find(chromeKeyHash(key));
    std::optional<LaterEntry> last;
    if (found == m_byHash.end())
        return last;
    // A cache has a few of one key; many are made to take time.
    constexpr std::size_t kMostOfKey = 100;
    const std::size_t count = std::min(found->second.size(), kMostOfKey);
    for (const std::uint32_t address : std::span(found->second).first(count)) {
        auto entry = entries.at(address);
        if (entry && entry->key == key && (!last || entry->created > last->created))
            last = std::move(entry);
    }
    return last;
}

bool fetchLaterPieces(const UrlRecord &record, const Evidence &evidence, BodyTarget &target) {
    const auto folder = evidence.byText(record.CacheRootPath);
    if (!folder)
        return false;
    ChromeBlockFiles blocks(evidence, *folder);
    LaterEntries entries(blocks, evidence, *folder);
    const auto parent = entries.at(static_cast<std::uint32_t>(record.Reference_ID));
    if (!parent)
        return false;
    std::optional<LaterIndexFile> index = trustedIndex(evidence, *folder);
    LaterStrays strays;
    if (!index)
        eachLaterBlock(blocks, [&](const ChromeAddressMap &map) {
            const auto entry = entries.at(map);
            if (entry && entry->hasItsHash() && (entry->flags & LaterEntry::sparseChild) != 0)
                strays.add(*entry);
        });
    const LaterSparse sparse(entries, *parent, [&](const std::string &key) {
        return index ? laterEntryOfKey(*index, entries, key) : strays.find(entries, key);
    });
    std::uint64_t written = 0;
    for (const LaterStretch &each : sparse.stretches())
        if (const auto file = entries.fileOf(each.piece))
            written += target.copy(evidence.open(*file),
                                   each.piece.address.dataBlockFileOffset + each.at, each.size);
    return written > 0;
}

} // namespace nv
