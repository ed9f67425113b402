#include "readers/chrome/LaterPieces.h"

#include "readers/Body.h"
#include "readers/chrome/CacheKey.h"
#include "readers/chrome/LaterSparse.h"

namespace nv {

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

bool fetchLaterPieces(const UrlRecord &record, const Evidence &evidence, BodyTarget &target) {
    const auto folder = evidence.byText(record.CacheRootPath);
    const auto indexPath = folder ? evidence.find(*folder, "index") : std::nullopt;
    if (!indexPath)
        return false;
    ChromeBlockFiles blocks(evidence, *folder);
    LaterEntries entries(blocks, evidence, *folder);
    LaterIndexFile index(evidence.open(*indexPath));
    const auto parent = entries.at(static_cast<std::uint32_t>(record.Reference_ID));
    if (!parent)
        return false;
    const LaterSparse sparse(entries, *parent, [&](const std::string &key) {
        return laterEntryOfKey(index, entries, key);
    });
    std::uint64_t written = 0;
    for (const LaterStretch &each : sparse.stretches())
        if (const auto file = entries.fileOf(each.piece))
            written += target.copy(evidence.open(*file),
                                   each.piece.address.dataBlockFileOffset + each.at, each.size);
    return written > 0;
}

} // namespace nv
