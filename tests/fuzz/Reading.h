#pragma once

#include "readers/ContentProbe.h"
#include "readers/Reader.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>

namespace nv::fuzz {

inline void require(bool condition) {
    if (!condition)
        std::abort();
}

struct StillClock final : Clock {
    TimePoint now() const override { return {}; }
    std::chrono::minutes localOffset() const override { return std::chrono::minutes(60); }
};

struct CountingLog final : FailureLog {
    void write(const Failure &) override { ++entries; }
    std::uint64_t entries = 0;
};

struct CountingSink final : RecordSink {
    void save(UrlRecord &) override { ++records; }
    std::uint64_t records = 0;
};

/// All that a reader needs for one file, with nobody watching. Refers to what it is given.
struct Reading {
    Reading(const std::filesystem::path &path, const Evidence &evidence, RecordSink &sink,
            const std::filesystem::path &scratch = {})
        : context{file, evidence, content, clock, scratch, sink, log, task} {
        file.fullPath = path;
        file.fileParentPath = path.parent_path();
    }
    /// What ended early says why, and a file that failed gave no records.
    void requireNothingLost(const ReadResult &result, std::uint64_t records) const {
        require((result.state == ReadState::complete) == result.reason.empty());
        require(result.state != ReadState::failed || records == 0);
    }

    HistoryFile file;
    ContentProbe content;
    StillClock clock;
    CountingLog log;
    Unwatched task;
    ReadContext context;
};

} // namespace nv::fuzz
