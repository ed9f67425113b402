#pragma once

#include "base/ByteView.h"
#include "base/Clock.h"
#include "base/KeyedList.h"
#include "base/TaskMonitor.h"
#include "readers/Reader.h"
#include "time/Date.h"

#include <cstdint>
#include <functional>
#include <string>

namespace nv {

/// One entry of the cache of Internet Explorer for Macintosh. Offsets are from the start of the
/// cache file; 0 stands for a block that the entry doesn't have.
struct MacCacheEntry {
    std::uint64_t recordOffset = 0; ///< of the entry's first block
    std::uint64_t urlOffset = 0;    ///< of the text
    std::uint64_t mimeOffset = 0;   ///< of the text
    std::uint64_t endOffset = 0;    ///< of its block "CATE", which has dates and size
    std::uint64_t dataFileOffset = 0;
    std::uint32_t recordFileOffset = 0; ///< what the entry says of itself
    std::uint32_t dataSize = 0;
    std::int32_t fetchCount = 0;
    Date firstVisitDate;
    Date lastVisitDate;
    std::string url;
    std::string mime;
    std::string bSrl;
    std::string hntt;
    std::string hvrs;
};

using MacCacheEntries = KeyedList<MacCacheEntry>;

/// The whole cache file, and what is found in it.
class MacCacheFile {
  public:
    using TakeURL = std::function<void(const MacCacheEntry &)>;

    MacCacheEntries macURLs;

    /// Fills `macURLs` and hands on each entry as it is found. A file whose size isn't the one in
    /// its header gives none. A cancelled reading leaves what was collected.
    ReadResult readMACIECache(ByteView file, TaskMonitor &task, const TakeURL &take);
};

/// Where the numbers of the block "CATE" stand, in bytes from its tag; 4 bytes each, big-endian.
namespace macend {
inline constexpr std::uint64_t kFirstVisit = 0x14;
inline constexpr std::uint64_t kLastVisit = 0x18;
inline constexpr std::uint64_t kDataSize = 0x20;
inline constexpr std::uint64_t kBytes = 0x24;
} // namespace macend

// The clock of the format.

/// A value above 0x7FFFFFFF is held at that; a negative one is an unsigned number of 32 bits.
std::int64_t sLong2ULong(std::int64_t value);
/// A stamp in seconds since 1904, as a signed number of 32 bits. The five hours by which the
/// writer's clock was taken to be off come on top: 1970 begins at 2082862800.
Date timeStampToDate(std::int64_t value);
/// The date of a stamp as it stands in a file; none for one of before 1970.
Date macStampToDate(std::uint32_t stamp);
/// Seconds since 1970.
Date convertSecondsToDate(std::int64_t value);

} // namespace nv
