#include "support/RecordGolden.h"

#include "base/Files.h"
#include "base/Text.h"
#include "support/SqliteHistoryReading.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace nv::test {

namespace {

namespace fs = std::filesystem;

std::string contentOf(const fs::path &path) {
    const Bytes bytes = readWhole(path);
    return {bytes.begin(), bytes.end()};
}

std::string countsOf(const char *word, const std::map<std::string, std::uint64_t> &counts) {
    std::string text;
    for (const auto &[reason, count] : counts)
        text += fmt::format("{}\t{}\t{}\n", word, reason, count);
    return text;
}

/// One line a record, so that a difference shows as one line.
std::string rowsOf(const std::vector<URLClass> &records, const std::vector<GoldenColumn> &columns) {
    std::string text;
    for (const GoldenColumn &column : columns)
        text += fmt::format("{}{}", text.empty() ? "" : "\t", column.name);
    text += '\n';
    for (const URLClass &record : records) {
        std::string row;
        for (const GoldenColumn &column : columns)
            row += fmt::format("{}{}", &column == columns.data() ? "" : "\t", column.cell(record));
        text += row + '\n';
    }
    return text;
}

std::string resultOf(const SqliteHistoryReading &reading, const fs::path &input,
                     const std::vector<GoldenColumn> &columns) {
    std::string text = fmt::format("@state\t{}\t{}\t{}\n", wordOf(reading.result.state),
                                   reading.result.notReached, reading.result.reason);
    text += countsOf("@passedOver", reading.result.passedOver);
    text += countsOf("@noted", reading.result.noted);
    for (const Failure &failure : reading.log.entries)
        text += fmt::format("@log\t{}\t{}\t{}\n", severityWord(failure.severity), failure.procedure,
                            failure.message);
    return replaceAll(text + rowsOf(reading.records(), columns), input.string() + "/", "");
}

} // namespace

void checkGoldenCases(const GoldenCases &cases, std::size_t leastCases) {
    std::size_t count = 0;
    for (const auto &entry : fs::directory_iterator(cases.folder)) {
        SCOPED_TRACE(entry.path().filename().string());
        const fs::path input = entry.path() / "input";
        SqliteHistoryReading reading;
        reading.read(cases.read, input / cases.file);
        EXPECT_EQ(resultOf(reading, input, cases.columns),
                  contentOf(entry.path() / "expected.tsv"));
        EXPECT_FALSE(contentOf(entry.path() / "case.md").empty());
        ++count;
    }
    EXPECT_GE(count, leastCases);
}

} // namespace nv::test
