#include "base/Text.h"
#include "support/SqliteHistoryReading.h"
#include "time/DateFormat.h"
#include "unit/readers/NetAnalysisFixture.h"

#include <fmt/format.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

/// One line a record, so that a difference shows as one line.
std::string rowOf(const URLClass &record) {
    const std::vector<std::string> cells = {std::to_string(record.MapFileOffset),
                                            record.Status,
                                            isoUtc(record.ActionDateUTC),
                                            isoUtc(record.OtherDate),
                                            std::to_string(record.Visits),
                                            record.Typed ? "typed" : "",
                                            record.User,
                                            record.URL,
                                            record.host,
                                            record.URLParameters,
                                            record.CacheFolderName,
                                            record.CacheFileNameDecoded,
                                            record.CacheFileExists ? "exists" : "",
                                            record.HistoryVersion,
                                            replaceAll(record.MetaData, "\r\n", "\\r\\n"),
                                            record.Notes};
    return fmt::format("{}\n", fmt::join(cells, "\t"));
}

std::string contentOf(const fs::path &path) {
    const Bytes bytes = readWhole(path);
    return {bytes.begin(), bytes.end()};
}

struct NetAnalysisGolden : test::NetAnalysisFixture {
    /// All that a reading says, in the form of expected.tsv. What the library says of damage is
    /// logged as of low severity; its words change with its versions.
    std::string resultText() const {
        std::string text = fmt::format("@state\t{}\t{}\t{}\n", test::wordOf(result.state),
                                       result.notReached, result.reason);
        for (const auto &[reason, count] : result.passedOver)
            text += fmt::format("@passedOver\t{}\t{}\n", reason, count);
        for (const Failure &failure : log.entries)
            if (failure.severity != Severity::Low)
                text += fmt::format("@log\t{}\t{}\t{}\n", severityWord(failure.severity),
                                    failure.procedure, failure.message);
        text += "MapFileOffset\tStatus\tActionDateUTC\tOtherDate\tVisits\tTyped\tUser\tURL\thost\t"
                "URLParameters\tCacheFolderName\tCacheFileNameDecoded\tCacheFileExists\t"
                "HistoryVersion\tMetaData\tNotes\n";
        for (const URLClass &record : sink.records)
            text += rowOf(record);
        return replaceAll(text, file.parent_path().string() + "/", "");
    }
};

TEST_F(NetAnalysisGolden, casesReadAsTheyAreWrittenDown) {
    std::size_t cases = 0;
    for (const auto &entry : fs::directory_iterator(fs::path(NV_GOLDEN_DIR) / "netanalysis")) {
        SCOPED_TRACE(entry.path().filename().string());
        base = entry.path();
        file = entry.path() / "input" / "case.net";
        readAgain();
        EXPECT_EQ(resultText(), contentOf(entry.path() / "expected.tsv"));
        EXPECT_FALSE(contentOf(entry.path() / "case.md").empty());
        ++cases;
    }
    EXPECT_GE(cases, 7U);
}

} // namespace
} // namespace nv
