// The bytes of a history as a file of Chrome and as one of Firefox: the readers end, leave nothing
// behind in the scratch folder, and lose nothing without saying so.
//   input = log:u8 database     with an odd first byte the second half is the database's log

#include "base/Files.h"
#include "readers/ContentProbe.h"
#include "readers/chrome/History.h"
#include "readers/firefox/Places.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

struct StillClock final : nv::Clock {
    TimePoint now() const override { return {}; }
    std::chrono::minutes localOffset() const override { return {}; }
};

struct CountingSink final : nv::RecordSink {
    void save(nv::URLClass &record) override {
        ++records;
        textBytes += record.URL.size() + record.WebpageTitle.size();
    }
    std::uint64_t records = 0;
    std::uint64_t textBytes = 0;
};

struct CountingLog final : nv::FailureLog {
    void write(const nv::Failure &) override { ++entries; }
    std::uint64_t entries = 0;
};

void require(bool condition) {
    if (!condition)
        std::abort();
}

void read(nv::ReadResult (*reader)(nv::ReadContext &), const nv::test::TempFolder &folder) {
    const nv::Evidence evidence(folder.path() / "evidence");
    nv::HistoryFile file;
    file.FullPath = folder.path() / "evidence" / "history";
    nv::ContentProbe content;
    const StillClock clock;
    CountingSink sink;
    CountingLog log;
    nv::Unwatched task;
    nv::ReadContext context{file, evidence, content, clock, folder.path() / "scratch",
                            sink, log,      task};
    const nv::ReadResult result = reader(context);
    require(std::filesystem::is_empty(folder.path() / "scratch"));
    require((result.state == nv::ReadState::complete) == result.reason.empty());
    require(result.state == nv::ReadState::complete || log.entries > 0);
    require(result.state != nv::ReadState::failed || sink.records == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char *>(data), size);
    if (input.empty())
        return 0;
    const bool hasLog = input[0] % 2 != 0;
    const std::string_view bytes = input.substr(1);
    const std::size_t end = hasLog ? bytes.size() / 2 : bytes.size();
    const nv::test::TempFolder folder;
    folder.write("evidence/history", bytes.substr(0, end));
    if (hasLog)
        folder.write("evidence/history-wal", bytes.substr(end));
    std::filesystem::create_directory(folder.path() / "scratch");
    read(nv::ParseChromeHistoryFile, folder);
    read(nv::ParseFirefox3HistoryFile, folder);
    return 0;
}
