#pragma once

#include "base/ByteView.h"
#include "base/KeyedList.h"
#include "time/Date.h"

#include <cstdint>
#include <optional>
#include <string>

namespace nv {

// What stands in Chrome's index and block files, numbers little-endian. Bytes in, values out: no
// file is opened here.

/// The head of the file "index".
struct ChromeIndexClass {
    static constexpr std::uint64_t kSize = 0x20;

    std::uint32_t Magic = 0;
    std::uint32_t Version = 0; ///< major number in the high half
    std::uint32_t EntryCount = 0;
    std::uint32_t StoredDataSize = 0;
    std::uint32_t LastSeparateFileCreated = 0;
    std::uint32_t Dirty = 0;
    std::uint32_t Stats = 0;
    std::uint32_t AddressCount = 0;  ///< slots of the table of addresses
    std::uint64_t hashTableSize = 0; ///< of that table, in bytes
};

/// Where a record or a body lies: one 32-bit word of the index or of an entry.
struct ChromeAddressMapClass {
    std::uint32_t Address = 0; ///< the word itself
    bool Initialised = false;
    std::uint8_t BlockFileType = 0; ///< 0 is a separate file
    std::uint8_t DataBlocksUsed = 0;
    std::uint8_t DataBlockFileNumber = 0;
    std::uint16_t StartingBlockNumber = 0;
    std::uint32_t BlockSize = 0;           ///< in bytes; 0 for types that have no blocks
    std::uint64_t DataBlockFileOffset = 0; ///< 0-based; 0 when the word names no block
    std::string SeparateFileName;          ///< "f_" and six digits; empty for the other types
};

/// The head of a block file. Addresses tell all that a reading needs, so nothing is made of it.
struct ChromeDataFileClass {
    static constexpr std::uint64_t kSize = 0x2000; ///< with its map of blocks in use

    std::uint32_t Magic = 0;
    std::uint32_t Version = 0;
    std::int16_t DataFileIndex = 0;
    std::int16_t DataFileNextIndex = 0;
    std::int32_t BlockSize = 0;
    std::int32_t EntryCount = 0;
    std::int32_t EntryCountMax = 0;
};

/// What the browser keeps of an answer of the server, as far as it is read.
struct ChromeHeaderClass {
    static constexpr std::uint64_t kSize = 0x100;

    Date LastRequestedTime;  ///< UTC
    Date LastModifiedTime;   ///< UTC
    std::string HeaderValue; ///< the answer's own headers; not read
    bool isCutShort = false; ///< the block ended before the dates, which are 1601-01-01 then
};

struct ChromeRankingClass {
    static constexpr std::uint64_t kSize = 0x10;

    Date LastUsedTime;     ///< UTC
    Date LastModifiedTime; ///< UTC
};

/// The bytes of a cached body.
struct ChromeContentClass {
    Bytes blob;
};
using ChromeCacheBlobClass = ChromeContentClass;

struct ChromeEntryClass {
    static constexpr std::uint64_t kSize = 0x100;

    std::uint64_t MapFileOffset = 0; ///< of the entry in its block file
    std::uint32_t Hash = 0;
    std::uint32_t NextEntryAddress = 0;
    std::uint32_t RankingsAddress = 0;
    std::uint32_t KeyLength = 0;
    std::uint32_t KeyAddress = 0; ///< not 0: a long key lies outside of the entry
    std::uint32_t HeaderSize = 0;
    std::uint32_t ContentSize = 0;
    std::uint32_t HeaderAddress = 0;
    std::uint32_t ContentAddress = 0;
    std::string keyURL;               ///< at most 218 characters
    bool isKeyCutShort = false;       ///< the stored URL is longer
    ChromeAddressMapClass AddressMap; ///< of the entry itself
    ChromeAddressMapClass NextEntryAddressMap;
    ChromeAddressMapClass RankingsAddressMap;
    ChromeAddressMapClass HeaderAddressMap;
    ChromeAddressMapClass ContentAddressMap;
    std::optional<ChromeHeaderClass> HeaderObject;
    std::optional<ChromeRankingClass> RankingObject;
    std::optional<ChromeContentClass>
        ContentObject; ///< stays empty: bodies are read when asked for
};

using ChromeEntryCollection = KeyedList<ChromeEntryClass>;

// These throw OutOfBytes when the bytes end before the record does.

ChromeIndexClass chromeIndexOf(ByteView head);
ChromeDataFileClass chromeDataFileOf(ByteView head);
/// The entry's own bytes, without the objects that its addresses lead to.
ChromeEntryClass chromeEntryOf(ByteView record);

/// Whether all is there that chromeEntryOf() makes use of: where a file ends amid a URL, the half
/// of it would be another URL.
bool isWholeChromeEntry(ByteView record);

ChromeAddressMapClass chromeAddressMapOf(std::uint32_t word);
/// Blocks that are too short give dates of 1601-01-01.
ChromeHeaderClass chromeHeaderOf(ByteView block);
ChromeRankingClass chromeRankingOf(ByteView block);

} // namespace nv
