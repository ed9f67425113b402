#pragma once

#include "base/ByteView.h"
#include "base/KeyedList.h"
#include "time/Date.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

// The structures of Firefox's disk cache. The files' words are unsigned 32-bit numbers; all are
// held in 64 bits, since the high bit of a location means something and products must not wrap.

struct CacheMapHeader {
    std::int64_t version = 0;
    std::int64_t dataSize = 0;
    std::int64_t entryCount = 0;
    std::int64_t isDirty = 0;
    std::int64_t recordCount = 0; ///< buckets of the map, used or not
};

/// One slot of the map.
struct CacheBucket {
    std::int64_t fileOffset = 0; ///< in the map
    std::int64_t hashNumber = 0;
    std::string hashNumberAsHex; ///< eight digits, which also name a separate file
    std::int64_t evictionRank = 0;
    std::int64_t dataLocation = 0;
    std::int64_t metaDataLocation = 0;
};

/// A location word, taken apart.
struct CacheRecordInfo {
    std::int64_t blockSize = 0;     ///< in bytes
    std::int64_t numContBlocks = 0; ///< the two bits as they stand: one less than the blocks in use
    std::int64_t startBlock = 0;
    std::int64_t cacheBlockFileNumber = 0; ///< 1 to 3; 0 is a separate file
};

/// Where the body lies in its block file; of no meaning for a separate file.
struct CacheRecordData {
    std::int64_t fileOffsetBOF = 0;
    std::int64_t fileOffsetEOF = 0;
    std::int64_t blockSize = 0;
    std::int64_t numContBlocks = 0;
    std::int64_t cacheBlockFileNumber = 0;
};

/// Bytes of a metadata record before its URL.
inline constexpr std::int64_t kMetaDataHeader = 0x24;

struct CacheRecordMetaData {
    std::int64_t version = 0;
    std::int64_t metaLocation = 0;
    std::int64_t fetchCount = 0;
    Date actionDateUTC; ///< last fetched
    Date lastModified;
    Date expirationTime;
    std::int64_t dataSize = 0; ///< of the body, as it is stored
    std::int64_t urlSize = 0;
    std::int64_t metaDataSize = 0;
    Bytes urlData;
    Bytes metaData; ///< shorter than metaDataSize where its file ends before
};

struct CacheRecord {
    CacheBucket bucket;
    CacheRecordInfo bucketData;
    CacheRecordInfo bucketMetaData;
    CacheMapHeader header;
    CacheRecordData recordData;
    /// Not kept in the collection: read when its record's turn comes, so that a cache whose
    /// metadata claim any size is listed in little memory.
    std::optional<CacheRecordMetaData> recordMetaData;
};

/// A bucket that makes no classic record, with metadata in a block file.
struct FurtherBucket {
    CacheRecord record;
    std::string_view rule; ///< why the classic rules pass over it
    bool isListed = false; ///< the map has it in use
    bool hasBody = false;
};

/// In the order of the map. Without keys: a damaged map has the same hash number twice.
using CacheRecords = KeyedList<CacheRecord>;

} // namespace nv
