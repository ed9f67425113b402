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
struct ChromeIndex {
    static constexpr std::uint64_t kSize = 0x20;

    std::uint32_t magic = 0;
    std::uint32_t version = 0; ///< major number in the high half
    std::uint32_t entryCount = 0;
    std::uint32_t storedDataSize = 0;
    std::uint32_t lastSeparateFileCreated = 0;
    std::uint32_t dirty = 0;
    std::uint32_t stats = 0;
    std::uint32_t addressCount = 0;  ///< slots of the table of addresses
    std::uint64_t hashTableSize = 0; ///< of that table, in bytes
};

/// Where a record or a body lies: one 32-bit word of the index or of an entry.
struct ChromeAddressMap {
    std::uint32_t address = 0; ///< the word itself
    bool initialised = false;
    std::uint8_t blockFileType = 0; ///< 0 is a separate file
    std::uint8_t dataBlocksUsed = 0;
    std::uint8_t dataBlockFileNumber = 0;
    std::uint16_t startingBlockNumber = 0;
    std::uint32_t blockSize = 0;           ///< in bytes; 0 for types that have no blocks
    std::uint64_t dataBlockFileOffset = 0; ///< 0-based; 0 when the word names no block
    std::string separateFileName;          ///< "f_" and six digits; empty for the other types
};

/// The head of a block file. Addresses tell all that a reading needs, so nothing is made of it.
struct ChromeDataFile {
    static constexpr std::uint64_t kSize = 0x2000; ///< with its map of blocks in use

    std::uint32_t magic = 0;
    std::uint32_t version = 0;
    std::int16_t dataFileIndex = 0;
    std::int16_t dataFileNextIndex = 0;
    std::int32_t blockSize = 0;
    std::int32_t entryCount = 0;
    std::int32_t entryCountMax = 0;
};

/// What the browser keeps of an answer of the server, as far as it is read.
struct ChromeHeader {
    static constexpr std::uint64_t kSize = 0x100;

    Date lastRequestedTime;  ///< UTC
    Date lastModifiedTime;   ///< UTC
    std::string headerValue; ///< the answer's own headers; not read
    bool isCutShort = false; ///< the block ended before the dates, which are 1601-01-01 then
};

struct ChromeRanking {
    static constexpr std::uint64_t kSize = 0x10;

    Date lastUsedTime;     ///< UTC
    Date lastModifiedTime; ///< UTC
};

struct ChromeEntry {
    static constexpr std::uint64_t kSize = 0x100;
    static constexpr std::uint64_t kKeyAt = 0x24;

    std::uint64_t mapFileOffset = 0; ///< of the entry in its block file
    std::uint32_t hash = 0;
    std::uint32_t nextEntryAddress = 0;
    std::uint32_t rankingsAddress = 0;
    std::uint32_t keyLength = 0;
    std::uint32_t keyAddress = 0; ///< not 0: a long key lies outside of the entry
    std::uint32_t headerSize = 0;
    std::uint32_t contentSize = 0;
    std::uint32_t headerAddress = 0;
    std::uint32_t contentAddress = 0;
    std::string keyURL;          ///< at most 218 characters
    bool isKeyCutShort = false;  ///< the stored URL is longer
    ChromeAddressMap addressMap; ///< of the entry itself
    ChromeAddressMap nextEntryAddressMap;
    ChromeAddressMap rankingsAddressMap;
    ChromeAddressMap headerAddressMap;
    ChromeAddressMap contentAddressMap;
    std::optional<ChromeHeader> headerObject;
    std::optional<ChromeRanking> rankingObject;

    // Beyond the classic rules; filled by ChromeBlockCache::complete().
    std::string wholeKey; ///< where keyURL isn't all of it
    std::string answer;   ///< the server's headers, in lines
    std::string chain;    ///< where the entry hangs, when others share its slot
};

using ChromeEntryCollection = KeyedList<ChromeEntry>;

// These throw OutOfBytes when the bytes end before the record does.

ChromeIndex chromeIndexOf(ByteView head);
ChromeDataFile chromeDataFileOf(ByteView head);
/// The entry's own bytes, without the objects that its addresses lead to.
ChromeEntry chromeEntryOf(ByteView record);

/// Whether all is there that chromeEntryOf() makes use of: where a file ends amid a URL, the half
/// of it would be another URL.
bool isWholeChromeEntry(ByteView record);

ChromeAddressMap chromeAddressMapOf(std::uint32_t word);
/// Blocks that are too short give dates of 1601-01-01.
ChromeHeader chromeHeaderOf(ByteView block);
ChromeRanking chromeRankingOf(ByteView block);

} // namespace nv
