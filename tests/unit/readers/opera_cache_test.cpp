#include "base/Files.h"
#include "base/Md5.h"
#include "readers/ContentProbe.h"
#include "readers/opera/Cache.h"
#include "readers/opera/Cookies.h"
#include "readers/sqlite/HistoryRow.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/builders/Opera.h"
#include "support/builders/Packed.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace nv {
namespace {

using test::bigEndian;
using test::OperaCache;
using namespace std::string_literals;

constexpr const char *kNotThere = "cached file that isn't beside the index";
constexpr const char *kNameless = "record without the name of a cached file";
constexpr std::size_t kHeader = 15;

class OperaCacheReader : public testing::Test {
  protected:
    OperaCacheReader() {
        file.fullPath = folder.path() / "opera" / "cache4" / "dcache4.url";
        file.sourceFileID = SourceFileId{7};
        file.version = "9.0";
    }
    void readBytes(const std::string &bytes, TaskMonitor &watcher) {
        put("dcache4.url", bytes);
        const Evidence evidence(folder.path());
        ContentProbe content;
        ReadContext ctx{file, evidence, content, clock, {}, sink, log, watcher};
        sink.records.clear();
        log.entries.clear();
        result = parseOperaCache(ctx);
    }
    void readBytes(const std::string &bytes) { readBytes(bytes, task); }
    void read(const OperaCache &cache, TaskMonitor &watcher) { readBytes(cache.bytes(), watcher); }
    void read(const OperaCache &cache) { read(cache, task); }
    const UrlRecord &only(const OperaCache &cache) {
        read(cache);
        EXPECT_EQ(sink.records.size(), 1U);
        return sink.records.at(0);
    }
    void put(const std::string &name, const std::string &bytes) const {
        folder.write("opera/cache4/" + name, bytes);
    }
    std::vector<std::string> urls() const {
        std::vector<std::string> all;
        for (const UrlRecord &record : sink.records)
            all.push_back(record.URL);
        return all;
    }

    test::TempFolder folder;
    HistoryFile file;
    test::FixedClock clock;
    test::MemorySink sink;
    test::MemoryLog log;
    test::MemoryTask task;
    ReadResult result;
};

TEST_F(OperaCacheReader, fillsEveryFieldOfARecord) {
    put("opr00021.gif", "GIF89a-picture");
    clock.offset = std::chrono::hours(1);
    const UrlRecord &record = only(OperaCache().add({.url = "http://u@www.x.com:80/a%20b.gif?c=d?e",
                                                     .visited = 1205364946,
                                                     .status = 2,
                                                     .size = 70000,
                                                     .mimeType = "image/gif",
                                                     .fileName = "opr00021.gif"}));
    EXPECT_EQ(record.Action, "Visited");
    EXPECT_EQ(record.SourceFile_ID, SourceFileId{7});
    EXPECT_EQ(record.URL, "http://u@www.x.com:80/a%20b.gif?c=d?e");
    EXPECT_EQ(record.URLRawValue, record.URL);
    EXPECT_EQ(record.HashedURL, hashOfUrl(record.URL));
    EXPECT_EQ(record.host, "www.x.com");
    EXPECT_EQ(record.URLProtocol, "http");
    EXPECT_EQ(record.URLParameters, "c=d?e");
    EXPECT_EQ(record.URLFileExt, "");
    EXPECT_FALSE(record.IsHistory);
    EXPECT_EQ(record.cacheType, "Opera Cache");
    EXPECT_EQ(record.HistoryVersion, "9.0");
    EXPECT_EQ(record.HistoryFilePath, file.fullPath.string());
    EXPECT_EQ(record.MapFileOffset, 15);
    EXPECT_EQ(record.Visits, -1);
    EXPECT_EQ(isoUtc(record.ActionDateUTC), "2008-03-12T23:35:46Z");
    EXPECT_EQ(isoUtc(record.ActionDateLocal), "2008-03-13T00:35:46Z");
    EXPECT_EQ(record.LastVisited, record.ActionDateUTC);
    EXPECT_FALSE(record.OtherDate.has()); // told to be -109205, which means none
    EXPECT_EQ(record.OtherDateMeaning, "");
    EXPECT_EQ(record.Status, "Loaded");
    EXPECT_EQ(record.RecordSize, 70000U);
    EXPECT_EQ(record.MIMEType, "image/gif");
    EXPECT_EQ(record.RootPath, folder.path().string() + "/");
    EXPECT_EQ(record.CacheRootPath, "opera/cache4");
    EXPECT_EQ(record.CacheFolderName, "opera/cache4");
    EXPECT_EQ(record.CacheFileRelativePath, "opera/cache4/opr00021.gif");
    EXPECT_EQ(record.CacheFileName, "opr00021.gif");
    EXPECT_EQ(record.DataBlockFile, "opr00021.gif");
    EXPECT_EQ(record.DataBlockFileOffset, 0);
    EXPECT_EQ(record.CacheFileExt, "");
    EXPECT_TRUE(record.CacheFileExists);
    EXPECT_EQ(record.CacheFileSize, 14);
    EXPECT_TRUE(record.CacheFileLastAccessed.has());
    EXPECT_EQ(record.CacheFileCreatedGMTDOS,
              Evidence({}).factsOf(folder.path() / "opera/cache4/opr00021.gif").created);
    // url, date, status, size and type stand before the name.
    EXPECT_EQ(record.CacheFileNameRecordOffset, 3 + record.URL.size() + 11 + 7 + 7 + 12);
    EXPECT_TRUE(record.IsPicture);
    EXPECT_FALSE(record.IsWebPage);
    EXPECT_FALSE(record.GZipEncoded);
    EXPECT_EQ(result.state, ReadState::complete);
    EXPECT_TRUE(result.noted.empty());
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(OperaCacheReader, tellsTheTaskWhatItDoes) {
    OperaCache cache;
    test::addExampleFiles(cache);
    read(cache);
    ASSERT_EQ(task.headings.size(), 1U);
    EXPECT_EQ(task.headings[0].title, "PARSING OPERA CACHE FILE");
    EXPECT_EQ(task.headings[0].subject, "Opera");
    EXPECT_EQ(task.headings[0].detail, file.fullPath.string());
    EXPECT_EQ(task.headings[0].icon, "opera-32.gif");
    ASSERT_GE(task.steps.size(), 3U);
    EXPECT_EQ(task.steps[1].topMessage, "Processing");
    EXPECT_EQ(urls(), (std::vector<std::string>{"http://www.example.com/",
                                                "http://www.example.com/logo.gif?v=2",
                                                "http://www.example.com/gone"}));
    EXPECT_EQ(sink.records[1].Status, "Aborted");
    EXPECT_EQ(sink.records[2].Status, "Failed");
}

TEST_F(OperaCacheReader, leavesTheStatusUnsetForOtherNumbers) {
    for (const std::uint32_t status : {1U, 3U, 6U, 258U, 0xFFFFFFFFU})
        EXPECT_EQ(only(OperaCache().add({.url = "http://x/", .status = status})).Status, "");
}

TEST_F(OperaCacheReader, readsNumbersOfTwoBytesInTheOrderOfTheTags) {
    const UrlRecord &record = only(OperaCache()
                                       .begin()
                                       .field(3, "http://x/")
                                       .field(7, "\x05\x00"s)
                                       .field(8, "\x10\x20"s)
                                       .field(13, "opr00021"));
    EXPECT_EQ(record.Status, "Failed");
    EXPECT_EQ(record.RecordSize, 0x2010U);
}

TEST_F(OperaCacheReader, readsDatesOfFourAndOfEightBytes) {
    const auto dateOf = [this](const std::string &value) {
        return isoUtc(
            only(OperaCache().begin().field(3, "http://x/").field(5, value)).ActionDateUTC);
    };
    EXPECT_EQ(dateOf(bigEndian(1205364946, 8)), "2008-03-12T23:35:46Z");
    EXPECT_EQ(dateOf(bigEndian(1205364946, 4)), "2008-03-12T23:35:46Z");
    EXPECT_EQ(dateOf(bigEndian(1, 8)), "1970-01-01T00:00:01Z");
    EXPECT_EQ(dateOf(bigEndian(0x7FFFFFFF, 8)), "2038-01-19T03:14:07Z");
    EXPECT_EQ(dateOf(bigEndian(0x80000000, 8)), "1901-12-13T20:45:52Z"); // read with its sign
    EXPECT_EQ(dateOf(bigEndian(0, 8)), "");
    EXPECT_EQ(dateOf(bigEndian(0x100000000, 8)), "");
    EXPECT_EQ(dateOf(std::string(8, '\xFF')), "");
}

TEST_F(OperaCacheReader, movesOneByteOnAtOtherTags) {
    OperaCache cache;
    cache.begin().raw(std::string("\x02\x00\x01\x04\x00\x0E\x00\xFF\x06\x00", 10));
    cache.field(3, "http://x/").raw(std::string("\x00\x01\x0A\x00\x22", 5));
    cache.field(5, bigEndian(1205364946, 8)).field(13, "opr00021");
    const UrlRecord &record = only(cache);
    EXPECT_EQ(record.URL, "http://x/");
    EXPECT_EQ(isoUtc(record.ActionDateUTC), "2008-03-12T23:35:46Z");
    EXPECT_EQ(record.CacheFileName, "opr00021");
}

TEST_F(OperaCacheReader, passesAnEndMarkOn) {
    OperaCache cache;
    cache.begin().field(3, "http://one/").field(13, "opr00021").raw("\x04\x00"s);
    cache.field(3, "http://two/").field(13, "opr00022").raw("\x04\x00"s);
    read(cache);
    EXPECT_EQ(urls(), (std::vector<std::string>{"http://one/", "http://two/"}));
}

TEST_F(OperaCacheReader, endsAUrlAtAZeroByte) {
    EXPECT_EQ(only(OperaCache().begin().field(3, "http://x/\0junk"s)).URL, "http://x/");
    read(OperaCache().begin().field(3, "").field(3, "\0x"s));
    EXPECT_TRUE(sink.records.empty());
}

TEST_F(OperaCacheReader, readsUtf8AndWindows1252) {
    EXPECT_EQ(only(OperaCache().add({.url = "http://x/caf\xC3\xA9"})).URL, "http://x/caf\u00e9");
    EXPECT_EQ(only(OperaCache().add({.url = "http://x/caf\xE9"})).URL, "http://x/caf\u00e9");
}

TEST_F(OperaCacheReader, readsUrlsOfMoreThan255Bytes) {
    const std::string url = "http://x/" + std::string(600, 'y');
    OperaCache cache;
    cache.add({.url = "http://before/"});
    cache.add({.url = url, .visited = 1205364946, .fileName = "opr00021"});
    read(cache);
    ASSERT_EQ(urls(), (std::vector<std::string>{"http://before/", url}));
    EXPECT_FALSE(sink.records[0].ActionDateUTC.has()); // the date is the second one's
    EXPECT_EQ(isoUtc(sink.records[1].ActionDateUTC), "2008-03-12T23:35:46Z");
}

TEST_F(OperaCacheReader, countsAFileWhoseUrlCannotBeRead) {
    read(OperaCache().add({.url = "no url " + std::string(400, 'y'), .fileName = "opr00021"}));
    EXPECT_TRUE(sink.records.empty());
    EXPECT_EQ(result.passedOver.at("cached file without a URL that can be read"), 1U);
}

TEST_F(OperaCacheReader, storesARecordWithoutAFileName) {
    OperaCache cache;
    cache.add({.url = "http://one/", .visited = 1205364946});
    cache.add({.url = "http://two/", .status = 5});
    read(cache);
    EXPECT_EQ(urls(), (std::vector<std::string>{"http://one/", "http://two/"}));
    EXPECT_FALSE(sink.records[0].CacheFileExists);
    EXPECT_EQ(sink.records[0].CacheFileRelativePath, "");
    EXPECT_EQ(sink.records[1].Status, "Failed");
    EXPECT_EQ(result.noted.at(kNameless), 2U);
}

TEST_F(OperaCacheReader, closesARecordWithAnEmptyFileName) {
    const UrlRecord &record =
        only(OperaCache().begin().field(3, "http://x/").field(13, "").field(7, "\x02\0"s));
    EXPECT_EQ(record.Status, "");
    EXPECT_FALSE(record.CacheFileExists);
    EXPECT_EQ(record.CacheFileRelativePath, "");
    EXPECT_EQ(result.noted.at(kNameless), 1U);
}

TEST_F(OperaCacheReader, notesACachedFileThatIsGone) {
    const UrlRecord &record = only(OperaCache().add({.url = "http://x/", .fileName = "opr00021"}));
    EXPECT_TRUE(record.CacheFileExists); // as the index says
    EXPECT_EQ(record.CacheFileRelativePath, "opera/cache4/opr00021");
    EXPECT_FALSE(record.CacheFileLastAccessed.has());
    EXPECT_EQ(record.CacheFileSize, 0);
    EXPECT_TRUE(record.IsWebPage); // nothing speaks against it
    EXPECT_EQ(result.noted.at(kNotThere), 1U);
}

TEST_F(OperaCacheReader, doesNotLookForTheFileThatTheBrowserHoldsOpen) {
    put("opr0002I", "GIF89a");
    const UrlRecord &record = only(OperaCache().add({.url = "http://x/", .fileName = "opr0002I"}));
    EXPECT_EQ(record.CacheFileSize, 0);
    EXPECT_FALSE(record.IsPicture);
    EXPECT_TRUE(record.IsWebPage);
    EXPECT_EQ(record.CacheFileRelativePath, "opera/cache4/opr0002I");
}

TEST_F(OperaCacheReader, takesDatesAndSizeOfNumberedFilesOnly) {
    put("opr00ABC.png", "\x89PNG-and-more");
    const UrlRecord &record =
        only(OperaCache().add({.url = "http://x/", .fileName = "opr00ABC.png"}));
    EXPECT_TRUE(record.IsPicture);
    EXPECT_EQ(record.CacheFileSize, 0);
    EXPECT_FALSE(record.CacheFileCreatedGMTDOS.has());
}

TEST_F(OperaCacheReader, tellsTheKindByTheFirstBytes) {
    struct Kind {
        std::string bytes;
        bool picture, page, packed;
    };
    const std::vector<Kind> kinds = {{"\xFF\xD8\xFF\xE0...", true, false, false},
                                     {"BM....", true, false, false},
                                     {"<html>", false, true, false},
                                     {"plain text", false, true, false},
                                     {"%PDF-1.4", false, false, false},
                                     {test::gzip("<html>"), false, false, true}};
    for (const Kind &kind : kinds) {
        put("opr00021", kind.bytes);
        const UrlRecord &record =
            only(OperaCache().add({.url = "http://x/", .fileName = "OPR00021"}));
        EXPECT_EQ(record.IsPicture, kind.picture) << kind.bytes;
        EXPECT_EQ(record.IsWebPage, kind.page) << kind.bytes;
        EXPECT_EQ(record.GZipEncoded, kind.packed) << kind.bytes;
    }
}

TEST_F(OperaCacheReader, neverLeavesTheFolderOfTheIndex) {
    folder.write("secret", "GIF89a");
    for (const char *name : {"../../secret", "..\\..\\secret", "/etc/passwd"}) {
        const UrlRecord &record = only(OperaCache().add({.url = "http://x/", .fileName = name}));
        EXPECT_EQ(record.CacheFileRelativePath, "") << name;
        EXPECT_FALSE(record.IsPicture) << name;
    }
}

TEST_F(OperaCacheReader, findsFilesInFoldersBesideTheIndex) {
    put("g_0001/opr00021.tmp", "GIF89a");
    const UrlRecord &record =
        only(OperaCache().add({.url = "http://x/", .fileName = "g_0001/opr00021.tmp"}));
    EXPECT_EQ(record.CacheFileRelativePath, "opera/cache4/g_0001/opr00021.tmp");
    EXPECT_TRUE(record.IsPicture);
}

TEST_F(OperaCacheReader, cancelsAfterARecord) {
    OperaCache cache;
    test::addExampleFiles(cache);
    test::CancelAfter watcher(1);
    read(cache, watcher);
    EXPECT_EQ(result.state, ReadState::cancelled);
    EXPECT_EQ(sink.records.size(), 1U);
}

TEST_F(OperaCacheReader, failsForAFileWithoutARecord) {
    for (std::size_t size = 0; size <= kHeader; ++size) {
        const std::string bytes = OperaCache().add({.url = "http://x/"}).bytes().substr(0, size);
        folder.write("opera/cache4/dcache4.url", bytes);
        const Evidence evidence(folder.path());
        ContentProbe content;
        ReadContext ctx{file, evidence, content, clock, {}, sink, log, task};
        log.entries.clear();
        result = parseOperaCache(ctx);
        EXPECT_EQ(result.state, ReadState::failed) << size;
        EXPECT_EQ(log.entries.size(), 1U);
    }
    EXPECT_TRUE(sink.records.empty());
    file.fullPath = folder.path() / "nowhere";
    const Evidence evidence(folder.path());
    ContentProbe content;
    ReadContext ctx{file, evidence, content, clock, {}, sink, log, task};
    EXPECT_EQ(parseOperaCache(ctx).reason, "could not be read: " + file.fullPath.string());
}

TEST_F(OperaCacheReader, survivesACutAtEveryByteAndEveryChange) {
    OperaCache sound;
    test::addExampleFiles(sound);
    const std::string bytes = sound.bytes();
    readBytes(bytes);
    const std::vector<UrlRecord> whole = sink.records;
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        readBytes(bytes.substr(0, size));
        ASSERT_LE(sink.records.size(), 3U);
        for (std::size_t i = 0; i < sink.records.size(); ++i) {
            EXPECT_TRUE(whole[i].URL.starts_with(sink.records[i].URL)) << size;
            EXPECT_TRUE(!sink.records[i].ActionDateUTC.has() ||
                        sink.records[i].ActionDateUTC == whole[i].ActionDateUTC);
        }
        for (const char value : {'\0', '\x7F', '\x80', '\xFF'}) {
            std::string damaged = bytes;
            damaged[size] = value;
            readBytes(damaged);
            EXPECT_LE(sink.records.size(), 4U) << size;
        }
    }
    readBytes(bytes.substr(0, kHeader + 10));
    EXPECT_EQ(result.state, ReadState::cutShort);
    EXPECT_EQ(result.reason, file.fullPath.string() + ": the file ends within the field at 15");
}

TEST_F(OperaCacheReader, readsAnyBytesInOnePass) {
    for (const char *piece : {"\x03\x02\x01", "\x05", "\xFF", "\x0D\x01"}) {
        std::string bytes;
        while (bytes.size() < 4'000'000)
            bytes.append(piece).append(1, '\0');
        readBytes(bytes);
        EXPECT_TRUE(sink.records.empty());
    }
}

TEST(OperaCookiesReader, saysThatNothingIsRead) {
    HistoryFile file;
    const Evidence evidence("");
    ContentProbe content;
    const test::FixedClock clock;
    test::MemorySink sink;
    test::MemoryLog log;
    test::MemoryTask task;
    ReadContext ctx{file, evidence, content, clock, {}, sink, log, task};
    const ReadResult result = parseOperaCookiesFile(ctx);
    EXPECT_EQ(result.state, ReadState::notReadYet);
    EXPECT_EQ(result.reason, "cookies of Opera are found and listed, but not read");
    EXPECT_TRUE(sink.records.empty());
    EXPECT_TRUE(log.entries.empty());
}

} // namespace
} // namespace nv
