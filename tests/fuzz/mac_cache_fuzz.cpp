// The bytes behind the header of a Macintosh cache, with a header that fits: the reading ends, its
// bodies lie in the file, and nothing is lost without a word.

#include "readers/ContentProbe.h"
#include "readers/mac/Cache.h"
#include "support/builders/MacCache.h"

#include <cstdint>
#include <cstdlib>

namespace {

struct StillClock final : nv::Clock {
    TimePoint now() const override { return {}; }
    std::chrono::minutes localOffset() const override { return {}; }
};

struct NoLog final : nv::FailureLog {
    void write(const nv::Failure &) override { std::abort(); }
};

struct CheckingSink final : nv::RecordSink {
    explicit CheckingSink(std::size_t bytes) : size(bytes) {}
    void save(nv::URLClass &record) override {
        const auto end =
            static_cast<std::uint64_t>(record.DataBlockFileOffset + record.CacheFileSize);
        if (record.CacheFileExists && end > size)
            std::abort();
        if (static_cast<std::uint64_t>(record.MapFileOffset) >= size || ++records > size / 8)
            std::abort();
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
    const StillClock clock;
    NoLog log;
    nv::HistoryFile file;
    file.FullPath = "/nowhere/cache";
    nv::ContentProbe content;
    nv::Unwatched task;
    CheckingSink sink(bytes.size());
    nv::ReadContext ctx{file, evidence, content, clock, {}, sink, log, task};
    const nv::ReadResult result = nv::readMACIECache(ctx, nv::viewOf(bytes));
    if ((result.state == nv::ReadState::complete) != result.reason.empty())
        std::abort();
    return 0;
}
