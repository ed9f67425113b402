#include "base/Files.h"
#include "base/Text.h"
#include "support/MacCacheReading.h"
#include "support/SqliteHistoryReading.h"
#include "time/DateFormat.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

/// One line a record, so that a difference shows as one line.
std::string rowOf(const URLClass &record) {
    const std::vector<std::string> cells = {std::to_string(record.MapFileOffset),
                                            record.URL,
                                            record.host,
                                            record.MIMEType,
                                            isoUtc(record.ActionDateUTC),
                                            isoUtc(record.OtherDate),
                                            std::to_string(record.Visits),
                                            std::to_string(record.DataBlockFileOffset),
                                            std::to_string(record.CacheFileSize),
                                            record.CacheFileExists ? "exists" : ""};
    return fmt::format("{}\n", fmt::join(cells, "\t"));
}

/// All that a reading says, in the form of expected.tsv.
std::string resultOf(const test::MacCacheReading &reading) {
    std::string text = fmt::format("@state\t{}\t{}\t{}\n", test::wordOf(reading.result.state),
                                   reading.result.notReached, reading.result.reason);
    for (const auto &[reason, count] : reading.result.passedOver)
        text += fmt::format("@passedOver\t{}\t{}\n", reason, count);
    for (const Failure &failure : reading.log.entries)
        text += fmt::format("@log\t{}\n", failure.message);
    text += "MapFileOffset\tURL\thost\tMIMEType\tActionDateUTC\tOtherDate\tVisits\t"
            "DataBlockFileOffset\tCacheFileSize\tCacheFileExists\n";
    for (const URLClass &record : reading.records())
        text += rowOf(record);
    return text;
}

std::string contentOf(const fs::path &path) {
    const Bytes bytes = readWhole(path);
    return {bytes.begin(), bytes.end()};
}

TEST(MacCacheGolden, casesReadAsTheyAreWrittenDown) {
    std::size_t cases = 0;
    for (const auto &entry : fs::directory_iterator(fs::path(NV_GOLDEN_DIR) / "mac-cache")) {
        SCOPED_TRACE(entry.path().filename().string());
        test::MacCacheReading reading;
        reading.readFile(entry.path() / "input" / "cache.waf");
        EXPECT_EQ(resultOf(reading), contentOf(entry.path() / "expected.tsv"));
        EXPECT_FALSE(contentOf(entry.path() / "case.md").empty());
        ++cases;
    }
    EXPECT_GE(cases, 5U);
}

} // namespace
} // namespace nv
