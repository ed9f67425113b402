#include "base/Files.h"
#include "base/Text.h"
#include "readers/safari/Cache.h"
#include "readers/safari/History.h"
#include "support/SqliteHistoryReading.h"
#include "time/DateFormat.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::SqliteHistoryReading;

struct Format {
    const char *key; ///< the folder of its cases
    const char *file;
    SqliteHistoryReading::ReadFunction read;
};

/// One line a record, so that a difference shows as one line.
std::string rowOf(const URLClass &record) {
    const std::vector<std::string> cells = {std::to_string(record.Reference_ID),
                                            record.Status,
                                            isoUtc(record.ActionDateUTC),
                                            isoUtc(record.OtherDate),
                                            std::to_string(record.Visits),
                                            record.URL,
                                            record.URLRawValue,
                                            record.host,
                                            record.URLParameters,
                                            record.WebpageTitle,
                                            record.MIMEType,
                                            record.IsWebPage ? "page" : "",
                                            std::to_string(record.CacheFileSize),
                                            record.CacheFileExists ? "there" : ""};
    return fmt::format("{}\n", fmt::join(cells, "\t"));
}

/// All that a reading says, in the form of expected.tsv.
std::string resultOf(const SqliteHistoryReading &reading, const fs::path &input) {
    std::string text = fmt::format("@state\t{}\t{}\t{}\n", test::wordOf(reading.result.state),
                                   reading.result.notReached, reading.result.reason);
    for (const auto &[reason, count] : reading.result.passedOver)
        text += fmt::format("@passedOver\t{}\t{}\n", reason, count);
    for (const Failure &failure : reading.log.entries)
        text += fmt::format("@log\t{}\t{}\t{}\n", severityWord(failure.severity), failure.procedure,
                            failure.message);
    text += "Reference_ID\tStatus\tActionDateUTC\tOtherDate\tVisits\tURL\tURLRawValue\thost\t"
            "URLParameters\tWebpageTitle\tMIMEType\tIsWebPage\tCacheFileSize\tCacheFileExists\n";
    for (const URLClass &record : reading.records())
        text += rowOf(record);
    return replaceAll(text, input.string() + "/", "");
}

std::string contentOf(const fs::path &path) {
    const Bytes bytes = readWhole(path);
    return {bytes.begin(), bytes.end()};
}

class SafariGolden : public testing::TestWithParam<Format> {};

TEST_P(SafariGolden, casesReadAsTheyAreWrittenDown) {
    std::size_t cases = 0;
    for (const auto &entry : fs::directory_iterator(fs::path(NV_GOLDEN_DIR) / GetParam().key)) {
        SCOPED_TRACE(entry.path().filename().string());
        const fs::path input = entry.path() / "input";
        SqliteHistoryReading reading;
        reading.read(GetParam().read, input / GetParam().file);
        EXPECT_EQ(resultOf(reading, input), contentOf(entry.path() / "expected.tsv"));
        EXPECT_FALSE(contentOf(entry.path() / "case.md").empty());
        ++cases;
    }
    EXPECT_GE(cases, 5U);
}

INSTANTIATE_TEST_SUITE_P(
    Safari, SafariGolden,
    testing::Values(Format{"safari-cache", "Cache.db", ParseSafariCacheFile},
                    Format{"safari-history", "History.plist", ParseSafariHistoryFile}),
    [](const auto &format) { return format.index == 0 ? "Cache" : "History"; });

} // namespace
} // namespace nv
