#include "base/Files.h"
#include "support/Samples.h"
#include "support/builders/IndexReading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <map>

namespace nv {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using test::IndexReading;

constexpr const char *kByName = "evidence/Recovered/0001-UC-index.dat";
constexpr const char *kByMark = "evidence/Recovered/carved/index.dat";

/// Real records laid one after the other, twice: under the name that tells the format, and under
/// the mark that does.
class HistExSample : public testing::Test {
  protected:
    void SetUp() override {
        const auto samples = test::samplesFolder();
        if (!samples)
            GTEST_SKIP() << "the folder of real samples is not here";
        folder = *samples / "histex_made";
        const Bytes text = readWhole(folder / "expected.json");
        expected = json::parse(text.begin(), text.end());
    }

    IndexReading read(const std::string &path, HistoryFileType type) const {
        IndexReading reading(type, test::kHistExReader);
        reading.readFile(folder / path, folder / "evidence");
        EXPECT_EQ(reading.result.state, ReadState::complete);
        EXPECT_THAT(reading.result.passedOver, testing::IsEmpty());
        EXPECT_THAT(reading.log.entries, testing::IsEmpty());
        return reading;
    }

    fs::path folder;
    json expected;
};

TEST_F(HistExSample, givesTheCountedRecords) {
    const IndexReading reading = read(kByName, HistoryFileType::histEx);
    const json &counts = expected.at("expected").at(kByName);
    EXPECT_EQ(reading.records().size(), counts.at("rows").get<std::size_t>());
    const auto redirects = std::ranges::count(reading.records(), "REDR", &UrlRecord::Status);
    EXPECT_EQ(redirects, counts.at("rows_by_signature").at("REDR").get<int>());
    EXPECT_EQ(reading.records().at(0).MapFileOffset, counts.at("first_hit_offset"));
    EXPECT_EQ(reading.file.version, counts.at("version_text"));
}

TEST_F(HistExSample, givesTheListedRecords) {
    const IndexReading reading = read(kByName, HistoryFileType::histEx);
    std::map<std::int64_t, const UrlRecord *> byOffset;
    for (const UrlRecord &record : reading.records())
        byOffset[record.MapFileOffset] = &record;
    for (const json &wanted : expected.at("records")) {
        SCOPED_TRACE(wanted.dump());
        ASSERT_TRUE(byOffset.contains(wanted.at("offset")));
        const UrlRecord &record = *byOffset[wanted.at("offset")];
        EXPECT_EQ(record.URLRawValue, wanted.at("URLRawValue"));
        EXPECT_EQ(record.Status, wanted.at("Status"));
        if (record.Status == "REDR") {
            EXPECT_EQ(record.Action, "Redirected");
            EXPECT_EQ(record.cacheType, "");
            continue;
        }
        EXPECT_EQ(record.RecordSize, wanted.at("length"));
        EXPECT_EQ(record.Visits, wanted.at("Visits"));
        // The list leaves these out; without them the rows could be found by no query of visits.
        EXPECT_EQ(record.Action, "Visited");
        EXPECT_EQ(record.cacheType, "Unallocated");
    }
    // This one holds the filler 0xDEADBEEF in its dates.
    EXPECT_FALSE(byOffset.at(3968)->ActionDateUTC.has());
}

// The mark of the second file holds "URL" without a blank. A walk from there would meet no record;
// since only a signature counts as the first one, all of them are found.
TEST_F(HistExSample, givesTheSameRecordsAfterTheMarkThatHoldsTheLettersOfASignature) {
    const IndexReading byName = read(kByName, HistoryFileType::histEx);
    const IndexReading byMark = read(kByMark, HistoryFileType::histExIndex);
    EXPECT_EQ(byMark.records().size(), expected.at("expected")
                                           .at(kByMark)
                                           .at("rows_if_the_walk_starts_at_the_first_record")
                                           .get<std::size_t>());
    ASSERT_EQ(byName.records().size() + byMark.records().size(), 44U);
    for (std::size_t i = 0; i < byName.records().size(); ++i) {
        EXPECT_EQ(byMark.records()[i].URL, byName.records()[i].URL);
        EXPECT_EQ(byMark.records()[i].MapFileOffset, byName.records()[i].MapFileOffset);
        EXPECT_EQ(byMark.records()[i].ActionDateUTC, byName.records()[i].ActionDateUTC);
    }
}

} // namespace
} // namespace nv
