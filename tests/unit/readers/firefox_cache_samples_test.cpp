#include "base/Md5.h"
#include "base/Text.h"
#include "support/Samples.h"
#include "unit/readers/FirefoxCacheFixture.h"

#include <nlohmann/json.hpp>
#include <openssl/evp.h>

#include <map>

namespace nv {
namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class FirefoxCacheSample : public test::FirefoxCacheFixture {
  protected:
    /// False where the real samples aren't here.
    bool readSample(std::string_view name) {
        const auto samples = test::samplesFolder();
        if (!samples)
            return false;
        const Bytes text = readWhole(*samples / name / "expected.json");
        expected = json::parse(text.begin(), text.end());
        base = *samples / name / "evidence";
        readMap(*samples / name / expected.at("scan").at(0).at("path").get<std::string>());
        return true;
    }

    UrlRecord *recordOf(const json &wanted) {
        for (UrlRecord &record : records())
            if (record.URL == wanted.at("URL") &&
                record.DataBlockFileOffset == wanted.at("DataBlockFileOffset"))
                return &record;
        return nullptr;
    }

    json expected;
};

std::string sha256(const std::string &bytes) {
    Bytes digest(32);
    unsigned int size = 0;
    EVP_Digest(bytes.data(), bytes.size(), digest.data(), &size, EVP_sha256(), nullptr);
    return toLower(bytesToHex(ByteView(digest), 0, size));
}

Date dateOf(const json &text) {
    CivilTime t;
    std::sscanf(text.get<std::string>().c_str(), "%d-%d-%d %d:%d:%d", &t.year, &t.month, &t.day,
                &t.hour, &t.minute, &t.second);
    return Date::fromCivil(t);
}

TEST_F(FirefoxCacheSample, ofFirefox3GivesTheCountedRecordsAndSaysWhatItPassesOver) {
    if (!readSample("ff3_cache_kiosk"))
        GTEST_SKIP() << "the folder of real samples is not here";
    EXPECT_EQ(records().size(), expected.at("expected").at("rows_by_the_letter"));
    EXPECT_EQ(result.state, ReadState::complete);
    EXPECT_THAT(messages(), IsEmpty());
    EXPECT_EQ(file.version, "3.0");
    EXPECT_THAT(result.passedOver,
                ElementsAre(Pair("bucket 0", 1), Pair("metadata in one block", 1)));
    std::map<std::string, int> byFile;
    for (const UrlRecord &record : records())
        ++byFile[record.DataBlockFileOffset == 0 ? "0" : record.DataBlockFile];
    json wanted = expected.at("expected").at("rows_by_data_file");
    EXPECT_EQ(json(byFile), wanted);
}

TEST_F(FirefoxCacheSample, ofFirefox3GivesTheListedRecordsFieldByField) {
    if (!readSample("ff3_cache_kiosk"))
        GTEST_SKIP() << "the folder of real samples is not here";
    int found = 0;
    for (const json &wanted : expected.at("records")) {
        SCOPED_TRACE(wanted.dump());
        UrlRecord *record = recordOf(wanted);
        // An entry with metadata in one block is listed by none of the earlier cases.
        ASSERT_EQ(record == nullptr, wanted.contains("note"));
        if (!record)
            continue;
        ++found;
        EXPECT_EQ(record->ActionDateUTC, dateOf(wanted.at("ActionDateUTC")));
        EXPECT_EQ(record->OtherDate, dateOf(wanted.at("OtherDate")));
        EXPECT_EQ(record->OtherDateMeaning, wanted.at("OtherDateMeaning"));
        EXPECT_EQ(record->Visits, wanted.at("Visits"));
        EXPECT_EQ(record->CacheFileSize, wanted.at("CacheFileSize"));
        EXPECT_EQ(record->DataBlockFile, wanted.at("DataBlockFile"));
        EXPECT_EQ(record->cacheType, wanted.at("cacheType"));
        EXPECT_TRUE(record->MetaData.starts_with(wanted.at("MetaData_begins").get<std::string>()));
        const bool packed = wanted.value("gzip", false);
        EXPECT_EQ(sha256(bodyOf(*record)),
                  wanted.at(packed ? "inflated_sha256" : "body_sha256").get<std::string>());
        EXPECT_EQ(record->GZipEncoded, packed);
    }
    EXPECT_GE(found, 6);
}

TEST_F(FirefoxCacheSample, ofFirefox3GivesEveryBody) {
    if (!readSample("ff3_cache_kiosk"))
        GTEST_SKIP() << "the folder of real samples is not here";
    std::map<std::string, std::string> md5ByFile;
    for (const json &each : expected.at("files"))
        md5ByFile[fs::path(each.at("path").get<std::string>()).filename()] = each.at("md5");
    int packed = 0;
    int separate = 0;
    for (UrlRecord &record : records()) {
        const std::string body = bodyOf(record);
        ASSERT_TRUE(record.GZipEncoded ||
                    body.size() == static_cast<std::size_t>(record.CacheFileSize))
            << record.URL;
        packed += record.GZipEncoded ? 1 : 0;
        if (record.DataBlockFileOffset == 0 && !record.GZipEncoded) {
            EXPECT_EQ(md5Hex(body), md5ByFile.at(record.DataBlockFile + "d01")) << record.URL;
            ++separate;
        }
    }
    EXPECT_EQ(packed, expected.at("expected").at("gzip_bodies"));
    EXPECT_GT(separate, 10);
    EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(FirefoxCacheSample, ofFirefox3GivesWhatTheClassicRulesPassOver) {
    classicOnly = false;
    if (!readSample("ff3_cache_kiosk"))
        GTEST_SKIP() << "the folder of real samples is not here";
    ASSERT_EQ(records().size(), expected.at("expected").at("rows_by_the_letter").get<int>() + 2);
    EXPECT_THAT(result.passedOver, IsEmpty());
    for (std::size_t i = records().size() - 2; i < records().size(); ++i) {
        EXPECT_EQ(records()[i].cacheType, "Firefox Cache");
        EXPECT_TRUE(records()[i].URL.starts_with("http"));
        records()[i].URLID = UrlId{1};
        EXPECT_NE(bodyOf(records()[i]), "(none)") << records()[i].URL;
    }
}

TEST_F(FirefoxCacheSample, ofALaterVersionIsRefusedByName) {
    if (!readSample("ff4_cache_refused"))
        GTEST_SKIP() << "the folder of real samples is not here";
    EXPECT_EQ(records().size(), expected.at("expected").at("rows"));
    EXPECT_EQ(result.state, ReadState::notReadYet);
    EXPECT_THAT(result.reason, testing::HasSubstr("the map is of version 00010013, later than"));
}

} // namespace
} // namespace nv
