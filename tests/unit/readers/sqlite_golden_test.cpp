#include "readers/chrome/History.h"
#include "readers/firefox/Places.h"
#include "support/RecordGolden.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

struct Format {
    const char *key; ///< the folder of its cases
    const char *file;
    ReadResult (*read)(ReadContext &);
};

std::vector<test::GoldenColumn> columns() {
    return {
        {"Reference_ID",
         [](const URLClass &record) -> std::string { return std::to_string(record.Reference_ID); }},
        {"Status", [](const URLClass &record) -> std::string { return record.Status; }},
        {"Action", [](const URLClass &record) -> std::string { return record.Action; }},
        {"ActionDateUTC",
         [](const URLClass &record) -> std::string { return isoUtc(record.ActionDateUTC); }},
        {"Visits",
         [](const URLClass &record) -> std::string { return std::to_string(record.Visits); }},
        {"Hidden",
         [](const URLClass &record) -> std::string { return record.Hidden ? "hidden" : ""; }},
        {"URL", [](const URLClass &record) -> std::string { return record.URL; }},
        {"URLRawValue", [](const URLClass &record) -> std::string { return record.URLRawValue; }},
        {"host", [](const URLClass &record) -> std::string { return record.host; }},
        {"URLParameters",
         [](const URLClass &record) -> std::string { return record.URLParameters; }},
        {"WebpageTitle", [](const URLClass &record) -> std::string { return record.WebpageTitle; }},
    };
}

class SqliteGolden : public testing::TestWithParam<Format> {};

TEST_P(SqliteGolden, casesReadAsTheyAreWrittenDown) {
    test::checkGoldenCases(
        {fs::path(NV_GOLDEN_DIR) / GetParam().key, GetParam().file, GetParam().read, columns()}, 5);
}

INSTANTIATE_TEST_SUITE_P(
    Histories, SqliteGolden,
    testing::Values(Format{"chrome-history", "History", ParseChromeHistoryFile},
                    Format{"firefox3-history", "places.sqlite", ParseFirefox3HistoryFile}),
    [](const auto &format) { return format.index == 0 ? "Chrome" : "Firefox"; });

} // namespace
} // namespace nv
