// A small sound index.dat with bytes of the input written over it, read as every kind: nothing may
// be thrown, and a record lies in the file and has a URL's worth of bytes at most.

#include "readers/ContentProbe.h"
#include "readers/ie/Index.h"
#include "support/builders/IndexDat.h"

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

std::string soundIndex() {
    nv::test::IndexDat index;
    index.folder("ABCDEFGH").folder("IJKLMNOP");
    for (const char *url : {"Visited: user@http://one.example/", "http://two.example/a?b=c"}) {
        nv::test::IndexRecord record;
        record.url = url;
        record.firstDate = nv::test::fileTime(2011, 3, 1);
        record.fileName = "page[1].htm";
        record.headers = "HTTP/1.1 200 OK\r\n\r\n";
        record.folder = 1;
        index.add(record);
    }
    index.addRedirect("http://three.example/");
    return index.bytes();
}

/// The input is a list of places (three bytes) and what to write there (four bytes).
std::string damagedIndex(const std::uint8_t *data, std::size_t size) {
    static const std::string sound = soundIndex();
    std::string bytes = sound;
    for (; size >= 7; data += 7, size -= 7) {
        const std::size_t place =
            (std::size_t{data[0]} | std::size_t{data[1]} << 8 | std::size_t{data[2]} << 16) %
            (bytes.size() - 4);
        for (std::size_t i = 0; i < 4; ++i)
            bytes[place + i] = static_cast<char>(data[3 + i]);
    }
    return bytes;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t input) {
    const std::string index = damagedIndex(data, input);
    const nv::ByteView bytes = nv::viewOf(index);
    const std::size_t size = bytes.size();
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
