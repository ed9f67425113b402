#pragma once

#include "readers/ContentProbe.h"
#include "readers/Reader.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <filesystem>

namespace nv::test {

/// One reading of a file, with all that the reader says.
struct FileReading {
    using ReadFunction = ReadResult (*)(ReadContext &);

    const std::vector<UrlRecord> &read(ReadFunction reader, const std::filesystem::path &file,
                                       TaskMonitor &watcher) {
        const Evidence evidence(file.parent_path());
        ContentProbe content;
        HistoryFile history;
        history.sourceFileID = SourceFileId{7};
        history.fullPath = file;
        history.origin = origin;
        sink.records.clear();
        ReadContext context{history, evidence, content, clock, scratch.path(), sink, log, watcher};
        result = reader(context);
        origin = history.origin;
        return sink.records;
    }
    const std::vector<UrlRecord> &read(ReadFunction reader, const std::filesystem::path &file) {
        return read(reader, file, task);
    }

    FixedClock clock;
    MemorySink sink;
    MemoryLog log;
    MemoryTask task;
    TempFolder scratch;
    Origin origin;
    ReadResult result;
};

} // namespace nv::test
