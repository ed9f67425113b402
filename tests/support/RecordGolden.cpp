#include "support/RecordGolden.h"

#include "base/Files.h"
#include "base/Text.h"
#include "db/RecordFacts.h"
#include "support/SqliteHistoryReading.h"
#include "time/DateFormat.h"

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

/// "transition=typed [1]; count=3"
std::string factsOf(const URLClass &record) {
    std::string text;
    for (const RecordFact &fact : record.facts)
        text += fmt::format("{}{}={}", text.empty() ? "" : "; ", fact.name, factText(fact));
    return text;
}

/// A column of expected.tsv.
struct GoldenColumn {
    std::string_view name;
    std::string (*cell)(const URLClass &record);
};

using Record = const URLClass &;
constexpr GoldenColumn kColumns[] = {
    {"Action", [](Record r) { return r.Action; }},
    {"ActionDateUTC", [](Record r) { return isoUtc(r.ActionDateUTC); }},
    {"CacheFileExists", [](Record r) { return std::string(r.CacheFileExists ? "there" : ""); }},
    {"CacheFileName", [](Record r) { return r.CacheFileName; }},
    {"CacheFileRelativePath", [](Record r) { return r.CacheFileRelativePath; }},
    {"CacheFileSize", [](Record r) { return std::to_string(r.CacheFileSize); }},
    {"DataBlockFile", [](Record r) { return r.DataBlockFile; }},
    {"DataBlockFileOffset", [](Record r) { return std::to_string(r.DataBlockFileOffset); }},
    {"GZipEncoded", [](Record r) { return std::string(r.GZipEncoded ? "gzip" : ""); }},
    {"Hidden", [](Record r) { return std::string(r.Hidden ? "hidden" : ""); }},
    {"HistoryVersion", [](Record r) { return r.HistoryVersion; }},
    {"IsPicture", [](Record r) { return std::string(r.IsPicture ? "picture" : ""); }},
    {"IsWebPage", [](Record r) { return std::string(r.IsWebPage ? "page" : ""); }},
    {"MIMEType", [](Record r) { return r.MIMEType; }},
    {"MapFileOffset", [](Record r) { return std::to_string(r.MapFileOffset); }},
    {"MetaData", [](Record r) { return replaceAll(r.MetaData, "\r\n", "\\r\\n"); }},
    {"OtherDate", [](Record r) { return isoUtc(r.OtherDate); }},
    {"OtherDateMeaning", [](Record r) { return r.OtherDateMeaning; }},
    {"RecordSize", [](Record r) { return std::to_string(r.RecordSize); }},
    {"Reference_ID", [](Record r) { return std::to_string(r.Reference_ID); }},
    {"Status", [](Record r) { return r.Status; }},
    {"Typed", [](Record r) { return std::string(r.Typed ? "typed" : ""); }},
    {"URL", [](Record r) { return r.URL; }},
    {"URLParameters", [](Record r) { return r.URLParameters; }},
    {"URLRawValue", [](Record r) { return r.URLRawValue; }},
    {"facts", factsOf},
    {"Visits", [](Record r) { return std::to_string(r.Visits); }},
    {"WebpageTitle", [](Record r) { return r.WebpageTitle; }},
    {"host", [](Record r) { return r.host; }},
};

/// The first line of expected.tsv that doesn't begin with a word of the reading's own.
std::string headLineOf(const std::string &expected) {
    for (const std::string_view line : split(expected, '\n'))
        if (!line.starts_with('@'))
            return std::string(line);
    return {};
}

std::string cellOf(const URLClass &record, std::string_view name) {
    for (const GoldenColumn &column : kColumns)
        if (column.name == name)
            return column.cell(record);
    ADD_FAILURE() << "expected.tsv has a column \"" << name << "\", which no field is known for";
    return {};
}

/// One line a record, so that a difference shows as one line.
std::string rowsOf(const std::vector<URLClass> &records, const std::string &headLine) {
    std::string text = headLine + '\n';
    for (const URLClass &record : records) {
        std::vector<std::string> cells;
        for (const std::string_view name : split(headLine, '\t'))
            cells.push_back(cellOf(record, name));
        text += fmt::format("{}\n", fmt::join(cells, "\t"));
    }
    return text;
}

std::string resultOf(const SqliteHistoryReading &reading, const fs::path &input,
                     const std::string &headLine) {
    std::string text = fmt::format("@state\t{}\t{}\t{}\n", wordOf(reading.result.state),
                                   reading.result.notReached, reading.result.reason);
    text += countsOf("@passedOver", reading.result.passedOver);
    text += countsOf("@noted", reading.result.noted);
    for (const Failure &failure : reading.log.entries)
        text += fmt::format("@log\t{}\t{}\t{}\n", severityWord(failure.severity), failure.procedure,
                            failure.message);
    return replaceAll(text + rowsOf(reading.records(), headLine), input.string() + "/", "");
}

} // namespace

void checkGoldenCases(const GoldenCases &cases, std::size_t leastCases) {
    std::size_t count = 0;
    for (const auto &entry : fs::directory_iterator(cases.folder)) {
        SCOPED_TRACE(entry.path().filename().string());
        const fs::path input = entry.path() / "input";
        SqliteHistoryReading reading;
        reading.read(cases.read, input / cases.file);
        const std::string expected = contentOf(entry.path() / "expected.tsv");
        EXPECT_EQ(resultOf(reading, input, headLineOf(expected)), expected);
        EXPECT_FALSE(contentOf(entry.path() / "case.md").empty());
        ++count;
    }
    EXPECT_GE(count, leastCases);
}

} // namespace nv::test
