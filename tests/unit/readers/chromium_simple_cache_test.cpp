#include "base/Files.h"
#include "readers/chrome/cache/CacheFormats.h"
#include "readers/chrome/cache/CacheKey.h"
#include "readers/chrome/cache/SimpleCache.h"
#include "support/BodyOf.h"
#include "support/FactText.h"
#include "support/FileReading.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/ChromiumCache.h"
#include "support/builders/LevelFiles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::fact;
using testing::HasSubstr;

constexpr std::int64_t kNoon = 1308139200; // 2011-06-15 12:00 UTC
const std::string kKey = "1/0/_dk_https://a.example https://a.example https://a.example/p";

test::ChromiumAnswer answer() {
    return {.requested = test::chromeTime(kNoon, 250'000),
            .answered = test::chromeTime(kNoon + 60, 750'000)};
}

struct SimpleCache : testing::Test {
    const std::vector<UrlRecord> &read() {
        cache.write(folder(), withList);
        return reading.read(parseChromiumSimpleCache, folder());
    }
    fs::path folder() const { return disk.path() / "Cache_Data"; }
    std::string body(const UrlRecord &record) const {
        return test::bodyOf(fetchSimpleBody, record, disk.path()).value_or("none");
    }

    test::TempFolder disk;
    test::SimpleCacheFiles cache;
    test::FileReading reading;
    bool withList = true;
};

TEST_F(SimpleCache, anEntryHasAllFields) {
    test::ChromiumAnswer head = answer();
    head.lines = {"HTTP/1.1 200 OK", "content-type: Text/HTML; Charset=\"UTF-8\"",
                  "Content-Length: 4"};
    head.first = test::chromeTime(kNoon - 3600);
    cache.add(0xA1, kKey, head.bytes(), "body", test::chromeTime(kNoon + 90));
    const auto &records = read();
    ASSERT_EQ(records.size(), 1U);
    const UrlRecord &record = records[0];
    EXPECT_EQ(record.cacheType, "Chrome Cache");
    EXPECT_EQ(record.HistoryVersion, "Simple 9");
    EXPECT_EQ(record.Action, "Visited");
    EXPECT_EQ(record.Status, "URL");
    EXPECT_EQ(record.Visits, kVisitsUnknown);
    EXPECT_EQ(record.URL, "https://a.example/p");
    EXPECT_EQ(record.URLRawValue, kKey);
    EXPECT_EQ(record.host, "a.example");
    EXPECT_EQ(record.ActionDateUTC.unixSeconds(), kNoon + 60);
    EXPECT_EQ(record.OtherDate.unixSeconds(), kNoon);
    EXPECT_EQ(record.OtherDateMeaning, "Last Requested Time");
    EXPECT_EQ(record.MIMEType, "text/html");
    EXPECT_EQ(record.MetaData, "HTTP/1.1 200 OK\r\ncontent-type: Text/HTML; Charset=\"UTF-8\"\r\n"
                               "Content-Length: 4\r\n");
    EXPECT_EQ(record.DataBlockFile, "00000000000000a1_0");
    EXPECT_EQ(record.DataBlockFileOffset, static_cast<std::int64_t>(24 + kKey.size()));
    EXPECT_EQ(record.CacheFileSize, 4);
    EXPECT_TRUE(record.CacheFileExists);
    EXPECT_EQ(record.SourceFile_ID, SourceFileId{7});
    EXPECT_EQ(fact(record, "cache_key"), kKey);
    EXPECT_EQ(fact(record, "partition"), "https://a.example");
    EXPECT_EQ(fact(record, "charset"), "utf-8");
    EXPECT_EQ(fact(record, "status_line"), "HTTP/1.1 200 OK");
    EXPECT_EQ(fact(record, "server_address"), "192.0.2.7:443");
    EXPECT_THAT(fact(record, "request_time"), HasSubstr("2011-06-15 12:00:00.250000"));
    EXPECT_THAT(fact(record, "first_response_time"), HasSubstr("2011-06-15 11:00:00"));
    EXPECT_THAT(fact(record, "last_used"), HasSubstr("2011-06-15 12:01:30"));
    EXPECT_EQ(fact(record, "body"), "");
    EXPECT_EQ(body(record), "body");
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.result.noted.empty());
    EXPECT_TRUE(reading.log.entries.empty());
}

TEST(ChromiumCacheKey, isTakenApartWhateverItsAge) {
    const auto parts = [](const char *key) {
        const ChromeCacheKey all = chromeCacheKeyOf(key);
        return all.url + "|" + all.partition + "|" + all.upload;
    };
    EXPECT_EQ(parts(kKey.c_str()), "https://a.example/p|https://a.example|");
    EXPECT_EQ(parts("1/0/_dk_s_cn_https://t.example https://f.example https://f.example/x"),
              "https://f.example/x|https://t.example|");
    EXPECT_EQ(parts("1/0/_dk_s_ https://t.example https://f.example/x"),
              "https://f.example/x|https://t.example|");
    EXPECT_EQ(parts("1/77/https://a.example/form"), "https://a.example/form||77");
    EXPECT_EQ(parts("0/https://a.example/"), "https://a.example/||");
    EXPECT_EQ(parts("https://a.example/0/1"), "https://a.example/0/1||");
    EXPECT_EQ(parts("Range_1/0/_dk_https://t.example https://t.example https://a.example:8/f:2f:1"),
              "https://a.example:8/f|https://t.example|");
    EXPECT_EQ(parts("1/0/_dk_"), "||");
    EXPECT_EQ(parts("_dk_no blank"), "blank|no|");
    EXPECT_EQ(parts(""), "||");
}

TEST(ChromiumCacheKey, hasTheBrowsersHash) {
    const std::string key = "1/0/https://a.example/\xC3\xA9.png";
    for (std::size_t size = 0; size <= key.size(); ++size)
        EXPECT_EQ(chromeKeyHash(key.substr(0, size)), test::chromiumKeyHash(key.substr(0, size)));
    EXPECT_EQ(chromeKeyHash("0"), 0xF247'5372U) << "as the browser stores it";
}

TEST_F(SimpleCache, redirectsAndEmptyBodiesAreRows) {
    test::ChromiumAnswer head = answer();
    head.lines = {"HTTP/1.1 301 Moved Permanently", "Location: /b"};
    cache.add(0xA1, kKey, head.bytes(), "");
    const auto &records = read();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].CacheFileSize, 0);
    EXPECT_FALSE(records[0].CacheFileExists);
    EXPECT_EQ(body(records[0]), "none");
}

TEST_F(SimpleCache, stretchesAreJoinedInOrderAndGapsTold) {
    test::ChromiumAnswer head = answer();
    head.lines.emplace_back("Content-Length: 30");
    cache.add(0xA1, kKey, head.bytes(), "")
        .addStretches(0xA1, kKey, {{20, "CCCCC"}, {0, "AAAA"}, {4, "BBBB"}});
    const auto &records = read();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(body(records[0]), "AAAABBBBCCCCC");
    EXPECT_EQ(records[0].CacheFileSize, 13);
    EXPECT_EQ(fact(records[0], "byte_ranges"), "0-7, 20-24; missing 8-19, 25-29");
}

TEST_F(SimpleCache, stretchesTakeNoBodysPlace) {
    cache.add(0xA1, kKey, answer().bytes(), "body").addStretches(0xA1, kKey, {});
    ASSERT_EQ(read().size(), 1U);
    EXPECT_EQ(body(reading.sink.records[0]), "body");
    EXPECT_EQ(reading.result.noted.at("whole body with stretches beside it"), 1U);
    cache.addStretches(0xA1, kKey, {{0, "xx"}});
    ASSERT_EQ(read().size(), 1U);
    EXPECT_EQ(body(reading.sink.records[0]), "body");
    EXPECT_EQ(fact(reading.sink.records[0], "further_stream"),
              "stretches 0-1 in 00000000000000a1_s");
    cache.file("00000000000000a1_s") = "ab";
    ASSERT_EQ(read().size(), 1U);
    EXPECT_EQ(body(reading.sink.records[0]), "body");
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
}

TEST_F(SimpleCache, stretchesOverEachOtherGiveEachByteOnce) {
    cache.add(0xA1, kKey, answer().bytes(), "")
        .addStretches(0xA1, kKey, {{0, "AAAAAA"}, {4, "BBBB"}, {5, "C"}, {8, "DD"}});
    ASSERT_EQ(read().size(), 1U);
    const UrlRecord &record = reading.sink.records[0];
    EXPECT_EQ(body(record), "AAAAAABBDD");
    EXPECT_EQ(record.CacheFileSize, 10);
    EXPECT_EQ(fact(record, "byte_ranges"), "0-9");
    EXPECT_EQ(fact(record, "body"), "") << "their checksums are those of the whole stretches";
    EXPECT_EQ(reading.result.noted.at("body with stretches that lie over each other"), 1U);
}

TEST_F(SimpleCache, aStretchThatIsCutShortKeepsWhatIsThere) {
    cache.add(0xA1, kKey, answer().bytes(), "")
        .addStretches(0xA1, kKey, {{0, "AAAA"}, {4, "BBBBBBBB"}});
    std::string &file = cache.file("00000000000000a1_s");
    file.resize(file.size() - 3);
    ASSERT_EQ(read().size(), 1U);
    EXPECT_EQ(body(reading.sink.records[0]), "AAAABBBBB");
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_THAT(reading.result.reason, HasSubstr("a stretch that is cut short"));
}

TEST_F(SimpleCache, aStretchWithAWrongLengthLosesNoOther) {
    cache.add(0xA1, kKey, answer().bytes(), "")
        .addStretches(0xA1, kKey, {{0, "AAAA", std::int64_t{1} << 62}, {-1, "BBBB"}, {4, "CCCC"}});
    ASSERT_EQ(read().size(), 1U);
    EXPECT_EQ(body(reading.sink.records[0]), "AAAACCCC");
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
}

TEST_F(SimpleCache, aDamagedHeadMakesNoSitesOwnCache) {
    cache.add(0xA1, kKey, answer().bytes().substr(0, 30), "body");
    ASSERT_EQ(read().size(), 1U);
    EXPECT_EQ(reading.sink.records[0].cacheType, "Chrome Cache");
    EXPECT_EQ(fact(reading.sink.records[0], "body"), "the head of its answer is damaged");
}

TEST_F(SimpleCache, doomedFilesAreRemnantsWithTheirBodies) {
    cache.add(0xA1, kKey, answer().bytes(), "old");
    cache.rename("00000000000000a1_0", "todelete_00000000000000a1_0_12");
    cache.add(0xA1, kKey, answer().bytes(), "new");
    const auto &records = read();
    ASSERT_EQ(records.size(), 2U);
    const auto &remnant = records[0].Status == "Recovered" ? records[0] : records[1];
    EXPECT_EQ(remnant.cacheType, "Chrome Cache Remnant");
    EXPECT_NE(fact(remnant, "recovered_from"), "");
    EXPECT_EQ(body(remnant), "old");
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

TEST_F(SimpleCache, aWrongChecksumIsToldOfTheRecord) {
    cache.add(0xA1, kKey, answer().bytes(), "body");
    cache.file("00000000000000a1_0")[24 + kKey.size()] = 'B';
    const auto &records = read();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(fact(records[0], "body"), "its checksum is wrong");
    EXPECT_EQ(body(records[0]), "Body");
    EXPECT_EQ(reading.result.noted.at("body with a wrong checksum"), 1U);
}

TEST_F(SimpleCache, whatTheListHasAndWhatItHasNotIsTold) {
    cache.add(0xA1, kKey, answer().bytes(), "body").list(0xB2, test::chromeTime(kNoon));
    read();
    EXPECT_EQ(
        reading.result.passedOver.at("entry that the-real-index lists, and whose file isn't there"),
        1U);
    withList = false;
    fs::remove_all(folder());
    EXPECT_EQ(read().size(), 1U);
    EXPECT_EQ(reading.sink.records[0].HistoryVersion, "Simple");
    EXPECT_EQ(reading.result.noted.size(), 1U);
}

TEST_F(SimpleCache, anotherVersionIsPassedOverByItsNumber) {
    cache.add(0xA1, kKey, answer().bytes(), "body");
    cache.file("00000000000000a1_0")[8] = 12;
    EXPECT_TRUE(read().empty());
    EXPECT_EQ(reading.result.passedOver.at("entry of version 12, not read"), 1U);
}

TEST_F(SimpleCache, aFileCutAnywhereLosesNoOther) {
    cache.add(0xA1, kKey, answer().bytes(), "body").add(0xB2, kKey + "2", answer().bytes(), "two");
    const std::string whole = cache.file("00000000000000a1_0");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        cache.file("00000000000000a1_0") = whole.substr(0, size);
        const auto &records = read();
        const bool hasKey = size >= 24 + kKey.size();
        ASSERT_EQ(records.size(), hasKey ? 2U : 1U) << size;
        EXPECT_EQ(records.back().URL, "https://a.example/p2");
        EXPECT_EQ(body(records.back()), "two");
        EXPECT_EQ(reading.result.state, ReadState::cutShort);
        EXPECT_THAT(reading.result.reason, HasSubstr("00000000000000a1_0"));
        if (hasKey) {
            EXPECT_EQ(records[0].cacheType, "Chrome Cache Remnant");
            EXPECT_EQ(records[0].URL, "https://a.example/p");
        }
    }
}

TEST_F(SimpleCache, hugeLengthsLeadNowhere) {
    cache.add(0xA1, kKey, answer().bytes(), "body")
        .addStretches(0xA1, kKey, {{0, "AAAA"}, {4, "B", std::int64_t{1} << 62}})
        .addStretches(0xB2, kKey, {{-1, "AAAA"}});
    const std::string whole = cache.file("00000000000000a1_0");
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (const char value : {'\xFF', '\x7F'}) {
            cache.file("00000000000000a1_0") = whole;
            for (std::size_t i = at; i < whole.size() && i < at + 4; ++i)
                cache.file("00000000000000a1_0")[i] = value;
            for (const UrlRecord &record : read()) {
                EXPECT_LE(record.CacheFileSize, static_cast<std::int64_t>(whole.size()));
                body(record);
            }
        }
}

TEST_F(SimpleCache, aDamagedListLosesNoEntry) {
    cache.add(0xA1, kKey, answer().bytes(), "body", test::chromeTime(kNoon));
    read();
    const Bytes list = readWhole(folder() / "index-dir/the-real-index");
    for (std::size_t size = 0; size < list.size(); ++size) {
        writeWhole(folder() / "index-dir/the-real-index", ByteView(list).raw().substr(0, size));
        EXPECT_EQ(reading.read(parseChromiumSimpleCache, folder()).size(), 1U);
        EXPECT_EQ(reading.result.state, ReadState::cutShort) << size;
    }
}

TEST_F(SimpleCache, scriptsOfWorkersHaveTheAddressesOfTheirStore) {
    cache.add(0xA1, "0", answer().bytes(), "self.x").add(0xA2, "7", answer().bytes(), "self.y");
    cache.write(disk.path() / "Service Worker/ScriptCache");
    disk.write("Service Worker/Database/000003.log",
               test::levelLog({test::scriptRow(2, 0, "https://a.example:8080/sw.js")}));
    const auto &records =
        reading.read(parseChromiumSimpleCache, disk.path() / "Service Worker/ScriptCache");
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].URL, "https://a.example:8080/sw.js");
    EXPECT_EQ(records[0].host, "a.example");
    EXPECT_EQ(records[0].URLRawValue, "0");
    EXPECT_EQ(records[0].cacheType, "Chrome Site Cache");
    EXPECT_EQ(fact(records[0], "cache_key"), "0");
    EXPECT_EQ(records[1].URL, "7");
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

TEST_F(SimpleCache, aSitesOwnCachesAreOfTheirOwnKind) {
    const std::string message("\x0A\x05\x0A\x03GET\x12\x16\x08\xC8\x01\x12\x02OK\x22\x0D\x0A\x04"
                              "Etag\x12\x05"
                              "value",
                              31);
    cache.add(0xA1, "https://a.example/offline", message, "<p>");
    cache.add(0xA2, "0", answer().bytes(), "self.x");
    cache.add(0xA3, "_keyhttps://a.example/s.js \nhttps://a.example/", "\1\2\3", "code");
    const auto &records = read();
    ASSERT_EQ(records.size(), 3U);
    for (const UrlRecord &record : records)
        EXPECT_EQ(record.cacheType, "Chrome Site Cache");
    EXPECT_EQ(records[0].MetaData, "HTTP 200 OK\r\nEtag: value\r\n");
    EXPECT_EQ(fact(records[0], "http_method"), "GET");
    EXPECT_EQ(records[1].URLRawValue, "0");
    EXPECT_EQ(records[2].URL, "https://a.example/s.js");
    EXPECT_EQ(fact(records[2], "partition"), "https://a.example/");
    EXPECT_FALSE(records[2].ActionDateUTC.has());
}

TEST_F(SimpleCache, aCertificateIsNamedOrSilent) {
    test::ChromiumAnswer head = answer();
    head.certificate = "no certificate";
    cache.add(0xA1, kKey, head.bytes(), "body");
    const auto &records = read();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(fact(records[0], "certificate_name"), "");
    EXPECT_EQ(fact(records[0], "server_address"), "192.0.2.7:443") << "what follows is read";
}

TEST_F(SimpleCache, cancellingEndsTheReading) {
    cache.add(0xA1, kKey, answer().bytes(), "1").add(0xA2, kKey, answer().bytes(), "2");
    cache.write(folder());
    test::CancelAfter watcher(1);
    EXPECT_EQ(reading.read(parseChromiumSimpleCache, folder(), watcher).size(), 1U);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
}

TEST(SimpleCacheFileName, isOfAnEntryOrNot) {
    EXPECT_EQ(simpleFileName("00acb88820c9a06a_0")->hash, 0x00AC'B888'20C9'A06AU);
    EXPECT_EQ(simpleFileName("00acb88820c9a06a_s")->part, 's');
    EXPECT_TRUE(simpleFileName("todelete_00acb88820c9a06a_1_7")->isDoomed);
    for (const char *name : {"index", "00acb88820c9a06a_2", "00acb88820c9a06a_00", "_0",
                             "00acb88820c9a06_0", "todelete_", "00acb88820c9a06a"})
        EXPECT_FALSE(simpleFileName(name)) << name;
}

} // namespace
} // namespace nv
