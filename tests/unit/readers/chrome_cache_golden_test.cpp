#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "readers/chrome/CacheBody.h"
#include "support/SqliteHistoryReading.h"
#include "time/DateFormat.h"
#include "unit/readers/ChromeCacheFixture.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {
namespace {

namespace fs = std::filesystem;

const fs::path kCases = fs::path(NV_GOLDEN_DIR) / "chrome-cache";

std::string contentOf(const fs::path &path) {
    const Bytes bytes = readWhole(path);
    return {bytes.begin(), bytes.end()};
}

/// MD5 of the body as it is stored.
std::string bodyOf(const URLClass &record, const fs::path &input) {
    const test::TempFolder scratch;
    BodyTarget target(scratch.path() / "body", kBodyInMemory);
    return fetchChromeBody(record, Evidence(input), target) ? md5Hex(target.take().raw()) : "-";
}

/// One line a record, so that a difference shows as one line.
std::string rowOf(const URLClass &record, const fs::path &input) {
    const std::vector<std::string> cells = {std::to_string(record.MapFileOffset),
                                            record.URL,
                                            isoUtc(record.ActionDateUTC),
                                            isoUtc(record.OtherDate),
                                            record.host,
                                            record.CacheFileName,
                                            std::to_string(record.RecordSize),
                                            std::to_string(record.MetaDataRecordOffset),
                                            record.DataBlockFile,
                                            std::to_string(record.DataBlockFileOffset),
                                            std::to_string(record.CacheFileSize),
                                            bodyOf(record, input)};
    return fmt::format("{}\n", fmt::join(cells, "\t"));
}

/// All that a reading says, in the form of expected.tsv.
std::string resultOf(const test::ChromeCacheReading &reading, const fs::path &input) {
    std::string text = fmt::format("@state\t{}\t{}\t{}\n", test::wordOf(reading.result.state),
                                   reading.result.notReached, reading.result.reason);
    for (const auto &[reason, count] : reading.result.passedOver)
        text += fmt::format("@passedOver\t{}\t{}\n", reason, count);
    for (const Failure &failure : reading.log.entries)
        text += fmt::format("@log\t{}\t{}\t{}\n", severityWord(failure.severity), failure.procedure,
                            failure.message);
    text += "MapFileOffset\tURL\tActionDateUTC\tOtherDate\thost\tCacheFileName\tRecordSize\t"
            "MetaDataRecordOffset\tDataBlockFile\tDataBlockFileOffset\tCacheFileSize\tMD5\n";
    for (const URLClass &record : reading.records())
        text += rowOf(record, input);
    return replaceAll(text, input.string() + "/", "");
}

TEST(ChromeCacheGolden, casesReadAsTheyAreWrittenDown) {
    std::size_t cases = 0;
    for (const auto &entry : fs::directory_iterator(kCases)) {
        SCOPED_TRACE(entry.path().filename().string());
        const fs::path input = entry.path() / "input";
        test::ChromeCacheReading reading;
        reading.read(input / "index", input);
        EXPECT_EQ(resultOf(reading, input), contentOf(entry.path() / "expected.tsv"));
        EXPECT_FALSE(contentOf(entry.path() / "case.md").empty());
        ++cases;
    }
    EXPECT_GE(cases, 7U);
}

} // namespace
} // namespace nv
