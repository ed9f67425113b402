// The bytes of a property list, as a history of Safari and as the headers of a cached file: both
// readers end, and the history's loses nothing without saying so.

#include "readers/ContentProbe.h"
#include "readers/safari/CacheResponse.h"
#include "readers/safari/History.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

struct StillClock final : nv::Clock {
    TimePoint now() const override { return {}; }
    std::chrono::minutes localOffset() const override { return {}; }
};

struct CountingSink final : nv::RecordSink {
    void save(nv::URLClass &) override { ++records; }
    std::uint64_t records = 0;
};

struct CountingLog final : nv::FailureLog {
    void write(const nv::Failure &) override { ++entries; }
    std::uint64_t entries = 0;
};

void require(bool condition) {
    if (!condition)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    nv::readCacheResponse(nv::ByteView({data, size}));
    const nv::test::TempFolder folder;
    nv::HistoryFile file;
    file.FullPath = folder.write("History.plist", {reinterpret_cast<const char *>(data), size});
    const nv::Evidence evidence(folder.path());
    nv::ContentProbe content;
    const StillClock clock;
    CountingSink sink;
    CountingLog log;
    nv::Unwatched task;
    nv::ReadContext context{file, evidence, content, clock, folder.path(), sink, log, task};
    const nv::ReadResult result = nv::ParseSafariHistoryFile(context);
    require((result.state == nv::ReadState::complete) == result.reason.empty());
    require(result.state == nv::ReadState::complete || log.entries > 0);
    require(result.state != nv::ReadState::failed || sink.records == 0);
    return 0;
}
