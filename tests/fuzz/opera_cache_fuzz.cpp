// The input is the fields of a cache index, behind its header: nothing may be thrown, and every
// record lies in the file and has texts of it.

#include "readers/ContentProbe.h"
#include "readers/opera/Cache.h"

#include <cstdint>
#include <cstdlib>
#include <string>

namespace {

struct StillClock final : nv::Clock {
    TimePoint now() const override { return {}; }
    std::chrono::minutes localOffset() const override { return std::chrono::minutes(60); }
};

struct NoLog final : nv::FailureLog {
    void write(const nv::Failure &) override {}
};

struct CheckingSink final : nv::RecordSink {
    explicit CheckingSink(std::size_t bytes) : size(bytes) {}
    void save(nv::URLClass &record) override {
        const auto offset = static_cast<std::uint64_t>(record.MapFileOffset);
        // A byte of the file is three in memory at most; no cached file is there.
        if (offset < next || offset >= size || record.URL.empty() || record.URL.size() > 3 * size ||
            record.CacheFileSize != 0 ||
            ("/" + record.CacheFileRelativePath + "/").find("/../") != std::string::npos)
            std::abort();
        next = offset + 1;
    }
    std::size_t size;
    std::uint64_t next = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string bytes = std::string(15, '\0') + std::string(data, data + size);
    const nv::Evidence evidence("");
    const StillClock clock;
    NoLog log;
    nv::Unwatched task;
    nv::ContentProbe content;
    nv::HistoryFile file;
    file.FullPath = "/nowhere/dcache4.url";
    CheckingSink sink(bytes.size());
    nv::ReadContext ctx{file, evidence, content, clock, {}, sink, log, task};
    nv::readOperaCache(ctx, nv::viewOf(bytes));
    return 0;
}
