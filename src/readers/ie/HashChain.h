#pragma once

#include "base/ByteView.h"

#include <cstdint>
#include <string>
#include <vector>

namespace nv {

// The hash of an index.dat: a chain of blocks of 8-byte entries, each a status and the offset of a
// record. Numbers are little-endian and signed, offsets are 0-based from the start of the file.

/// One block of the hash.
struct HashTable {
    std::uint64_t firstRecordFileOffset = 0; ///< of the first hash entry
    std::int16_t tableNumber = 0;            ///< as the file says, from 0
    std::int32_t nextHashTable = 0;          ///< 0 when last
    std::int64_t tableSize = 0;              ///< bytes
    std::int16_t recordCount = 0;            ///< entries
    std::uint64_t fileOffset = 0;
};

struct HashEntry {
    std::uint32_t status = 0;
    std::uint32_t recordOffset = 0;

    bool isFree() const;
    /// The words 0xDEADBEEF twice, with which the format fills up the end of a table.
    bool isFiller() const;
    bool isUsed() const { return !isFree() && !isFiller(); }
};

struct HashChain {
    std::vector<HashTable> tables;    ///< at most limits::kIndexHashTables
    std::vector<HashTable> behindCap; ///< are there, but are never read
    std::vector<std::string> damage;  ///< each with its place and what was expected there
};

/// The offset of the first table, in the odd form in which this reader takes it.
std::int32_t firstHashTable(ByteView file);
/// The chain from the table at `first`. Damage ends the chain; it throws nothing.
HashChain readHashChain(ByteView file, std::int64_t first);
/// The chain that firstHashTable() misses: the one at the offset as the format has it. Empty when
/// that is the same offset or leads to no table.
HashChain missedHashChain(ByteView file);

/// Where the entry stands; `entry` is 0-based.
std::uint64_t placeOfEntry(const HashTable &table, std::int64_t entry);
/// Throws OutOfBytes.
HashEntry hashEntry(ByteView file, const HashTable &table, std::int64_t entry);
/// Entries in use of the table from `from` on, as far as the file reaches.
std::uint64_t usedEntries(ByteView file, const HashTable &table, std::int64_t from = 0);
/// Entries in use of all tables, also of those after the cap.
std::uint64_t usedEntries(ByteView file, const HashChain &chain);

} // namespace nv
