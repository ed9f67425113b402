#pragma once

#include "base/ByteView.h"
#include "base/KeyedList.h"
#include "time/Date.h"

#include <cstdint>
#include <optional>
#include <string>

namespace nv {

// The structures of Firefox's disk cache. The files' words are unsigned 32-bit numbers; all are
// held in 64 bits, since the high bit of a location means something and products must not wrap.

struct mzMapHeader {
    std::int64_t Version = 0;
    std::int64_t DataSize = 0;
    std::int64_t EntryCount = 0;
    std::int64_t IsDirty = 0;
    std::int64_t RecordCount = 0; ///< buckets of the map, used or not
};

/// One slot of the map.
struct mzBucket {
    std::int64_t FileOffset = 0; ///< in the map
    std::int64_t HashNumber = 0;
    std::string HashNumberAsHex; ///< eight digits, which also name a separate file
    std::int64_t evictionRank = 0;
    std::int64_t DataLocation = 0;
    std::int64_t MetaDataLocation = 0;
};

/// A location word, taken apart.
struct mzRecordInfo {
    std::int64_t BlockSize = 0;     ///< in bytes
    std::int64_t NumContBlocks = 0; ///< the two bits as they stand: one less than the blocks in use
    std::int64_t StartBlock = 0;
    std::int64_t CacheBlockFileNumber = 0; ///< 1 to 3; 0 is a separate file
};

/// Where the body lies in its block file; of no meaning for a separate file.
struct mzRecordData {
    std::int64_t FileOffsetBOF = 0;
    std::int64_t FileOffsetEOF = 0;
    std::int64_t BlockSize = 0;
    std::int64_t NumContBlocks = 0;
    std::int64_t CacheBlockFileNumber = 0;
};

/// Bytes of a metadata record before its URL.
inline constexpr std::int64_t kMetaDataHeader = 0x24;

struct mzRecordMetaData {
    std::int64_t Version = 0;
    std::int64_t MetaLocation = 0;
    std::int64_t FetchCount = 0;
    Date ActionDateUTC; ///< last fetched
    Date LastModified;
    Date ExpirationTime;
    std::int64_t DataSize = 0; ///< of the body, as it is stored
    std::int64_t URLSize = 0;
    std::int64_t MetaDataSize = 0;
    Bytes URLData;
    Bytes MetaData; ///< shorter than MetaDataSize where its file ends before
};

struct mzCacheRecord {
    mzBucket Bucket;
    mzRecordInfo BucketData;
    mzRecordInfo BucketMetaData;
    mzMapHeader header;
    mzRecordData RecordData;
    /// Not kept in the collection: read when its record's turn comes, so that a cache whose
    /// metadata claim any size is listed in little memory.
    std::optional<mzRecordMetaData> RecordMetaData;
};

/// In the order of the map. Without keys: a damaged map has the same hash number twice.
using mzCacheRecords = KeyedList<mzCacheRecord>;

} // namespace nv
