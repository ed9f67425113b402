#include "base/Files.h"
#include "base/Text.h"
#include "readers/chrome/cache/CacheBody.h"
#include "support/Facts.h"
#include "support/Samples.h"
#include "time/DateFormat.h"
#include "unit/readers/ChromeCacheFixture.h"

#include <nlohmann/json.hpp>
#include <openssl/evp.h>

#include <map>

namespace nv {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::IsEmpty;

std::string sha256(const fs::path &file) {
    const Bytes bytes = readWhole(file);
    Bytes digest(32);
    EVP_Digest(bytes.data(), bytes.size(), digest.data(), nullptr, EVP_sha256(), nullptr);
    return toLower(bytesToHex(ByteView(digest), 0, 0));
}

/// A real cache with what independent readers found in it.
struct ChromeCacheSample : testing::Test {
    json expected;
    fs::path evidence;
    test::ChromeCacheReading reading;

    /// False when the samples aren't here.
    bool read(const char *name) {
        const auto samples = test::samplesFolder();
        if (!samples)
            return false;
        const fs::path folder = *samples / name;
        const Bytes text = readWhole(folder / "expected.json");
        expected = json::parse(text.begin(), text.end());
        evidence = folder / "evidence";
        const fs::path found = folder / expected.at("scan").at(0).at("path").get<std::string>();
        reading.read(found.parent_path() / "index", evidence);
        return true;
    }
    const UrlRecord *recordAt(std::int64_t offset) const {
        for (const UrlRecord &record : reading.records())
            if (record.MapFileOffset == offset)
                return &record;
        return nullptr;
    }
};

/// The file's dates have fractions of a second, which are dropped.
std::string wholeSeconds(const std::string &date) {
    return date.substr(0, 10) + "T" + date.substr(11, 8) + "Z";
}

void compare(const UrlRecord &record, const json &wanted) {
    EXPECT_EQ(record.URL, wanted.at("keyURL"));
    EXPECT_EQ(record.RecordSize, wanted.at("true_key_length"));
    EXPECT_EQ(isoUtc(record.ActionDateUTC), wholeSeconds(wanted.at("ActionDateUTC")));
    EXPECT_EQ(isoUtc(record.OtherDate), wholeSeconds(wanted.at("OtherDate")));
    EXPECT_EQ(record.OtherDateMeaning, wanted.at("OtherDateMeaning"));
    EXPECT_EQ(record.CacheFileSize, wanted.at("CacheFileSize"));
    EXPECT_EQ(record.DataBlockFile, wanted.at("DataBlockFile"));
    EXPECT_EQ(record.DataBlockFileOffset, wanted.at("DataBlockFileOffset"));
    EXPECT_EQ(record.MetaDataRecordOffset, wanted.at("MetaDataRecordOffset"));
    EXPECT_EQ(record.Visits, wanted.at("Visits"));
    EXPECT_EQ(record.cacheType, wanted.at("cacheType"));
}

TEST_F(ChromeCacheSample, givesTheCountedRecordsAndTellsOfTheRest) {
    if (!read("chrome_cache_v13_converted"))
        GTEST_SKIP() << "the folder of real samples is not here";
    const json &facts = expected.at("expected");
    EXPECT_EQ(reading.records().size(), facts.at("rows"));
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_THAT(reading.result.reason, testing::HasSubstr("data_3: the block file is missing"));
    EXPECT_EQ(reading.result.notReached,
              facts.at("skipped_because_the_header_block_file_data_3_is_missing"));
    EXPECT_EQ(reading.log.entries.size(), 1U);
    EXPECT_THAT(reading.result.passedOver,
                testing::ElementsAre(testing::Pair("rest of a URL of more than 218 characters",
                                                   facts.at("rows_with_keyURL_cut_at_218_"
                                                            "characters"))));
    std::map<std::string, int> byBody;
    for (const UrlRecord &record : reading.records())
        ++byBody[record.DataBlockFile == "f_000000"
                     ? "content address 0 (by the rule named f_000000)"
                 : record.DataBlockFile.starts_with("f_") ? "separate file"
                                                          : record.DataBlockFile];
    EXPECT_EQ(json(byBody), facts.at("rows_by_body"));
}

TEST_F(ChromeCacheSample, givesTheListedRecordsFieldByField) {
    if (!read("chrome_cache_v13_converted"))
        GTEST_SKIP() << "the folder of real samples is not here";
    ASSERT_FALSE(expected.at("records").empty());
    for (const json &wanted : expected.at("records")) {
        SCOPED_TRACE(wanted.dump());
        const UrlRecord *record = recordAt(wanted.at("MapFileOffset"));
        ASSERT_TRUE(record);
        compare(*record, wanted);
    }
}

TEST_F(ChromeCacheSample, givesTheListedBodiesByteForByte) {
    if (!read("chrome_cache_v13_converted"))
        GTEST_SKIP() << "the folder of real samples is not here";
    const test::TempFolder scratch;
    const Evidence files(evidence);
    for (const json &wanted : expected.at("records")) {
        SCOPED_TRACE(wanted.dump());
        BodyTarget target(scratch.path() / "body", 0);
        const bool isThere = fetchChromeBody(*recordAt(wanted.at("MapFileOffset")), files, target);
        ASSERT_EQ(isThere, wanted.contains("body_sha256"));
        if (isThere) {
            EXPECT_EQ(sha256(target.take().file), wanted.at("body_sha256"));
        }
    }
}

TEST_F(ChromeCacheSample, givesEveryEntryWithItsWholeKeyAndHeaders) {
    reading.classicOnly = false;
    if (!read("chrome_cache_v13_converted"))
        GTEST_SKIP() << "the folder of real samples is not here";
    constexpr std::size_t kEntries = 217;
    const std::size_t rows = expected.at("expected").at("rows");
    ASSERT_EQ(reading.records().size(), kEntries);
    EXPECT_EQ(reading.result.notReached, 0U);
    EXPECT_EQ(reading.result.state, ReadState::cutShort); // data_3 is missing
    std::size_t withHeaders = 0;
    for (std::size_t i = 0; i < kEntries; ++i) {
        const UrlRecord &record = reading.records()[i];
        EXPECT_EQ(record.cacheType, "Chrome Cache");
        EXPECT_EQ(test::factOf(record, "classic_rule"), i < rows ? "-" : "entry without a header");
        if (i >= rows) {
            EXPECT_EQ(record.URL.size(), record.RecordSize); // not a character is missing
        }
        withHeaders += test::factOf(record, "http_headers") != "-" ? 1 : 0;
    }
    EXPECT_EQ(withHeaders, rows);
}

TEST_F(ChromeCacheSample, ofALaterVersionIsTold) {
    if (!read("chrome_cache_v20_plaso"))
        GTEST_SKIP() << "the folder of real samples is not here";
    EXPECT_THAT(reading.records(), IsEmpty());
    EXPECT_EQ(reading.result.state, ReadState::notReadYet);
    EXPECT_EQ(reading.result.reason, "later block cache, not read yet");
    EXPECT_EQ(reading.result.notReached, expected.at("expected").at("index_num_entries_field"));
}

} // namespace
} // namespace nv
