#pragma once

#include "readers/ContentProbe.h"
#include "readers/Reader.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <filesystem>
#include <map>
#include <string>

namespace nv::test {

/// One reading of a history in an SQLite file, with all that the reader says.
struct SqliteHistoryReading {
    using ReadFunction = ReadResult (*)(ReadContext &);

    FixedClock clock;
    MemorySink sink;
    MemoryLog log;
    MemoryTask task;
    TempFolder scratch;
    ReadResult result;
    Origin origin; ///< what the reader told of it
    bool deleted = false;
    bool classicOnly = false;
    bool secrets = false;

    SqliteHistoryReading &read(ReadFunction reader, const std::filesystem::path &file);
    SqliteHistoryReading &read(ReadFunction reader, const std::filesystem::path &file,
                               TaskMonitor &watcher);
    const std::vector<UrlRecord> &records() const { return sink.records; }
};

/// The bytes of every file below a folder, by path: evidence must be the same afterwards.
std::map<std::string, std::string> contentsOf(const std::filesystem::path &folder);

/// "complete", "cancelled", "cutShort" or "failed".
std::string wordOf(ReadState state);

} // namespace nv::test
