#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "readers/Dissection.h"
#include "readers/chrome/history/History.h"
#include "readers/firefox/profile/Places.h"
#include "support/FactsOf.h"
#include "support/Samples.h"
#include "support/SqliteHistoryReading.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <set>

namespace nv {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;

/// One real history with what several independent readers found in it.
class SqliteSample : public testing::TestWithParam<std::string> {
  protected:
    void SetUp() override {
        const auto samples = test::samplesFolder();
        if (!samples)
            GTEST_SKIP() << "the folder of real samples is not here";
        const fs::path folder = *samples / GetParam();
        const Bytes text = readWhole(folder / "expected.json");
        expected = json::parse(text.begin(), text.end());
        reading.classicOnly = true;
        file = folder / expected.at("scan").at(0).at("path").get<std::string>();
        reading.classicOnly = true;
        reading.read(isChrome() ? parseChromeHistoryFile : parseFirefox3HistoryFile, file);
    }

    bool isChrome() const { return GetParam().starts_with("chrome"); }

    /// How many records hold, beside what is known of the whole.
    template <class Test>
    void expectCount(const char *key, Test holds) const {
        const json &counts = expected.at("expected");
        if (counts.contains(key)) {
            const auto &records = reading.records();
            EXPECT_EQ(std::count_if(records.begin(), records.end(), holds), counts[key]) << key;
        }
    }

    const UrlRecord *recordOf(std::int64_t id) const {
        for (const UrlRecord &record : reading.records())
            if (record.Reference_ID == id)
                return &record;
        return nullptr;
    }

    json expected;
    fs::path file;
    test::SqliteHistoryReading reading;
};

/// "2011-04-07T12:03:11Z" as the list writes it, without its fraction of a second.
std::string listedDate(const json &date) {
    if (date.is_null())
        return {};
    std::string text = date.get<std::string>().substr(0, 19) + "Z";
    text[10] = 'T';
    return text;
}

TEST_P(SqliteSample, givesTheCountedRecordsAndLosesNone) {
    EXPECT_EQ(reading.records().size(), expected.at("expected").at("rows").get<std::size_t>());
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.log.entries.empty());
    const auto neverVisited = [](const UrlRecord &r) { return r.Status == "(autogen)"; };
    expectCount("rows_hidden", [](const UrlRecord &r) { return r.Hidden; });
    expectCount("rows_visit_count_0_status_autogen", neverVisited);
    expectCount("rows_with_empty_title", [](const UrlRecord &r) { return r.WebpageTitle.empty(); });
    expectCount("rows_visit_count_0_status_autogen_action_empty",
                [&](const UrlRecord &r) { return neverVisited(r) && r.Action.empty(); });
    expectCount("rows_without_a_visit_row_no_action_date",
                [](const UrlRecord &r) { return !r.ActionDateUTC.has(); });
}

TEST_P(SqliteSample, givesTheListedRecordsFieldByField) {
    ASSERT_GE(expected.at("records").size(), 3U);
    for (const json &wanted : expected.at("records")) {
        SCOPED_TRACE(wanted.dump());
        const UrlRecord *record = recordOf(wanted.at("Reference_ID"));
        ASSERT_TRUE(record);
        EXPECT_EQ(record->URLRawValue, wanted.at("URLRawValue"));
        EXPECT_EQ(record->URL, percentDecode(parseURLFromRawURL(record->URLRawValue)));
        EXPECT_EQ(record->HashedURL, hashOfUrl(record->URL));
        EXPECT_EQ(record->WebpageTitle, wanted.value("WebpageTitle", ""));
        EXPECT_EQ(isoUtc(record->ActionDateUTC), listedDate(wanted.at("ActionDateUTC")));
        EXPECT_EQ(record->Visits, wanted.at("Visits"));
        EXPECT_EQ(record->Hidden, wanted.at("Hidden"));
        EXPECT_EQ(record->Status, wanted.at("Status"));
        EXPECT_EQ(record->Action, wanted.at("Action"));
        EXPECT_EQ(record->cacheType, wanted.at("cacheType"));
        EXPECT_EQ(record->HistoryFilePath, file.string());
    }
}

TEST_P(SqliteSample, countsEachVisitThatIsThere) {
    const json &counts = expected.at("expected");
    const json &visits = counts.contains("visits_table_rows_not_used")
                             ? counts["visits_table_rows_not_used"]
                             : counts.at("visits_in_moz_historyvisits");
    std::uint64_t passedOver = 0;
    for (const auto &[reason, count] : reading.result.passedOver)
        passedOver += count;
    const auto &records = reading.records();
    const auto dated = std::count_if(records.begin(), records.end(),
                                     [](const UrlRecord &r) { return r.ActionDateUTC.has(); });
    if (isChrome()) // imported pages have a date and no visit
        EXPECT_LE(passedOver, visits.get<std::uint64_t>());
    else
        EXPECT_EQ(passedOver + static_cast<std::uint64_t>(dated), visits.get<std::uint64_t>());
}

TEST_P(SqliteSample, tellsEachVisitOfChromeOnceBeyondTheClassicRules) {
    if (!isChrome())
        GTEST_SKIP() << "another browser's";
    test::SqliteHistoryReading whole;
    whole.read(parseChromeHistoryFile, file);
    EXPECT_EQ(whole.result.state, ReadState::complete) << whole.result.reason;
    EXPECT_TRUE(whole.log.entries.empty() && whole.result.passedOver.empty());
    std::set<std::string> visits;
    std::int64_t pages = 0;
    for (const UrlRecord &record : whole.records()) {
        pages += record.cacheType == "Chrome History" ? 1 : 0;
        const std::string visit = test::factOf(record, "visit_id");
        if (visit != "-" && record.cacheType != "Chrome Download") {
            EXPECT_TRUE(visits.insert(visit).second) << visit;
        }
    }
    EXPECT_EQ(pages, expected.at("expected").at("rows"));
    EXPECT_EQ(visits.size(), expected.at("expected").at("visits_table_rows_not_used"));
}

TEST_P(SqliteSample, leavesTheEvidenceAlone) {
    const auto &listed = expected.at("files").at(0);
    EXPECT_EQ(fileMD5(file), listed.at("md5").get<std::string>());
    for (const char *suffix : {"-wal", "-shm", "-journal"})
        EXPECT_FALSE(fs::exists(file.string() + suffix));
}

INSTANTIATE_TEST_SUITE_P(Real, SqliteSample,
                         testing::Values("chrome_history_plaso", "chrome_history_v10_hindsight",
                                         "chrome_history_v33_grr", "ff3_places_plaso",
                                         "ff41_places_portable"),
                         [](const auto &sample) { return sample.param; });

} // namespace
} // namespace nv
