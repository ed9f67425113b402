#include "base/Files.h"
#include "base/Md5.h"
#include "readers/opera/History.h"
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

/// "2013-11-11 22:45:18" as ISO 8601.
std::string iso(std::string date) {
    date[10] = 'T';
    return date + "Z";
}

class OperaSample : public testing::Test {
  protected:
    void SetUp() override {
        const auto samples = test::samplesFolder();
        if (!samples)
            GTEST_SKIP() << "the folder of real samples is not here";
        folder = *samples / "opera_history_plaso";
        const Bytes text = readWhole(folder / "expected.json");
        expected = json::parse(text.begin(), text.end());
    }
    fs::path pathAt(std::size_t scanned) const {
        return folder / expected.at("scan").at(scanned).at("path").get<std::string>();
    }

    json expected;
    fs::path folder;
};

// 37 visits in the file, once under the name that examiners know and once under the browser's own:
// both are read, since the second one's name is recognised too.
TEST_F(OperaSample, givesTheCountedVisitsUnderBothNames) {
    for (const std::size_t scanned : {0U, 1U}) {
        test::SqliteHistoryReading reading;
        reading.read(parseOperaHistoryFile, pathAt(scanned));
        const json &counts = expected.at("expected");
        EXPECT_EQ(reading.records().size(), counts.at("rows").get<std::size_t>());
        EXPECT_EQ(std::ranges::count_if(reading.records(),
                                        [](const UrlRecord &r) { return r.WebpageTitle == r.URL; }),
                  counts.at("records_with_title_equal_to_URL"));
        EXPECT_EQ(reading.result.state, ReadState::complete);
        EXPECT_TRUE(reading.result.passedOver.empty());
        EXPECT_TRUE(reading.result.noted.empty());
        EXPECT_TRUE(reading.log.entries.empty());
    }
}

TEST_F(OperaSample, givesTheListedRecordsFieldByField) {
    test::SqliteHistoryReading reading;
    reading.read(parseOperaHistoryFile, pathAt(0));
    for (const json &wanted : expected.at("records")) {
        SCOPED_TRACE(wanted.dump());
        const auto record = std::ranges::find(
            reading.records(), wanted.at("offset").get<std::int64_t>(), &UrlRecord::MapFileOffset);
        ASSERT_NE(record, reading.records().end());
        EXPECT_EQ(record->WebpageTitle, wanted.at("WebpageTitle"));
        EXPECT_EQ(record->URL, wanted.at("URL"));
        EXPECT_EQ(record->HashedURL, hashOfUrl(record->URL));
        EXPECT_EQ(isoUtc(record->ActionDateUTC), iso(wanted.at("ActionDateUTC")));
        EXPECT_EQ(record->Visits, wanted.at("Visits"));
        EXPECT_EQ(record->cacheType, wanted.at("cacheType"));
        EXPECT_EQ(record->HistoryFilePath, pathAt(0).string());
    }
}

// Four items, as an independent reading of the same file counted. The dates stand in the file.
TEST_F(OperaSample, givesTheTypedAddresses) {
    test::SqliteHistoryReading reading;
    reading.read(parseOperaHistoryFile, pathAt(2));
    std::vector<std::string> found;
    for (const UrlRecord &record : reading.records()) {
        EXPECT_TRUE(record.Typed);
        found.push_back(record.URL + " " + isoUtc(record.ActionDateUTC));
    }
    EXPECT_EQ(found, (std::vector<std::string>{"plaso.kiddaland.net 2013-11-11T23:45:27Z",
                                               "mbl.is 2013-11-11T22:58:24Z",
                                               "code.google.com/p/plaso 2013-11-11T22:46:37Z",
                                               "theonion.com 2013-11-11T22:46:07Z"}));
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

TEST_F(OperaSample, leavesTheEvidenceAlone) {
    for (const json &listed : expected.at("files"))
        EXPECT_EQ(fileMD5(folder / listed.at("path").get<std::string>()),
                  listed.at("md5").get<std::string>());
}

} // namespace
} // namespace nv
