#pragma once

#include "fuzz/Reading.h"

#include <cstdint>
#include <string>

namespace nv::fuzz {

/// Many entries may lead to one long record: a task like an examiner's gives up in the end.
struct Patience final : TaskMonitor {
    void describe(const TaskHeading &) override {}
    bool advance(double fraction) override {
        require(fraction >= 0 && fraction <= 1);
        return left-- > 0;
    }
    bool wantsStep() const override { return true; }
    void show(const TaskStep &) override {}
    int left = 20'000;
};

/// A record lies in the file and has no more text than the file can hold.
struct CheckingSink final : RecordSink {
    explicit CheckingSink(std::size_t bytes) : size(bytes) {}
    void save(UrlRecord &record) override {
        require(static_cast<std::uint64_t>(record.MapFileOffset) < size);
        require(record.URLRawValue.size() <= 3 * size && !record.CacheFileExists);
        ++records;
    }
    std::size_t size;
    std::uint64_t records = 0;
};

/// One reading of a file of index records: nothing is thrown, and nothing is lost without a word.
/// Returns the number of records.
inline std::uint64_t readRecords(ReadResult (*reader)(ReadContext &, ByteView), ByteView bytes,
                                 HistoryFileType type) {
    const Evidence evidence("");
    const StillClock clock;
    CountingLog log;
    Patience task;
    ContentProbe content;
    CheckingSink sink(bytes.size());
    HistoryFile file;
    file.fullPath = "/nowhere/index.dat";
    file.fileParentPath = "/nowhere";
    file.historyFileType = type;
    ReadContext ctx{file, evidence, content, clock, {}, sink, log, task};
    const ReadResult result = reader(ctx, bytes);
    require(result.state != ReadState::failed || sink.records == 0);
    if (result.state != ReadState::cancelled)
        require((result.state == ReadState::complete) == result.reason.empty());
    require(result.reason.empty() || log.entries > 0);
    return sink.records;
}

/// `sound` with bytes of the input written over it. The input is a list of places (three bytes) and
/// what to write there (four bytes).
inline std::string damaged(std::string sound, const std::uint8_t *data, std::size_t size) {
    for (; size >= 7; data += 7, size -= 7) {
        const std::size_t place =
            (std::size_t{data[0]} | std::size_t{data[1]} << 8 | std::size_t{data[2]} << 16) %
            (sound.size() - 4);
        for (std::size_t i = 0; i < 4; ++i)
            sound[place + i] = static_cast<char>(data[3 + i]);
    }
    return sound;
}

} // namespace nv::fuzz
