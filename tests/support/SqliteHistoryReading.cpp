#include "support/SqliteHistoryReading.h"

#include "base/Files.h"

namespace nv::test {

namespace fs = std::filesystem;

SqliteHistoryReading &SqliteHistoryReading::read(ReadFunction reader, const fs::path &file) {
    return read(reader, file, task);
}

SqliteHistoryReading &SqliteHistoryReading::read(ReadFunction reader, const fs::path &file,
                                                 TaskMonitor &watcher) {
    const Evidence evidence(file.parent_path());
    ContentProbe content;
    HistoryFile history;
    history.sourceFileID = SourceFileId{7};
    history.fullPath = file;
    history.version = "1.0";
    ReadContext context{history, evidence, content, clock,       scratch.path(), sink,
                        log,     watcher,  deleted, classicOnly, secrets};
    result = reader(context);
    origin = history.origin;
    return *this;
}

std::map<std::string, std::string> contentsOf(const fs::path &folder) {
    std::map<std::string, std::string> contents;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
        std::string &bytes = contents[entry.path().string()];
        if (entry.is_regular_file())
            for (const std::uint8_t byte : readWhole(entry.path()))
                bytes.push_back(static_cast<char>(byte));
    }
    return contents;
}

std::string wordOf(ReadState state) {
    switch (state) {
    case ReadState::complete:
        return "complete";
    case ReadState::cancelled:
        return "cancelled";
    case ReadState::cutShort:
        return "cutShort";
    case ReadState::notReadYet:
        return "notReadYet";
    case ReadState::failed:
        return "failed";
    }
    return {};
}

} // namespace nv::test
