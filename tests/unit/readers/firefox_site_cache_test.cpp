#include "base/Files.h"
#include "readers/CachedBody.h"
#include "readers/Crc32c.h"
#include "readers/Registry.h"
#include "readers/Unpacker.h"
#include "readers/firefox/cache/SiteCache.h"
#include "readers/firefox/cache/SiteCacheRecord.h"
#include "support/FactsOf.h"
#include "support/FileReading.h"
#include "support/Samples.h"
#include "support/builders/FirefoxSiteCache.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nv {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test::factOf;
using test::FirefoxSiteEntry;

const std::string kId = FirefoxSiteEntry().body;

class FirefoxSiteCache : public testing::Test {
  protected:
    const std::vector<UrlRecord> &read() {
        return reading.read(parseFirefoxSiteCache, files.close());
    }
    void addBody(std::string_view bytes) { files.addBody(files.bodyName(kId), bytes); }
    UrlRecord only() {
        const auto &records = read();
        EXPECT_EQ(records.size(), 1U);
        return records.empty() ? UrlRecord() : records.front();
    }
    std::string bodyOfRecord(UrlRecord record) {
        const Evidence evidence(folder.path());
        const Extraction extraction = {
            .evidence = evidence, .folder = reading.scratch.path(), .log = reading.log};
        const auto body = bodyOf(record, extraction, kBodyInMemory);
        if (!body)
            return "-";
        const Bytes bytes = body->isInMemory ? body->bytes : readWhole(body->file);
        return std::string(ByteView(bytes).raw());
    }

    test::TempFolder folder;
    fs::path cache =
        folder.path() /
        "storage/default/https+++app.example+8080^partitionKey=%28https%2Csite.example%29/cache";
    test::FirefoxSiteCacheFiles files{cache};
    test::FileReading reading;
};

TEST_F(FirefoxSiteCache, anEntryIsARow) {
    FirefoxSiteEntry entry;
    entry.query = "?a=b";
    entry.fragment = "top";
    entry.referrer = "https://app.example/";
    entry.requestHeaders = {{"accept", "*/*"}};
    files.add(entry);
    addBody(test::snappyFrames("<html>page</html>"));
    const UrlRecord record = only();
    EXPECT_EQ(record.cacheType, "Firefox Site Cache");
    EXPECT_EQ(record.HistoryVersion, "site cache 31");
    EXPECT_EQ(record.Status, "URL");
    EXPECT_EQ(record.URL, "https://app.example/page.html?a=b#top");
    EXPECT_EQ(record.host, "app.example");
    EXPECT_EQ(record.ActionDateUTC.unixSeconds(), 1700000000);
    EXPECT_EQ(record.Referrer, "https://app.example/");
    EXPECT_EQ(record.MIMEType, "text/html");
    EXPECT_EQ(record.MetaData, "HTTP 200 OK\r\nDate: Tue, 14 Nov 2023 22:13:20 GMT\r\n"
                               "Content-Type: text/html; charset=utf-8\r\n")
        << "without the packing that the stored body has no more";
    EXPECT_EQ(record.DataBlockFile, kId + ".final");
    EXPECT_EQ(record.CacheFolderName, "morgue/158");
    EXPECT_EQ(record.CacheFileSize, 17);
    EXPECT_TRUE(record.IsWebPage);
    EXPECT_EQ(factOf(record, "site_url"), "https://app.example:8080");
    EXPECT_EQ(factOf(record, "partition"), "(https,site.example) [%28https%2Csite.example%29]");
    EXPECT_EQ(factOf(record, "response_code"), "200 [200 OK]");
    EXPECT_EQ(factOf(record, "charset"), "utf-8");
    EXPECT_EQ(factOf(record, "http_method"), "GET");
    EXPECT_EQ(factOf(record, "source_table"), "entries");
    EXPECT_EQ(factOf(record, "source_rowid"), "1");
    EXPECT_EQ(factOf(record, "url_chain"), "-");
    std::string elements;
    for (const RecordFact &fact : record.facts)
        if (fact.name == "cache_element")
            elements += std::get<std::string>(fact.value) + ";";
    EXPECT_EQ(elements, "cache=pages;response_type=basic;request_header=accept: */*;");
    EXPECT_EQ(bodyOfRecord(record), "<html>page</html>");
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.log.entries.empty());
    EXPECT_EQ(reading.origin.browserVersion, "caches 31");
}

TEST_F(FirefoxSiteCache, scriptsOfWorkersAreOfTheBrowsersOwnCache) {
    FirefoxSiteEntry entry;
    entry.cache = 2;
    entry.urls = {"https://app.example/old.js", "https://app.example/page.html"};
    files.add(entry);
    const UrlRecord record = only();
    EXPECT_EQ(factOf(record, "cache_element"), "cache of the browser's own=scripts");
    EXPECT_EQ(factOf(record, "url_chain"), "https://app.example/old.js");
    EXPECT_EQ(factOf(record, "body"), "its file isn't there");
    EXPECT_EQ(record.CacheFileSize, 0);
    EXPECT_FALSE(record.CacheFileExists);
    EXPECT_EQ(bodyOfRecord(record), "-");
    EXPECT_EQ(reading.result.noted.at("body whose file isn't there"), 1U);
}

TEST_F(FirefoxSiteCache, largeBodiesAreUnpackedFrameByFrame) {
    const std::string text = std::string(100'000, 'a') + std::string(2'000'000, '\0') + "end";
    files.add({});
    addBody(test::snappyFrames(text));
    const UrlRecord record = only();
    EXPECT_EQ(record.CacheFileSize, static_cast<std::int64_t>(text.size()));
    EXPECT_TRUE(bodyOfRecord(record) == text);
}

TEST_F(FirefoxSiteCache, damageGivesTheFramesBeforeIt) {
    const std::string sound = test::snappyFrames(std::string(65536, 'a') + "second");
    files.add({});
    std::string damaged = sound;
    damaged.back() = 'x';
    addBody(damaged);
    const UrlRecord record = only();
    EXPECT_EQ(record.CacheFileSize, 65536);
    EXPECT_EQ(factOf(record, "body"),
              "only its first 65536 bytes: a frame that isn't as its checksum says");
    EXPECT_EQ(bodyOfRecord(record), std::string(65536, 'a'));
    EXPECT_EQ(reading.result.noted.at("body whose file is damaged or cut short"), 1U);
    addBody(sound.substr(0, sound.size() - 1));
    EXPECT_EQ(factOf(only(), "body"), "only its first 65536 bytes: its file ends there");
}

TEST_F(FirefoxSiteCache, bodiesWithoutAnEntryAreRemnants) {
    const std::string other = "{00112233-4455-6677-8899-aabbccddeeff}";
    FirefoxSiteEntry upper;
    for (char &c : upper.body)
        c = static_cast<char>(std::toupper(c));
    files.add(upper);
    addBody(test::snappyFrames("of the entry"));
    files.addBody("255/" + other + ".tmp", test::snappyFrames("left"));
    const auto &records = read();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[1].cacheType, "Firefox Cache Remnant");
    EXPECT_EQ(records[1].Status, "Recovered");
    EXPECT_EQ(factOf(records[1], "recovered_from"),
              "morgue/255/" + other + ".tmp, which no entry names");
    EXPECT_EQ(bodyOfRecord(records[1]), "left");
    EXPECT_EQ(sourceOf(records[1])->key, "firefox-site-cache");
    EXPECT_EQ(sourceOf(records[0])->key, "firefox-site-cache");
}

TEST_F(FirefoxSiteCache, aNumberThatIsNoneLeadsNowhere) {
    FirefoxSiteEntry entry;
    entry.body = "../../../../secret";
    files.add(entry);
    folder.write("secret", "no");
    const UrlRecord record = only();
    EXPECT_EQ(factOf(record, "body"), "\"../../../../secret\" names no file");
    EXPECT_EQ(bodyOfRecord(record), "-");
    EXPECT_EQ(siteBodyFile("{00112233-4455-6677-8899-aabbccddee0/}"), "");
    EXPECT_EQ(siteBodyFile(kId), "morgue/158/" + kId + ".final");
}

TEST_F(FirefoxSiteCache, tablesThatAreGoneCostTheirOwnAlone) {
    files.add({});
    files.file().run("DROP TABLE response_headers").run("DROP TABLE storage");
    EXPECT_EQ(only().MetaData, "HTTP 200 OK\r\n");
    EXPECT_FALSE(only().ActionDateUTC.has());
    EXPECT_EQ(reading.result.state, ReadState::complete);
    test::SqliteFile(cache / "other.sqlite").run("CREATE TABLE caches (id)").close();
    EXPECT_TRUE(reading.read(parseFirefoxSiteCache, cache / "other.sqlite").empty());
    EXPECT_EQ(reading.result.state, ReadState::failed);
}

TEST(SiteOrigin, isTakenFromItsFolder) {
    EXPECT_EQ(siteOriginOf("https+++app.example").site, "https://app.example");
    EXPECT_EQ(siteOriginOf("https+++app.example^userContextId=4").attributes, "^userContextId=4");
    EXPECT_EQ(siteOriginOf("moz-extension+++0a-1").site, "moz-extension://0a-1");
    EXPECT_EQ(siteOriginOf("copied").site, "");
}

/// What comes out of the stream, fed so many bytes at a time, and what is wrong.
std::string unpacked(std::string_view stream, std::size_t step = 1000) {
    const auto unpacker = snappyUnpacker();
    std::string text;
    for (; !stream.empty(); stream.remove_prefix(std::min(step, stream.size())))
        if (!unpacker->feed(stream.substr(0, step), [&text](std::string_view piece) {
                text += piece;
                return true;
            }))
            break;
    return text + "|" + unpacker->problem() + (unpacker->isWhole() ? "" : "...");
}

TEST(SnappyFrames, areUnpackedHoweverTheyAreCut) {
    EXPECT_EQ(crc32c("123456789"), 0xE306'9283U) << "as it is published";
    const std::string text = "text"s + std::string(300, '\0');
    const std::string begin("\xFF\x06\0\0sNaPpY", 10);
    const std::string padding("\xFE\x03\0\0abc\x80\0\0\0", 11);
    const std::string stream = test::snappyFrames(text) + padding + begin +
                               test::snappyFrame(1, "!", "!", test::SnappyBy::standard);
    for (const std::size_t step : {1, 2, 3, 7, 1000})
        EXPECT_EQ(unpacked(stream, step), text + "!|") << step;
    for (std::size_t size = 0; size < stream.size(); ++size)
        EXPECT_EQ(unpacked(stream.substr(0, size)).find("||"), std::string::npos);
    EXPECT_EQ(unpacked(begin), "|");
    EXPECT_EQ(unpacked(""), "|...");
}

TEST(SnappyFrames, thatAreNoneAreDamage) {
    const std::string begin("\xFF\x06\0\0sNaPpY", 10);
    EXPECT_EQ(unpacked("\0\0\0\0 text"s), "|it doesn't begin as Snappy's frames do...");
    EXPECT_EQ(unpacked("\xFF\x06\0\0sNaPpX"s), "|it doesn't begin as Snappy's frames do...");
    EXPECT_EQ(unpacked(begin + "\x02\x01\0\0a"s), "|a frame of the unknown kind 2...");
    EXPECT_EQ(unpacked(begin + "\0\x03\0\0abc"s), "|a frame of kind 0 with 3 bytes...");
    EXPECT_EQ(unpacked(begin + "\x01\xFF\xFF\xFF"s), "|a frame of kind 1 with 16777215 bytes...");
    EXPECT_EQ(unpacked(begin + test::snappyFrame(0, "", "\xFF\xFF\xFF\xFF\x0F")),
              "|a frame that can't be unpacked");
    const std::string large(65537, 'a');
    EXPECT_EQ(unpacked(begin + test::snappyFrame(1, large, large)),
              "|a frame that can't be unpacked");
}

/// Real caches: each body has the length that its server said, or more where it was packed.
class FirefoxSiteCacheSample : public testing::TestWithParam<std::string> {};

TEST_P(FirefoxSiteCacheSample, everyEntryIsThereWithItsBody) {
    const auto samples = test::samplesFolder();
    const fs::path folder =
        samples ? samples->parent_path() / "samples-today" / GetParam() : fs::path();
    if (!samples || !fs::is_directory(folder))
        GTEST_SKIP() << "the folder of today's samples is not here";
    test::FileReading reading;
    reading.read(parseFirefoxSiteCache,
                 folder / "evidence/home/ada/.mozilla/firefox/abcd1234.default-esr/storage/default/"
                          "https+++app.tidemill.example/cache/caches.sqlite");
    ASSERT_EQ(reading.sink.records.size(), 4U);
    for (const UrlRecord &record : reading.sink.records) {
        EXPECT_EQ(record.cacheType, "Firefox Site Cache");
        EXPECT_EQ(record.host, "app.tidemill.example");
        EXPECT_TRUE(record.ActionDateUTC.has());
        EXPECT_GT(record.CacheFileSize, 80);
        EXPECT_EQ(factOf(record, "certificate_name"), "www.tidemill.example");
        EXPECT_EQ(factOf(record, "body"), "-");
    }
    EXPECT_EQ(reading.sink.records[0].CacheFileSize, 237);
    EXPECT_EQ(reading.sink.records[2].CacheFileSize, 7563);
    EXPECT_TRUE(reading.sink.records[2].IsPicture);
    EXPECT_EQ(reading.sink.records[3].CacheFileSize, 86);
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

INSTANTIATE_TEST_SUITE_P(Profiles, FirefoxSiteCacheSample,
                         testing::Values("firefox153_closed", "firefox153_killed"),
                         [](const auto &sample) { return sample.param; });

} // namespace
} // namespace nv
