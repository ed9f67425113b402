#pragma once

#include "readers/ContentProbe.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <string>

namespace nv::test {

/// One reading of an index by its reader, with all that it says.
struct IndexReading {
    HistoryFile file;
    FixedClock clock;
    MemorySink sink;
    MemoryLog log;
    ReadResult result;
    bool deleted = false;

    explicit IndexReading(HistoryFileType type = HistoryFileType::ieHistory);

    /// Reads bytes as a file of that path, which need not exist.
    IndexReading &readBytes(const std::string &bytes,
                            const std::filesystem::path &path = "/evidence/index.dat");
    /// Reads the file at `path`, with `base` as the base folder of the evidence.
    IndexReading &readFile(const std::filesystem::path &path, const std::filesystem::path &base,
                           TaskMonitor &task);
    IndexReading &readFile(const std::filesystem::path &path, const std::filesystem::path &base);
    const std::vector<URLClass> &records() const { return sink.records; }

  private:
    void name(const std::filesystem::path &path);
};

} // namespace nv::test
