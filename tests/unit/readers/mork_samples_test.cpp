#include "base/Files.h"
#include "base/Md5.h"
#include "readers/firefox/mork/MorkHistory.h"
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

/// "2008-03-12 23:35:46" as ISO 8601.
std::string iso(std::string date) {
    date[10] = 'T';
    return date + "Z";
}

class MorkSample : public testing::Test {
  protected:
    void SetUp() override {
        const auto samples = test::samplesFolder();
        if (!samples)
            GTEST_SKIP() << "the folder of real samples is not here";
        folder = *samples / "ff2_history_mork";
        const Bytes text = readWhole(folder / "expected.json");
        expected = json::parse(text.begin(), text.end());
    }

    json expected;
    fs::path folder;
};

// Two rows a file: the page, and the row of the byte order, which has no URL and is stored and
// counted. The mark of the columns stands after "< " here, as the browser writes it. The blank
// after the first row makes no third one.
TEST_F(MorkSample, givesTwoRowsForEachFile) {
    for (const json &scanned : expected.at("scan")) {
        test::SqliteHistoryReading reading;
        reading.read(parseMorkFile, folder / scanned.at("path").get<std::string>());
        EXPECT_EQ(
            reading.records().size(),
            expected["expected"]["rows_per_file_if_column_mark_may_stand_anywhere_in_the_line"]
                .get<std::size_t>());
        EXPECT_EQ(reading.result.state, ReadState::complete) << reading.result.reason;
        EXPECT_EQ(reading.result.noted.size(), 1U);
        EXPECT_TRUE(reading.log.entries.empty());
    }
}

TEST_F(MorkSample, givesTheListedRecordsFieldByField) {
    for (std::size_t i = 0; i < 2; ++i) {
        const fs::path file = folder / expected.at("scan").at(i).at("path").get<std::string>();
        test::SqliteHistoryReading reading;
        reading.read(parseMorkFile, file);
        for (const json &wanted : expected.at("records")) {
            SCOPED_TRACE(wanted.dump());
            const auto record = std::ranges::find(
                reading.records(), wanted.at("URL").get<std::string>(), &UrlRecord::URL);
            ASSERT_NE(record, reading.records().end());
            EXPECT_EQ(record->MapFileOffset, wanted.at("MapFileOffset_1_based_crlf_and_lf").at(i));
            EXPECT_EQ(record->Visits, wanted.at("Visits"));
            EXPECT_EQ(record->HistoryVersion, wanted.value("HistoryVersion", ""));
            EXPECT_EQ(record->host, wanted.value("host", ""));
            EXPECT_EQ(record->OtherDateMeaning, wanted.value("OtherDateMeaning", ""));
            EXPECT_EQ(record->HashedURL, hashOfUrl(record->URL));
            EXPECT_EQ(record->HistoryFilePath, file.string());
            if (!wanted.contains("ActionDateUTC"))
                continue;
            EXPECT_EQ(isoUtc(record->ActionDateUTC), iso(wanted.at("ActionDateUTC")));
            EXPECT_EQ(isoUtc(record->OtherDate), iso(wanted.at("OtherDate")));
            EXPECT_EQ(record->Action, wanted.at("Action"));
            EXPECT_EQ(record->Status, wanted.at("Status"));
            EXPECT_EQ(record->cacheType, wanted.at("cacheType"));
        }
    }
}

TEST_F(MorkSample, leavesTheEvidenceAlone) {
    for (const json &listed : expected.at("files"))
        EXPECT_EQ(fileMD5(folder / listed.at("path").get<std::string>()),
                  listed.at("md5").get<std::string>());
}

} // namespace
} // namespace nv
