// The bytes of a cache of Safari: the reader ends, leaves nothing behind in the scratch folder, and
// loses nothing without saying so; bodies are fetched or are not there.
//   input = body:u8 database     with an odd first byte a file lies where bodies may be kept

#include "base/Files.h"
#include "readers/ContentProbe.h"
#include "readers/safari/Cache.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

struct StillClock final : nv::Clock {
    TimePoint now() const override { return {}; }
    std::chrono::minutes localOffset() const override { return {}; }
};

void require(bool condition) {
    if (!condition)
        std::abort();
}

/// Reads each body, as an import does, and keeps the first records.
struct BodySink final : nv::RecordSink {
    void save(nv::URLClass &record) override {
        constexpr std::size_t kKept = 3;
        require(record.CacheFileExists == !record.RunTimeTempFilePath.empty());
        if (record.CacheFileExists)
            require(nv::readWhole(record.RunTimeTempFilePath).size() ==
                    static_cast<std::size_t>(record.CacheFileSize) + 1);
        record.URLID = nv::UrlId{1};
        if (first.size() < kKept)
            first.push_back(record);
        ++records;
    }
    std::vector<nv::URLClass> first;
    std::uint64_t records = 0;
};

struct CountingLog final : nv::FailureLog {
    void write(const nv::Failure &) override { ++entries; }
    std::uint64_t entries = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char *>(data), size);
    if (input.empty())
        return 0;
    const nv::test::TempFolder folder;
    nv::HistoryFile file;
    file.FullPath = folder.write("evidence/Cache.db", input.substr(1));
    if (input[0] % 2 != 0)
        folder.write("evidence/fsCachedData/4F2A", "<html>kept</html>");
    const std::filesystem::path scratch = folder.path() / "scratch";
    std::filesystem::create_directory(scratch);
    const nv::Evidence evidence(folder.path() / "evidence");
    nv::ContentProbe content;
    const StillClock clock;
    BodySink sink;
    CountingLog log;
    nv::Unwatched task;
    nv::ReadContext context{file, evidence, content, clock, scratch, sink, log, task};
    const nv::ReadResult result = nv::ParseSafariCacheFile(context);
    require(std::filesystem::is_empty(scratch));
    require((result.state == nv::ReadState::complete) == result.reason.empty());
    require(result.state == nv::ReadState::complete || log.entries > 0);
    require(result.state != nv::ReadState::failed || sink.records == 0);
    for (nv::URLClass &record : sink.first)
        nv::ExtractSafariCacheFile(record, "", {evidence, scratch, log});
    return 0;
}
