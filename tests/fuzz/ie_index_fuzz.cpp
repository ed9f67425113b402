// An index.dat made of any bytes, read as every kind: nothing may be thrown, and a record lies in
// the file and has a URL's worth of bytes at most.

#include "readers/ContentProbe.h"
#include "readers/ie/Index.h"

#include <cstdint>
#include <cstdlib>

namespace {

struct StillClock final : nv::Clock {
    TimePoint now() const override { return {}; }
    std::chrono::minutes localOffset() const override { return std::chrono::minutes(60); }
};

struct NoLog final : nv::FailureLog {
    void write(const nv::Failure &) override {}
};

/// Several entries may lead to one long record: a task like an examiner's gives up in the end.
struct Patience final : nv::TaskMonitor {
    void describe(const nv::TaskHeading &) override {}
    bool advance(double fraction) override { return fraction <= 1 && left-- > 0; }
    bool wantsStep() const override { return false; }
    void show(const nv::TaskStep &) override {}
    int left = 20'000;
};

struct CheckingSink final : nv::RecordSink {
    explicit CheckingSink(std::size_t bytes) : size(bytes) {}
    void save(nv::URLClass &record) override {
        const auto offset = static_cast<std::uint64_t>(record.MapFileOffset);
        if (offset >= size || record.URLRawValue.size() > 3 * size || record.CacheFileExists)
            std::abort();
    }
    std::size_t size;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const nv::ByteView bytes(std::span(data, size));
    const nv::Evidence evidence("");
    const StillClock clock;
    NoLog log;
    for (const int type : {0, 1, 3, 4, 13}) {
        nv::HistoryFile file;
        file.FullPath = "/nowhere/index.dat";
        file.FileParentPath = "/nowhere";
        file.HistoryFileType = nv::HistoryFileType{static_cast<std::int16_t>(type)};
        nv::ContentProbe content;
        Patience task;
        CheckingSink sink(size);
        nv::ReadContext ctx{file, evidence, content, clock, {}, sink, log, task};
        const nv::ReadResult result = nv::readIEIndex(ctx, bytes);
        if (result.state == nv::ReadState::failed)
            std::abort();
    }
    return 0;
}
