#include "readers/ie/HashChain.h"

#include "readers/Limits.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <unordered_set>

namespace nv {

namespace {

constexpr std::uint64_t kFirstTable = 0x1F;
constexpr std::uint64_t kFirstTableOfFormat = 0x20;
constexpr std::uint64_t kTableHeader = 0x10;
constexpr std::int64_t kBlock = 0x80;
constexpr std::int64_t kEntry = 8;

// A slot's first four bytes are 00000000 when it was never used, 03000000 when it ends its row of
// the hash. All others are looked at, also those that mark a deleted or locked entry.
constexpr std::uint32_t kNeverUsed = 0;
constexpr std::uint32_t kEndOfRow = 3;
constexpr std::uint32_t kFiller = 0xDEADBEEF;

/// A hostile chain can name a table at every byte of the file; so many are counted after the cap.
constexpr std::size_t kCountedBehindCap = 4096;

bool hasTable(ByteView file, std::int64_t at) {
    return at > 0 && file.has(static_cast<std::uint64_t>(at), kTableHeader);
}

std::int64_t entriesFor(std::int64_t tableSize) {
    return (tableSize - static_cast<std::int64_t>(kTableHeader)) / kEntry;
}

HashTable tableAt(ByteView file, std::uint64_t at) {
    const ByteView block = file.from(at);
    HashTable table;
    table.fileOffset = at;
    table.firstRecordFileOffset = at + kTableHeader;
    table.tableSize = block.i32le(4) * kBlock;
    table.nextHashTable = block.i32le(8);
    table.tableNumber = static_cast<std::int16_t>(block.u16le(0xC));
    const std::int64_t most = std::numeric_limits<std::int16_t>::max();
    const std::int64_t count = std::clamp(entriesFor(table.tableSize), std::int64_t{0}, most);
    table.recordCount = static_cast<std::int16_t>(count);
    return table;
}

/// What is wrong with the length of a table; empty when nothing is.
std::string lengthDamage(const HashTable &table) {
    const std::int64_t entries = entriesFor(table.tableSize);
    if (entries > 0 && entries == table.recordCount)
        return {};
    return fmt::format("the hash table at {} has an impossible length of {} bytes",
                       table.fileOffset, table.tableSize);
}

} // namespace

bool HashEntry::isFree() const {
    return status == kNeverUsed || status == kEndOfRow;
}

bool HashEntry::isFiller() const {
    return status == kFiller && recordOffset == kFiller;
}

std::int32_t firstHashTable(ByteView file) {
    // Read big-endian and one byte before the format's own field. That is right for every usual
    // file, whose first table lies below 64 KiB at a multiple of 256, and wrong for an index of
    // 16 MiB or more. Earlier cases were counted with this read; what it misses is reported.
    return static_cast<std::int32_t>(file.u32be(kFirstTable));
}

HashChain readHashChain(ByteView file, std::int64_t first) {
    HashChain chain;
    std::unordered_set<std::int64_t> met;
    for (std::int64_t at = first; at != 0 && chain.behindCap.size() < kCountedBehindCap;) {
        const bool capped = chain.tables.size() == limits::kIndexHashTables;
        std::string damage;
        if (!hasTable(file, at))
            damage = fmt::format("a hash table was expected at {}, outside of the {} bytes", at,
                                 file.size());
        else if (!met.insert(at).second)
            damage = fmt::format("the chain of hash tables leads back to the one at {}", at);
        if (!damage.empty()) {
            if (!capped)
                chain.damage.push_back(std::move(damage));
            break;
        }
        const HashTable table = tableAt(file, static_cast<std::uint64_t>(at));
        if (damage = lengthDamage(table); !capped && !damage.empty())
            chain.damage.push_back(std::move(damage));
        (capped ? chain.behindCap : chain.tables).push_back(table);
        at = table.nextHashTable;
    }
    return chain;
}

HashChain missedHashChain(ByteView file) {
    const std::int32_t first = file.i32le(kFirstTableOfFormat);
    const bool missed = first != firstHashTable(file) && hasTable(file, first) &&
                        file.sub(static_cast<std::uint64_t>(first), 4).raw() == "HASH";
    return missed ? readHashChain(file, first) : HashChain();
}

std::uint64_t placeOfEntry(const HashTable &table, std::int64_t entry) {
    return table.firstRecordFileOffset + static_cast<std::uint64_t>(entry * kEntry);
}

HashEntry hashEntry(ByteView file, const HashTable &table, std::int64_t entry) {
    const std::uint64_t at = placeOfEntry(table, entry);
    return {file.u32le(at), file.u32le(at + 4)};
}

std::uint64_t usedEntries(ByteView file, const HashTable &table, std::int64_t from) {
    std::uint64_t used = 0;
    for (std::int64_t entry = from; entry < table.recordCount; ++entry) {
        if (!file.has(placeOfEntry(table, entry), kEntry))
            break;
        used += hashEntry(file, table, entry).isUsed() ? 1 : 0;
    }
    return used;
}

std::uint64_t usedEntries(ByteView file, const HashChain &chain) {
    std::uint64_t used = 0;
    for (const HashTable &table : chain.tables)
        used += usedEntries(file, table);
    for (const HashTable &table : chain.behindCap)
        used += usedEntries(file, table);
    return used;
}

} // namespace nv
