#include "base/Files.h"
#include "support/Samples.h"
#include "support/builders/IndexReading.h"
#include "time/DateFormat.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace nv {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using test::IndexReading;

/// A real index of a cookies folder.
class IECookiesSample : public testing::Test {
  protected:
    void SetUp() override {
        const auto samples = test::samplesFolder();
        if (!samples)
            GTEST_SKIP() << "the folder of real samples is not here";
        const fs::path folder = *samples / "ie_cookies_iped";
        const Bytes text = readWhole(folder / "expected.json");
        expected = json::parse(text.begin(), text.end());
        reading.readFile(folder / expected.at("scan").at(0).at("path").get<std::string>(),
                         folder / "evidence");
    }

    json expected;
    IndexReading reading{HistoryFileType::ieCookies, test::kCookiesReader};
};

std::string shown(const Date &date) {
    const std::string text = isoUtc(date);
    return text.substr(0, 10) + (text.empty() ? "" : " " + text.substr(11, 8));
}

TEST_F(IECookiesSample, givesAllRecords) {
    const json &counts = expected.at("expected");
    EXPECT_EQ(reading.records().size(), counts.at("rows").get<std::size_t>());
    EXPECT_EQ(std::ranges::count_if(reading.records(), &UrlRecord::CacheFileExists),
              counts.at("rows_with_cookie_file_present").get<int>());
    EXPECT_EQ(reading.file.version, counts.at("version_text"));
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_THAT(reading.result.passedOver, testing::IsEmpty());
    EXPECT_THAT(reading.log.entries, testing::IsEmpty());
}

TEST_F(IECookiesSample, givesTheListedRecordsFieldByField) {
    ASSERT_EQ(expected.at("records").size(), reading.records().size());
    for (std::size_t i = 0; i < reading.records().size(); ++i) {
        const json &wanted = expected.at("records")[i];
        SCOPED_TRACE(wanted.dump());
        const UrlRecord &record = reading.records()[i];
        EXPECT_EQ(record.MapFileOffset, wanted.at("record_offset"));
        EXPECT_EQ(record.RecordSize, wanted.at("record_length"));
        for (const auto &[field, value] : std::vector<std::pair<const char *, std::string>>{
                 {"URLRawValue", record.URLRawValue},
                 {"URL", record.URL},
                 {"User", record.User},
                 {"OtherDateMeaning", record.OtherDateMeaning},
                 {"CacheFileName", record.CacheFileName},
                 {"MetaData", record.MetaData},
                 {"Action", record.Action},
                 {"cacheType", record.cacheType},
                 {"Status", record.Status}})
            EXPECT_EQ(value, wanted.at(field)) << field;
        EXPECT_EQ(shown(record.ActionDateUTC), wanted.at("ActionDateUTC"));
        EXPECT_EQ(shown(record.OtherDate), wanted.at("OtherDate_utc"));
        EXPECT_EQ(shown(record.ExpiryDate), wanted.at("ExpiryDate_utc"));
        EXPECT_EQ(record.Visits, wanted.at("Visits"));
        EXPECT_EQ(record.CacheFileSize, wanted.at("CacheFileSize"));
        EXPECT_EQ(record.CacheFileExists, wanted.at("CacheFileExists"));
        EXPECT_EQ(record.host, record.URL.substr(0, record.URL.find('/')));
    }
}

} // namespace
} // namespace nv
