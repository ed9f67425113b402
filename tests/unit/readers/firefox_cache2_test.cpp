#include "base/Files.h"
#include "readers/CachedBody.h"
#include "readers/Registry.h"
#include "readers/firefox/cache/Cache2.h"
#include "readers/firefox/cache/Cache2Entry.h"
#include "readers/firefox/cache/Cache2Hash.h"
#include "support/FactsOf.h"
#include "support/FileReading.h"
#include "support/builders/FirefoxCache2.h"
#include "support/builders/Packed.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nv {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using test::FirefoxCache2Entry;

class FirefoxCache2 : public testing::Test {
  protected:
    const std::vector<UrlRecord> &read(const fs::path &artefact) {
        return reading.read(parseFirefoxCache2, artefact);
    }
    const std::vector<UrlRecord> &readAll() { return read(cache); }
    /// The one record of a cache with this entry.
    UrlRecord only(const FirefoxCache2Entry &entry) {
        fs::remove_all(cache);
        entry.writeTo(entries);
        const auto &records = readAll();
        EXPECT_EQ(records.size(), 1U);
        return records.empty() ? UrlRecord() : records.at(0);
    }
    std::string bodyOfRecord(UrlRecord record, bool isAsStored = false) {
        const Evidence evidence(folder.path());
        const Extraction extraction = {.evidence = evidence,
                                       .folder = reading.scratch.path(),
                                       .log = reading.log,
                                       .isAsStored = isAsStored};
        const auto body = bodyOf(record, extraction, kBodyInMemory);
        return body ? std::string(body->raw()) : "-"s;
    }
    std::uint64_t noted() const {
        std::uint64_t count = 0;
        for (const auto &[reason, each] : reading.result.noted)
            count += each;
        return count;
    }

    test::TempFolder folder;
    fs::path cache = folder.path() / "cache2";
    fs::path entries = cache / "entries";
    test::FileReading reading;
};

TEST_F(FirefoxCache2, anEntryIsARow) {
    FirefoxCache2Entry entry;
    entry.key =
        "O^userContextId=4&partitionKey=%28https%2Csite.example%29,a,:https://host.example/a?b=c";
    entry.elements = {{"request-method", "GET"},
                      {"peer-ip-address", "192.0.2.7"},
                      {"peer-port", "443"},
                      {"net-response-time-onstart", "12"},
                      {"net-response-time-onstop", "34"},
                      {"ctid", "3"},
                      {"necko:classified", "1"}};
    entry.expires = 1800000000;
    const UrlRecord record = only(entry);
    EXPECT_EQ(record.cacheType, "Firefox Cache");
    EXPECT_EQ(record.URL, "https://host.example/a?b=c");
    EXPECT_EQ(record.URLRawValue, entry.key);
    EXPECT_EQ(record.host, "host.example");
    EXPECT_EQ(record.HistoryVersion, "cache2 version 4");
    EXPECT_EQ(record.HistoryFilePath, (entries / entry.name()).string());
    EXPECT_EQ(record.ActionDateUTC, Date::fromUnixSeconds(1700000000));
    EXPECT_EQ(record.OtherDate, Date::fromUnixSeconds(1699999999));
    EXPECT_EQ(record.OtherDateMeaning, "Last Modified");
    EXPECT_EQ(record.ExpiryDate, Date::fromUnixSeconds(1800000000));
    EXPECT_EQ(record.Visits, 3);
    EXPECT_EQ(record.Status, "URL");
    EXPECT_EQ(record.MIMEType, "text/html");
    EXPECT_EQ(record.MetaData, entry.headers);
    EXPECT_EQ(record.CacheFileSize, static_cast<std::int64_t>(entry.body.size()));
    EXPECT_TRUE(record.IsWebPage);
    EXPECT_EQ(test::factOf(record, "cache_layout"), "Firefox cache2, metadata version 4");
    EXPECT_EQ(test::factOf(record, "cache_key"), entry.key);
    EXPECT_EQ(test::factOf(record, "container"), "container 4 [4]");
    EXPECT_NE(test::factOf(record, "partition").find("site.example"), std::string::npos);
    EXPECT_EQ(test::factOf(record, "anonymous"), "yes");
    EXPECT_EQ(test::factOf(record, "charset"), "utf-8");
    EXPECT_EQ(test::factOf(record, "response_code"), "200 [HTTP/1.1 200 OK]");
    EXPECT_EQ(test::factOf(record, "http_method"), "GET");
    EXPECT_EQ(test::factOf(record, "server_address"), "192.0.2.7:443");
    EXPECT_EQ(test::factOf(record, "answer_began"), "12");
    EXPECT_EQ(test::factOf(record, "answer_ended"), "34");
    EXPECT_EQ(test::factOf(record, "content_kind"), "picture [3]");
    EXPECT_EQ(test::factOf(record, "cache_element"), "necko:classified=1");
    EXPECT_EQ(test::factOf(record, "frecency"), "1234");
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.log.entries.empty());
    EXPECT_EQ(bodyOfRecord(record), entry.body);
}

TEST_F(FirefoxCache2, allVersionsAreRead) {
    for (const std::uint32_t version : {1U, 2U, 3U, 4U}) {
        FirefoxCache2Entry entry;
        entry.version = version;
        entry.hasVersionAtEnd = version == 4;
        entry.flags = 1;
        const UrlRecord record = only(entry);
        EXPECT_EQ(record.URL, "https://host.example/page.html");
        EXPECT_EQ(record.HistoryVersion, "cache2 version " + std::to_string(version));
        EXPECT_EQ(record.MetaData, entry.headers);
        EXPECT_EQ(test::factOf(record, "pinned"), version > 1 ? "yes" : "-");
        EXPECT_EQ(noted(), 0U);
    }
    FirefoxCache2Entry later;
    later.version = 5;
    EXPECT_EQ(only(later).URL, "https://host.example/page.html");
    EXPECT_EQ(noted(), 1U) << "a version that nobody has seen";
}

TEST_F(FirefoxCache2, datesThatArentThereAreNone) {
    FirefoxCache2Entry entry;
    entry.key = ":about:home";
    entry.headers.clear();
    entry.fetched = 0;
    entry.modified = 0;
    const UrlRecord record = only(entry);
    EXPECT_EQ(record.URL, "about:home");
    EXPECT_FALSE(record.ActionDateUTC.has());
    EXPECT_FALSE(record.OtherDate.has());
    EXPECT_FALSE(record.ExpiryDate.has());
    EXPECT_EQ(test::factOf(record, "expires"), "-");
    EXPECT_EQ(test::factOf(record, "response_code"), "-");
    EXPECT_TRUE(record.IsWebPage) << "what it is comes out when it is looked at";
}

TEST_F(FirefoxCache2, whatTheBrowserMadeOfABodyIsNoPartOfIt) {
    FirefoxCache2Entry entry;
    entry.body = "let it = 1;";
    entry.alternative = "compiled script";
    entry.elements = {{"alt-data", "1;11,javascript/moz-script"}};
    const UrlRecord record = only(entry);
    EXPECT_EQ(record.CacheFileSize, 11);
    EXPECT_EQ(bodyOfRecord(record), entry.body);
    EXPECT_EQ(test::factOf(record, "alternative_data"),
              "javascript/moz-script, 15 bytes [1;11,javascript/moz-script]");
    for (const char *other : {"1;9999,script", "1;x,script", "1;", "", "2;3,script", "1;3",
                              "1;99999999999999999999999,script"}) {
        entry.elements = {{"alt-data", other}};
        EXPECT_EQ(bodyOfRecord(only(entry)), entry.body + entry.alternative) << other;
    }
}

TEST_F(FirefoxCache2, aPackedBodyIsUnpackedByItsHeaders) {
    const std::string page = "<html>" + std::string(3000, 'x') + "</html>";
    FirefoxCache2Entry entry;
    const std::vector<std::pair<const char *, std::string>> forms = {
        {"gzip", test::gzip(page)},          {"deflate", test::zlibDeflate(page)},
        {"deflate", test::rawDeflate(page)}, {"br", test::brotli(page)},
        {"zstd", test::zstd(page)},          {"gzip, br", test::brotli(test::gzip(page))}};
    for (const auto &[coding, packed] : forms) {
        entry.headers = "HTTP/1.1 200 OK\r\nContent-Encoding: "s + coding + "\r\n";
        entry.body = packed;
        const UrlRecord record = only(entry);
        EXPECT_EQ(bodyOfRecord(record), page) << coding;
        EXPECT_EQ(bodyOfRecord(record, true), packed) << coding;
    }
    entry.headers = "HTTP/1.1 200 OK\r\nContent-Type: application/gzip\r\n";
    entry.body = test::gzip(page);
    EXPECT_EQ(bodyOfRecord(only(entry)), entry.body) << "a file that is packed, as it was served";
}

TEST_F(FirefoxCache2, aLargeBodyIsReadWhereItLies) {
    FirefoxCache2Entry entry;
    entry.body = std::string(3'000'001, 'v');
    const UrlRecord record = only(entry);
    EXPECT_EQ(record.CacheFileSize, 3'000'001);
    const Evidence evidence(folder.path());
    UrlRecord fetched = record;
    const auto body =
        bodyOf(fetched, {evidence, reading.scratch.path(), reading.log}, kBodyInMemory);
    ASSERT_TRUE(body);
    EXPECT_EQ(fs::file_size(body->file), 3'000'001U);
    EXPECT_EQ(noted(), 0U);
}

TEST_F(FirefoxCache2, redirectsAndEmptyBodiesAreRows) {
    FirefoxCache2Entry entry;
    entry.headers = "HTTP/1.1 301 Moved Permanently\r\nLocation: /b\r\nContent-Type: text/html\r\n";
    entry.body.clear();
    const UrlRecord record = only(entry);
    EXPECT_EQ(test::factOf(record, "response_code"), "301 [HTTP/1.1 301 Moved Permanently]");
    EXPECT_FALSE(record.IsWebPage);
    EXPECT_EQ(bodyOfRecord(record), "");
}

TEST_F(FirefoxCache2, whatWasGivenUpIsARemnant) {
    FirefoxCache2Entry entry;
    entry.writeTo(entries);
    entry.key = ":https://gone.example/";
    fs::create_directories(cache / "doomed");
    fs::create_directories(cache / "trash4711");
    writeWhole(cache / "doomed" / "1033657517", entry.bytes());
    entry.key = ":https://cleared.example/";
    entry.writeTo(cache / "trash4711");
    const auto &records = readAll();
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].Status, "URL");
    EXPECT_EQ(records[1].URL, "https://gone.example/");
    EXPECT_EQ(records[1].cacheType, "Firefox Cache Remnant");
    EXPECT_EQ(records[1].Status, "Recovered");
    EXPECT_EQ(records[1].Visits, kVisitsUnknown);
    EXPECT_EQ(test::factOf(records[1], "count"), "3");
    EXPECT_NE(test::factOf(records[1], "recovered_from").find("doomed/1033657517"),
              std::string::npos);
    EXPECT_EQ(bodyOfRecord(records[1]), entry.body);
    EXPECT_EQ(records[2].URL, "https://cleared.example/");
    EXPECT_EQ(records[2].cacheType, "Firefox Cache Remnant");
}

TEST_F(FirefoxCache2, aFolderOfGivenUpOnesIsReadWithoutItsCache) {
    FirefoxCache2Entry entry;
    fs::create_directories(cache / "doomed");
    writeWhole(cache / "doomed" / "1033657517", entry.bytes());
    const auto &records = read(cache / "doomed");
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].cacheType, "Firefox Cache Remnant");
    EXPECT_EQ(test::factOf(records[0], "recovered_from"),
              "doomed/1033657517, which the browser had given up");
    EXPECT_EQ(bodyOfRecord(records[0]), entry.body);
}

TEST_F(FirefoxCache2, entriesThatWereCopiedOutAreRead) {
    FirefoxCache2Entry entry;
    entry.writeTo(cache);
    folder.write("cache2/notes.txt", "mine");
    const auto &records = readAll();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(bodyOfRecord(records[0]), entry.body);
    EXPECT_EQ(reading.result.passedOver.at("file whose name is no entry's"), 1U);
    const auto &alone = read(cache / entry.name());
    ASSERT_EQ(alone.size(), 1U);
    EXPECT_EQ(bodyOfRecord(alone[0]), entry.body);
}

/// Whatever of the folders the examiner chose as the evidence.
TEST_F(FirefoxCache2, bodiesAreFoundFromAnyBaseFolder) {
    const FirefoxCache2Entry entry;
    const fs::path file = entry.writeTo(entries);
    for (const fs::path &base : {folder.path(), cache, entries, fs::path()}) {
        const Evidence evidence(base);
        ContentProbe content;
        HistoryFile history;
        history.fullPath = cache;
        test::MemorySink sink;
        ReadContext context{
            history, evidence,    content,     reading.clock, reading.scratch.path(),
            sink,    reading.log, reading.task};
        parseFirefoxCache2(context);
        ASSERT_EQ(sink.records.size(), 1U) << base;
        UrlRecord record = sink.records.at(0);
        const Extraction extraction{evidence, reading.scratch.path(), reading.log};
        const auto body = bodyOf(record, extraction, kBodyInMemory);
        ASSERT_TRUE(body) << base;
        EXPECT_EQ(body->raw(), entry.body) << base;
    }
}

TEST_F(FirefoxCache2, damageIsToldAndTheOthersAreRead) {
    FirefoxCache2Entry entry;
    const std::string sound = entry.bytes();
    std::string changed = sound;
    changed[2] = '!'; // of the body
    folder.write("cache2/entries/" + std::string(40, '1'), changed);
    changed = sound;
    changed[sound.find("text/html")] = 'T'; // of the metadata
    folder.write("cache2/entries/" + std::string(40, '2'), changed);
    folder.write("cache2/entries/" + std::string(40, '3'), "");
    folder.write("cache2/entries/" + std::string(40, '4'), "none");
    entry.writeTo(entries);
    const auto &records = readAll();
    EXPECT_EQ(records.size(), 3U);
    EXPECT_EQ(reading.result.passedOver.at("file that is no sound entry"), 2U);
    EXPECT_EQ(noted(), 2U);
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_EQ(reading.log.entries.size(), 4U);
    EXPECT_NE(test::factOf(records[0], "body"), "-");
}

TEST_F(FirefoxCache2, cutAnywhereIsNoEntryOrToldAsDamaged) {
    FirefoxCache2Entry entry;
    entry.elements = {{"ctid", "1"}};
    const std::string sound = entry.bytes();
    for (std::size_t cut = 0; cut < sound.size(); ++cut) {
        const fs::path file = folder.write("cache2/entries/" + entry.name(), sound.substr(0, cut));
        const auto &records = read(file);
        EXPECT_TRUE(records.empty() || noted() > 0) << cut;
        EXPECT_EQ(reading.result.state == ReadState::failed, records.empty()) << cut;
    }
}

TEST_F(FirefoxCache2, noNumberOfItLeadsBeyondItsBytes) {
    const FirefoxCache2Entry entry;
    const std::string sound = entry.bytes();
    const std::size_t body = entry.body.size();
    for (std::size_t at = body; at + 4 <= sound.size(); ++at)
        for (const std::string &value : {"\xFF\xFF\xFF\xFF"s, "\0\0\0\0"s, "\x7F\xFF\xFF\xFF"s}) {
            std::string damaged = sound;
            damaged.replace(at, 4, value);
            const fs::path file = folder.write("cache2/entries/" + entry.name(), damaged);
            const auto &records = read(file);
            EXPECT_TRUE(damaged == sound || records.empty() || noted() > 0) << at;
        }
}

TEST_F(FirefoxCache2, isCancelled) {
    for (int i = 0; i < 5; ++i) {
        FirefoxCache2Entry entry;
        entry.key += std::to_string(i);
        entry.writeTo(entries);
    }
    test::CancelAfter two(2);
    EXPECT_EQ(reading.read(parseFirefoxCache2, cache, two).size(), 2U);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
}

TEST(Cache2Key, isTakenApart) {
    const auto urlOf = [](std::string_view key) { return std::string(parseCache2Key(key).url); };
    EXPECT_EQ(urlOf(":https://h/"), "https://h/");
    EXPECT_EQ(urlOf("a,:https://h/,:b"), "https://h/,:b");
    EXPECT_EQ(urlOf("a,~1700000000,:https://h/"), "https://h/");
    EXPECT_EQ(urlOf("https://h/"), "https://h/") << "no key of that form";
    EXPECT_EQ(urlOf("O^x=1"), "O^x=1");
    EXPECT_EQ(urlOf(","), ",");
    EXPECT_EQ(urlOf(":"), "");
    EXPECT_EQ(urlOf(""), "");
    EXPECT_EQ(parseCache2Key("O^k=a,,b,a,:x").originAttributes, "^k=a,b");
    EXPECT_TRUE(parseCache2Key("O^k=1,a,:x").isAnonymous);
    EXPECT_FALSE(parseCache2Key("O^k=1,:a,x").isAnonymous);
}

TEST(Cache2Hash, isJenkinss) {
    EXPECT_EQ(cache2Hash(ByteView()), 0xBD49D10DU);
    EXPECT_EQ(cache2Hash(viewOf("twelve bytes")), 0xFFD02E10U);
    EXPECT_EQ(cache2Hash(viewOf("The quick brown fox jumps over the lazy dog")), 0xFC1558DEU);
}

TEST_F(FirefoxCache2, bodiesOfItsRecordsAreFetchedItsWay) {
    const UrlRecord record = only({});
    ASSERT_TRUE(sourceOf(record, registry()));
    EXPECT_EQ(sourceOf(record, registry())->key, "firefox-cache2");
    UrlRecord classic = record;
    classic.HistoryVersion = "3.0";
    EXPECT_EQ(sourceOf(classic, registry())->key, "firefox-cache");
}

} // namespace
} // namespace nv
