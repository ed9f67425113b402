#include "base/Files.h"
#include "base/Text.h"
#include "support/builders/IndexReading.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::IndexReading;

const fs::path kCases = fs::path(NV_GOLDEN_DIR) / "ie-index";

std::string contentOf(const fs::path &path) {
    const Bytes bytes = readWhole(path);
    return {bytes.begin(), bytes.end()};
}

std::string shown(const Date &date) {
    if (!date.has())
        return "-";
    const CivilTime t = date.civil();
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", t.year, t.month, t.day, t.hour,
                       t.minute, t.second);
}

/// One line a record, so that a difference shows as one line.
std::string rowOf(const URLClass &record) {
    const std::vector<std::string> cells = {std::to_string(record.MapFileOffset),
                                            "[" + record.Status + "]",
                                            record.URL,
                                            record.User,
                                            record.cacheType,
                                            record.Action,
                                            shown(record.ActionDateUTC),
                                            shown(record.OtherDate),
                                            record.OtherDateMeaning,
                                            std::to_string(record.Visits),
                                            record.Links,
                                            record.IsHistory ? "history" : "",
                                            record.CacheFolderName,
                                            record.CacheFileName,
                                            record.CacheFileRelativePath,
                                            std::to_string(record.CacheFileSize),
                                            shown(record.CacheFileCreatedGMTDOS),
                                            record.Category,
                                            record.WebpageTitle,
                                            replaceAll(record.MetaData, "\r\n", "\\r\\n")};
    return fmt::format("{}\n", fmt::join(cells, "\t"));
}

std::string_view stateWord(ReadState state) {
    switch (state) {
    case ReadState::complete:
        return "complete";
    case ReadState::cancelled:
        return "cancelled";
    case ReadState::cutShort:
        return "cutShort";
    case ReadState::failed:
        return "failed";
    case ReadState::notReadYet:
        return "notReadYet";
    }
    return "";
}

/// All that a reading says, in the form of expected.tsv.
std::string resultOf(const IndexReading &reading, const fs::path &input) {
    std::string text = fmt::format("@type\t{}\t{}\n@state\t{}\t{}\t{}\n",
                                   static_cast<int>(reading.file.HistoryFileType),
                                   reading.file.Version, stateWord(reading.result.state),
                                   reading.result.notReached, reading.result.reason);
    for (const auto &[reason, count] : reading.result.passedOver)
        text += fmt::format("@passedOver\t{}\t{}\n", reason, count);
    for (const Failure &failure : reading.log.entries)
        text += fmt::format("@log\t{}\n", failure.message);
    text += "MapFileOffset\tStatus\tURL\tUser\tcacheType\tAction\tActionDateUTC\tOtherDate\t"
            "OtherDateMeaning\tVisits\tLinks\tIsHistory\tCacheFolderName\tCacheFileName\t"
            "CacheFileRelativePath\tCacheFileSize\tCacheFileCreatedGMTDOS\tCategory\t"
            "WebpageTitle\tMetaData\n";
    for (const URLClass &record : reading.records())
        text += rowOf(record);
    return replaceAll(text, input.string() + "/", "");
}

/// The case's first line: the type that recognition gave the file, and the machine's offset from
/// UTC in minutes.
struct Given {
    int type = 0;
    int offset = 0;
};

Given givenBy(std::string_view firstLine) {
    const auto words = split(firstLine, '\t');
    Given given;
    if (words.size() == 3 && words[0] == "@given") {
        std::from_chars(words[1].data(), words[1].data() + words[1].size(), given.type);
        std::from_chars(words[2].data(), words[2].data() + words[2].size(), given.offset);
    }
    return given;
}

fs::path indexBelow(const fs::path &folder) {
    for (const fs::directory_entry &entry : fs::recursive_directory_iterator(folder))
        if (entry.path().filename() == "index.dat")
            return entry.path();
    return {};
}

std::vector<std::string> caseNames() {
    std::vector<std::string> names;
    for (const fs::directory_entry &entry : fs::directory_iterator(kCases))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

TEST(IEGolden, casesReadAsTheyAreWrittenDown) {
    for (const std::string &name : caseNames()) {
        SCOPED_TRACE(name);
        const fs::path input = kCases / name / "input";
        const std::string expected = contentOf(kCases / name / "expected.tsv");
        const std::string firstLine = expected.substr(0, expected.find('\n'));
        const Given given = givenBy(firstLine);
        IndexReading reading(HistoryFileType{static_cast<std::int16_t>(given.type)});
        reading.clock.offset = std::chrono::minutes(given.offset);
        reading.readFile(indexBelow(input), input);
        EXPECT_EQ(firstLine + "\n" + resultOf(reading, input), expected);
        EXPECT_FALSE(contentOf(kCases / name / "case.md").empty());
    }
    EXPECT_GE(caseNames().size(), 10U);
}

} // namespace
} // namespace nv
