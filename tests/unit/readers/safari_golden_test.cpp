#include "readers/safari/Cache.h"
#include "readers/safari/History.h"
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
        {"ActionDateUTC",
         [](const URLClass &record) -> std::string { return isoUtc(record.ActionDateUTC); }},
        {"OtherDate",
         [](const URLClass &record) -> std::string { return isoUtc(record.OtherDate); }},
        {"Visits",
         [](const URLClass &record) -> std::string { return std::to_string(record.Visits); }},
        {"URL", [](const URLClass &record) -> std::string { return record.URL; }},
        {"URLRawValue", [](const URLClass &record) -> std::string { return record.URLRawValue; }},
        {"host", [](const URLClass &record) -> std::string { return record.host; }},
        {"URLParameters",
         [](const URLClass &record) -> std::string { return record.URLParameters; }},
        {"WebpageTitle", [](const URLClass &record) -> std::string { return record.WebpageTitle; }},
        {"MIMEType", [](const URLClass &record) -> std::string { return record.MIMEType; }},
        {"IsWebPage",
         [](const URLClass &record) -> std::string { return record.IsWebPage ? "page" : ""; }},
        {"CacheFileSize",
         [](const URLClass &record) -> std::string {
             return std::to_string(record.CacheFileSize);
         }},
        {"CacheFileExists",
         [](const URLClass &record) -> std::string {
             return record.CacheFileExists ? "there" : "";
         }},
    };
}

class SafariGolden : public testing::TestWithParam<Format> {};

TEST_P(SafariGolden, casesReadAsTheyAreWrittenDown) {
    test::checkGoldenCases(
        {fs::path(NV_GOLDEN_DIR) / GetParam().key, GetParam().file, GetParam().read, columns()}, 5);
}

INSTANTIATE_TEST_SUITE_P(
    Safari, SafariGolden,
    testing::Values(Format{"safari-cache", "Cache.db", ParseSafariCacheFile},
                    Format{"safari-history", "History.plist", ParseSafariHistoryFile}),
    [](const auto &format) { return format.index == 0 ? "Cache" : "History"; });

} // namespace
} // namespace nv
