#include "base/Files.h"
#include "base/Text.h"
#include "support/Samples.h"
#include "support/builders/IndexReading.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <map>

namespace nv {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using test::IndexReading;

/// One real index with what several independent readers found in it.
class IESample : public testing::TestWithParam<std::string> {
  protected:
    void SetUp() override {
        const auto samples = test::samplesFolder();
        if (!samples)
            GTEST_SKIP() << "the folder of real samples is not here";
        const fs::path folder = *samples / GetParam();
        const Bytes text = readWhole(folder / "expected.json");
        expected = json::parse(text.begin(), text.end());
        const json &scan = expected.at("scan").at(0);
        reading.file.historyFileType = HistoryFileType{scan.at("scan_type").get<std::int16_t>()};
        reading.readFile(folder / scan.at("path").get<std::string>(), folder / "evidence");
    }

    const UrlRecord *recordAt(std::int64_t offset) const {
        for (const UrlRecord &record : reading.records())
            if (record.MapFileOffset == offset)
                return &record;
        return nullptr;
    }

    json expected;
    IndexReading reading;
};

std::string textOfDate(const Date &date) {
    if (!date.has())
        return "null";
    const CivilTime t = date.civil();
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", t.year, t.month, t.day, t.hour,
                       t.minute, t.second);
}

std::string textOfField(const json &record, const char *field) {
    if (!record.contains(field) || record[field].is_null())
        return "null";
    return record[field].is_string() ? record[field].get<std::string>() : record[field].dump();
}

void compareCommon(const UrlRecord &record, const json &wanted) {
    EXPECT_EQ(record.URLRawValue, textOfField(wanted, "URLRawValue"));
    const std::string url = textOfField(wanted, "URL_before_percent_conversion");
    EXPECT_EQ(record.URL, record.Status == "REDR" ? url : percentDecode(url));
    EXPECT_EQ(record.cacheType, textOfField(wanted, "cacheType"));
    EXPECT_TRUE(textOfField(wanted, "Status").starts_with(record.Status));
}

void compareEvent(const UrlRecord &record, const json &wanted) {
    EXPECT_EQ(record.User, textOfField(wanted, "User"));
    EXPECT_EQ(std::to_string(record.Visits), textOfField(wanted, "Visits"));
    EXPECT_EQ(std::to_string(record.RecordSize), textOfField(wanted, "record_length"));
    EXPECT_EQ(textOfDate(record.ActionDateUTC), textOfField(wanted, "ActionDateUTC"));
    EXPECT_EQ(textOfDate(record.OtherDate), textOfField(wanted, "OtherDate"));
    EXPECT_EQ(record.OtherDateMeaning, textOfField(wanted, "OtherDateMeaning"));
}

void compareCache(const UrlRecord &record, const json &wanted) {
    EXPECT_EQ(std::to_string(record.CacheFileSize), textOfField(wanted, "CacheFileSize"));
    EXPECT_EQ(record.CacheFolderName, textOfField(wanted, "CacheFolderName"));
    EXPECT_EQ(record.CacheFileName, textOfField(wanted, "CacheFileName"));
    EXPECT_TRUE(record.MetaData.starts_with(textOfField(wanted, "MetaData_begins")));
    // Cached files are younger than the format and not younger than the last access to them.
    EXPECT_TRUE(record.CacheFileCreatedGMTDOS > Date::fromCivil({1995, 1, 1}));
    EXPECT_TRUE(record.CacheFileCreatedGMTDOS <= record.ActionDateUTC.plusSeconds(86400));
}

TEST_P(IESample, givesTheCountedRecordsAndLosesNone) {
    std::map<std::string, int> bySignature;
    for (const UrlRecord &record : reading.records())
        ++bySignature[record.Status == "REDR" ? "REDR" : "URL "];
    EXPECT_EQ(json(bySignature), expected.at("expected").at("rows_by_signature"));
    EXPECT_EQ(reading.records().size(), expected.at("expected").at("rows").get<std::size_t>());
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_THAT(reading.log.entries, testing::IsEmpty());
    const json &scan = expected.at("scan").at(0);
    EXPECT_EQ(static_cast<int>(reading.file.historyFileType), scan.at("type_after_step_5"));
    EXPECT_EQ(reading.file.version, scan.at("version_text"));
}

TEST_P(IESample, givesTheListedRecordsFieldByField) {
    ASSERT_FALSE(expected.at("records").empty());
    for (const json &wanted : expected.at("records")) {
        SCOPED_TRACE(wanted.dump());
        const UrlRecord *record = recordAt(wanted.at("record_offset"));
        ASSERT_TRUE(record);
        compareCommon(*record, wanted);
        if (record->Status != "REDR")
            compareEvent(*record, wanted);
        if (wanted.contains("CacheFileName"))
            compareCache(*record, wanted);
    }
}

TEST_P(IESample, tellsOfTheRecordsThatOtherReadersRecover) {
    std::map<std::string, std::uint64_t> outside;
    for (const json &peer : expected.at("peers")) {
        const json items = peer.value("items", json::object());
        if (const int leaks = items.value("leak", 0); leaks > 0)
            outside["LEAK record outside of the hash tables"] = static_cast<std::uint64_t>(leaks);
        if (const int urls = items.value("recovered url", 0); urls > 0)
            outside["URL record outside of the hash tables"] = static_cast<std::uint64_t>(urls);
    }
    EXPECT_EQ(reading.result.passedOver, outside);
}

TEST_P(IESample, givesTheRecordsThatOtherReadersRecoverAsRemnants) {
    const std::vector<UrlRecord> classic = reading.records();
    std::uint64_t outside = 0;
    for (const auto &[reason, count] : reading.result.passedOver)
        outside += count;
    const json &scan = expected.at("scan").at(0);
    const fs::path folder = *test::samplesFolder() / GetParam();
    IndexReading whole(HistoryFileType{scan.at("scan_type").get<std::int16_t>()});
    whole.classicOnly = false;
    whole.readFile(folder / scan.at("path").get<std::string>(), folder / "evidence");
    ASSERT_EQ(whole.records().size(), classic.size() + outside);
    EXPECT_THAT(whole.result.passedOver, testing::IsEmpty());
    EXPECT_EQ(whole.result.state, ReadState::complete);
    for (std::size_t i = 0; i < classic.size(); ++i) {
        EXPECT_EQ(whole.records()[i].URL, classic[i].URL);
        EXPECT_EQ(whole.records()[i].Status, classic[i].Status);
        EXPECT_EQ(whole.records()[i].cacheType, classic[i].cacheType);
        EXPECT_EQ(whole.records()[i].Visits, classic[i].Visits);
    }
    for (std::size_t i = classic.size(); i < whole.records().size(); ++i) {
        EXPECT_EQ(whole.records()[i].cacheType, "IE Remnant");
        EXPECT_EQ(whole.records()[i].Status, "Recovered");
        EXPECT_NE(whole.records()[i].URL + whole.records()[i].CacheFileName, "");
    }
}

INSTANTIATE_TEST_SUITE_P(Real, IESample,
                         testing::Values("ie_cache_nfury", "ie_history_gold", "ie_daily_mshist"),
                         [](const auto &sample) { return sample.param; });

} // namespace
} // namespace nv
