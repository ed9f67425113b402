// The bytes after the header of a Macintosh cache, with a header that fits: the reading ends, its
// bodies lie in the file, and nothing is lost without a word.

#include "fuzz/Reading.h"
#include "readers/mac/Cache.h"
#include "support/builders/MacCache.h"

#include <cstdint>

namespace {

using nv::fuzz::require;

struct CheckingSink final : nv::RecordSink {
    explicit CheckingSink(std::size_t bytes) : size(bytes) {}
    void save(nv::UrlRecord &record) override {
        const auto end =
            static_cast<std::uint64_t>(record.DataBlockFileOffset + record.CacheFileSize);
        require(!record.CacheFileExists || end <= size);
        require(static_cast<std::uint64_t>(record.MapFileOffset) < size && ++records <= size / 8);
    }
    std::size_t size;
    std::size_t records = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    nv::test::MacCache cache;
    cache.raw(nv::ByteView({data, size}).raw());
    const std::string bytes = cache.bytes();
    const nv::Evidence evidence("");
    CheckingSink sink(bytes.size());
    nv::fuzz::Reading reading("/nowhere/cache", evidence, sink);
    const nv::ReadResult result = nv::readMACIECache(reading.context, nv::viewOf(bytes));
    require((result.state == nv::ReadState::complete) == result.reason.empty());
    require(reading.log.entries == 0); // its caller writes what the result says
    return 0;
}
