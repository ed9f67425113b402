#include "base/Files.h"
#include "base/Text.h"
#include "readers/ContentProbe.h"
#include "readers/Registry.h"
#include "support/SqliteHistoryReading.h"
#include "support/TestDoubles.h"
#include "time/DateFormat.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace nv {
namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path &path) {
    const Bytes bytes = readWhole(path);
    return {bytes.begin(), bytes.end()};
}

int numberIn(std::string_view text) {
    return std::stoi(std::string(text));
}

/// The case's first line: the type of the file, the machine's offset from UTC in minutes, and where
/// the file lies below "input".
struct Given {
    HistoryFileType type;
    std::chrono::minutes offset;
    fs::path file;
};

Given givenBy(std::string_view firstLine) {
    const auto words = split(firstLine, '\t');
    return {HistoryFileType{static_cast<std::int16_t>(numberIn(words.at(1)))},
            std::chrono::minutes(numberIn(words.at(2))), fs::path(words.at(3))};
}

/// Without a zone: some of the dates are in that of the machine.
std::string shown(Date date) {
    return formatDate(date, "yyyy-mm-dd hh:nn:ss");
}

/// One line a record, so that a difference shows as one line. The dates that the file system gives
/// to loose files are left out.
std::string rowOf(const URLClass &record) {
    const std::vector<std::string> cells = {std::to_string(record.MapFileOffset),
                                            "[" + record.Status + "]",
                                            record.cacheType,
                                            record.Action,
                                            record.URL,
                                            record.URLRawValue,
                                            record.host,
                                            record.User,
                                            shown(record.ActionDateUTC),
                                            shown(record.OtherDate),
                                            record.OtherDateMeaning,
                                            shown(record.ExpiryDate),
                                            std::to_string(record.Visits),
                                            std::to_string(record.RecordSize),
                                            record.Links,
                                            record.HistoryVersion,
                                            record.CacheFolderName,
                                            record.CacheFileName,
                                            record.CacheFileRelativePath,
                                            record.CacheFileExists ? "exists" : "",
                                            std::to_string(record.CacheFileSize),
                                            record.Category,
                                            record.WebpageTitle,
                                            record.MetaData};
    return fmt::format("{}\n", fmt::join(cells, "\t"));
}

constexpr const char *kHeadLine =
    "MapFileOffset\tStatus\tcacheType\tAction\tURL\tURLRawValue\thost\tUser\tActionDateUTC\t"
    "OtherDate\tOtherDateMeaning\tExpiryDate\tVisits\tRecordSize\tLinks\tHistoryVersion\t"
    "CacheFolderName\tCacheFileName\tCacheFileRelativePath\tCacheFileExists\tCacheFileSize\t"
    "Category\tWebpageTitle\tMetaData\n";

/// All that the reading of a case says, in the form of expected.tsv.
std::string readingOf(const Given &given, const fs::path &input) {
    HistoryFile file;
    file.HistoryFileType = given.type;
    file.FullPath = input / given.file;
    const Evidence evidence(input);
    ContentProbe content;
    test::FixedClock clock;
    clock.offset = given.offset;
    test::MemorySink sink;
    test::MemoryLog log;
    Unwatched task;
    ReadContext ctx{file, evidence, content, clock, {}, sink, log, task};
    const ReadResult result = readerFor(given.type)->read(ctx);
    std::string text = fmt::format("@state\t{}\t{}\t{}\n", test::wordOf(result.state),
                                   result.notReached, result.reason);
    for (const auto &[reason, count] : result.passedOver)
        text += fmt::format("@passedOver\t{}\t{}\n", reason, count);
    for (const Failure &failure : log.entries)
        text += fmt::format("@log\t{}\t{}\t{}\n", severityWord(failure.severity), failure.procedure,
                            failure.message);
    text += kHeadLine;
    for (const URLClass &record : sink.records)
        text += rowOf(record);
    return replaceAll(text, input.string() + "/", "");
}

class RecoveredGolden : public testing::TestWithParam<const char *> {};

TEST_P(RecoveredGolden, casesReadAsTheyAreWrittenDown) {
    std::size_t cases = 0;
    for (const auto &entry : fs::directory_iterator(fs::path(NV_GOLDEN_DIR) / GetParam())) {
        SCOPED_TRACE(entry.path().filename().string());
        const std::string expected = contentOf(entry.path() / "expected.tsv");
        const std::string firstLine = expected.substr(0, expected.find('\n'));
        EXPECT_EQ(firstLine + "\n" + readingOf(givenBy(firstLine), entry.path() / "input"),
                  expected);
        EXPECT_FALSE(contentOf(entry.path() / "case.md").empty());
        ++cases;
    }
    EXPECT_GE(cases, 3U);
}

INSTANTIATE_TEST_SUITE_P(Formats, RecoveredGolden,
                         testing::Values("ie-cookies", "hist-ex", "nvd", "html"),
                         [](const auto &key) { return replaceAll(key.param, "-", "_"); });

} // namespace
} // namespace nv
