// The bytes of a cache of Safari: the reader ends, leaves nothing behind in the scratch folder, and
// loses nothing without saying so; bodies are fetched or are not there.
//   input = body:u8 database     with an odd first byte a file lies where bodies may be kept

#include "base/Files.h"
#include "fuzz/Reading.h"
#include "readers/safari/Cache.h"
#include "support/TempFolder.h"

#include <cstdint>
#include <string_view>

namespace {

using nv::fuzz::require;

/// Reads each body, as an import does, and keeps the first records.
struct BodySink final : nv::RecordSink {
    void save(nv::UrlRecord &record) override {
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
    std::vector<nv::UrlRecord> first;
    std::uint64_t records = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char *>(data), size);
    if (input.empty())
        return 0;
    const nv::test::TempFolder folder;
    const auto file = folder.write("evidence/Cache.db", input.substr(1));
    if (input[0] % 2 != 0)
        folder.write("evidence/fsCachedData/4F2A", "<html>kept</html>");
    const std::filesystem::path scratch = folder.path() / "scratch";
    std::filesystem::create_directory(scratch);
    const nv::Evidence evidence(folder.path() / "evidence");
    BodySink sink;
    nv::fuzz::Reading reading(file, evidence, sink, scratch);
    const nv::ReadResult result = nv::parseSafariCacheFile(reading.context);
    require(std::filesystem::is_empty(scratch));
    reading.requireNothingLost(result, sink.records);
    for (nv::UrlRecord &record : sink.first)
        if (const auto content = nv::contentOf(record, {evidence, scratch, reading.log}))
            require(content->parent_path() == scratch);
    return 0;
}
