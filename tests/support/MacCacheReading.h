#pragma once

#include "readers/mac/Cache.h"
#include "support/TestDoubles.h"

#include <string>
#include <vector>

namespace nv::test {

/// One reading of a Macintosh cache, with all that the reader says.
struct MacCacheReading {
    HistoryFile file;
    FixedClock clock;
    MemorySink sink;
    MemoryLog log;
    ReadResult result;
    bool deleted = false;

    /// Reads bytes as a file of that path, which need not exist.
    MacCacheReading &readBytes(const std::string &bytes, TaskMonitor &task);
    MacCacheReading &readBytes(const std::string &bytes);
    /// Reads the file, in whose folder the evidence lies.
    MacCacheReading &readFile(const std::filesystem::path &path);
    const std::vector<UrlRecord> &records() const { return sink.records; }
};

} // namespace nv::test
