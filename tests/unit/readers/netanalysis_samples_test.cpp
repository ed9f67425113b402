#include "base/Files.h"
#include "base/Md5.h"
#include "readers/results/NetAnalysis.h"
#include "support/Samples.h"
#include "support/SqliteHistoryReading.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace nv {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

class NetAnalysisSample : public testing::Test {
  protected:
    void SetUp() override {
        const auto samples = test::samplesFolder();
        if (!samples)
            GTEST_SKIP() << "the folder of real samples is not here";
        const fs::path folder = *samples / "netanalysis_made";
        const Bytes text = readWhole(folder / "expected.json");
        expected = json::parse(text.begin(), text.end());
        file = folder / expected.at("scan").at(0).at("path").get<std::string>();
        reading.read(parseNetAnalysisFile, file);
    }

    template <class Test>
    auto countOf(Test holds) const {
        return std::count_if(reading.records().begin(), reading.records().end(), holds);
    }

    json expected;
    fs::path file;
    test::SqliteHistoryReading reading;
};

std::string textOrNone(const json &value) {
    return value.is_null() ? std::string() : value.get<std::string>();
}

/// "2015-08-25 11:06:21" as the list writes it.
std::string listedDate(const json &date) {
    if (date.is_null())
        return {};
    std::string text = date.get<std::string>() + "Z";
    text[10] = 'T';
    return text;
}

TEST_F(NetAnalysisSample, givesTheCountedRecordsAndLosesNone) {
    const json &counts = expected.at("expected");
    EXPECT_EQ(reading.result.state, ReadState::complete) << reading.result.reason;
    EXPECT_TRUE(reading.log.entries.empty());
    EXPECT_TRUE(reading.result.passedOver.empty());
    EXPECT_EQ(reading.records().size(), counts.at("rows").get<std::size_t>());
    EXPECT_EQ(countOf([](const UrlRecord &r) { return r.CacheFileExists; }),
              counts.at("rows_FileExists"));
    EXPECT_EQ(countOf([](const UrlRecord &r) { return r.Typed; }), counts.at("rows_Typed"));
    EXPECT_EQ(
        countOf([](const UrlRecord &r) { return !r.ActionDateUTC.has() && !r.OtherDate.has(); }),
        counts.at("rows_with_null_dates"));
    EXPECT_EQ(countOf([&](const UrlRecord &r) {
                  return r.CacheFolderName == counts.at("case_CachePath").get<std::string>();
              }),
              28);
}

TEST_F(NetAnalysisSample, givesTheListedRecordsFieldByField) {
    ASSERT_EQ(expected.at("records").size(), 8U);
    for (const json &wanted : expected.at("records")) {
        SCOPED_TRACE(wanted.dump());
        const UrlRecord &record = reading.records().at(wanted.at("URN").get<std::size_t>() - 1);
        EXPECT_EQ(record.URL, wanted.at("URL"));
        EXPECT_EQ(record.URLRawValue, wanted.at("URLRawValue"));
        EXPECT_EQ(record.HashedURL, hashOfUrl(record.URL));
        EXPECT_EQ(record.Status, wanted.at("Status"));
        EXPECT_EQ(isoUtc(record.ActionDateUTC), listedDate(wanted.at("LastVisited_as_stored")));
        EXPECT_EQ(isoUtc(record.OtherDate), listedDate(wanted.at("SecondaryDate_as_stored")));
        EXPECT_EQ(record.OtherDateMeaning, wanted.at("OtherDateMeaning"));
        EXPECT_EQ(record.User, wanted.at("User"));
        EXPECT_EQ(record.Visits, wanted.at("Visits").is_null() ? json(-1) : wanted.at("Visits"));
        EXPECT_EQ(record.MapFileOffset, wanted.at("MapFileOffset"));
        EXPECT_EQ(record.CacheFileName, textOrNone(wanted.at("CacheFileName")));
        EXPECT_EQ(record.CacheFileExists, wanted.at("CacheFileExists"));
        if (!wanted.at("host").is_null())
            EXPECT_EQ(record.host, wanted.at("host"));
        else
            EXPECT_EQ(record.host, "apps.skype.com");
        EXPECT_EQ(record.Typed, wanted.at("Typed"));
        EXPECT_EQ(record.Notes, textOrNone(wanted.at("Notes")));
        EXPECT_EQ(record.URLParameters, textOrNone(wanted.at("URLParameters")));
        std::string begins = wanted.at("MetaData_begins");
        begins.resize(std::min(begins.size(), begins.find("\\n"))); // two characters, as listed
        EXPECT_TRUE(record.MetaData.starts_with(begins)) << record.MetaData;
        EXPECT_EQ(record.cacheType, wanted.at("cacheType"));
    }
}

TEST_F(NetAnalysisSample, leavesTheEvidenceAlone) {
    EXPECT_EQ(fileMD5(file), expected.at("files").at(0).at("md5").get<std::string>());
    EXPECT_EQ(std::distance(fs::directory_iterator(file.parent_path()), {}), 1);
}

} // namespace
} // namespace nv
