#include "readers/Limits.h"
#include "support/builders/IndexDat.h"
#include "support/builders/IndexReading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::IndexDat;
using test::IndexReading;
using test::IndexRecord;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

IndexRecord cookie(const std::string &host, const std::string &fileName = "") {
    return {.url = "Cookie:user@" + host + "/",
            .secondDate = test::fileTime(2011, 6, 15),
            .fileName = fileName};
}

IndexReading readBytes(const std::string &bytes) {
    IndexReading reading(HistoryFileType::ieCookies, test::kCookiesReader);
    reading.readBytes(bytes);
    return reading;
}

std::vector<std::string> urlsOf(const IndexReading &reading) {
    std::vector<std::string> urls;
    for (const UrlRecord &record : reading.records())
        urls.push_back(record.URL);
    return urls;
}

/// A cookies folder on a disk.
class CookiesFolder : public testing::Test {
  protected:
    const fs::path kFolder = "Documents/user/Cookies";

    IndexReading read(const IndexDat &index) {
        IndexReading reading(HistoryFileType::ieCookies, test::kCookiesReader);
        reading.readFile(disk.write(kFolder / "index.dat", index.bytes()), disk.path(), task);
        return reading;
    }
    void writeText(const std::string &name, std::string_view text) {
        disk.write(kFolder / name, text);
    }

    test::TempFolder disk;
    test::MemoryTask task;
};

TEST_F(CookiesFolder, givesTheTextOfTheFileBesideTheIndex) {
    IndexDat index;
    index.add(cookie("www.example.com", "user@www.example[1].txt"));
    writeText("user@www.example[1].txt", "name\nvalue\nwww.example.com/\n1024\n*\n");
    const IndexReading reading = read(index);
    const UrlRecord &record = reading.records().at(0);
    EXPECT_TRUE(record.CacheFileExists);
    EXPECT_EQ(record.CacheFolderName, "Cookies");
    EXPECT_EQ(record.CacheRootPath, (disk.path() / kFolder).string());
    EXPECT_EQ(record.Category, "Cookies");
    EXPECT_EQ(record.RootPath, disk.path().string() + "/");
    EXPECT_EQ(record.CacheFileRelativePath, (kFolder / "index.dat").string());
    EXPECT_EQ(record.RunTimeContentPath, disk.path() / kFolder / "user@www.example[1].txt");
    EXPECT_EQ(record.MetaData, "namevaluewww.example.com/1024*");
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_THAT(reading.result.passedOver, IsEmpty());
    EXPECT_THAT(reading.log.entries, IsEmpty());
}

TEST_F(CookiesFolder, leavesOutTheLineEndsOfAllSystems) {
    IndexDat index;
    index.add(cookie("host", "a.txt"));
    writeText("a.txt", "one\r\ntwo\rthree\n\n caf\xE9 ");
    EXPECT_EQ(read(index).records().at(0).MetaData, "onetwothree caf\u00e9 ");
}

TEST_F(CookiesFolder, keepsACookieWhoseFileIsMissing) {
    IndexDat index;
    index.add(cookie("host", "user@host[1].txt"));
    index.add(cookie("unnamed"));
    const IndexReading reading = read(index);
    ASSERT_THAT(reading.records(), SizeIs(2));
    for (const UrlRecord &record : reading.records()) {
        EXPECT_FALSE(record.CacheFileExists);
        EXPECT_EQ(record.MetaData + record.Category + record.CacheFileRelativePath, "");
        EXPECT_EQ(record.CacheFolderName + record.CacheRootPath, "");
        EXPECT_EQ(record.RootPath, disk.path().string() + "/");
    }
    EXPECT_THAT(reading.log.entries, IsEmpty());
}

TEST_F(CookiesFolder, findsFilesWithoutRegardToCaseAndNeverOutsideOfTheFolder) {
    IndexDat index;
    index.add(cookie("one", "USER@ONE[1].TXT"));
    index.add(cookie("two", "..\\outside.txt"));
    index.add(cookie("three", "folder"));
    writeText("user@one[1].txt", "text");
    writeText("folder/a.txt", "text");
    disk.write(kFolder.parent_path() / "outside.txt", "secret");
    const IndexReading reading = read(index);
    EXPECT_EQ(reading.records().at(0).MetaData, "text");
    EXPECT_FALSE(reading.records().at(1).CacheFileExists);
    EXPECT_FALSE(reading.records().at(2).CacheFileExists);
}

TEST_F(CookiesFolder, keepsTheBeginningOfAFileThatIsTooLong) {
    IndexDat index;
    index.add(cookie("host", "long.txt"));
    index.add(cookie("host", "just.txt"));
    writeText("long.txt", std::string(limits::kCookieText + 1, 'x'));
    writeText("just.txt", std::string(limits::kCookieText, 'x'));
    const IndexReading reading = read(index);
    EXPECT_EQ(reading.records().at(0).MetaData.size(), limits::kCookieText);
    EXPECT_EQ(reading.records().at(1).MetaData.size(), limits::kCookieText);
    EXPECT_THAT(reading.result.passedOver,
                ElementsAre(Pair("end of a cookie's text file behind 1 MiB", 1)));
}

/// Removes a file as soon as the first record is there: the next one finds it in the listing only.
struct RemovingSink final : RecordSink {
    void save(UrlRecord &record) override {
        fs::remove(file);
        records.push_back(record);
    }
    fs::path file;
    std::vector<UrlRecord> records;
};

TEST_F(CookiesFolder, saysSoWhenTheFileCanNotBeRead) {
    IndexDat index;
    index.add(cookie("one", "a.txt"));
    index.add(cookie("two", "a.txt"));
    RemovingSink sink;
    sink.file = disk.write(kFolder / "a.txt", "text");
    HistoryFile file;
    file.fullPath = disk.write(kFolder / "index.dat", index.bytes());
    const Evidence evidence(disk.path());
    ContentProbe content;
    const test::FixedClock clock;
    test::MemoryLog log;
    ReadContext ctx{file, evidence, content, clock, {}, sink, log, task};
    const ReadResult result = parseIECookies(ctx);
    EXPECT_EQ(result.state, ReadState::complete);
    EXPECT_THAT(result.noted, ElementsAre(Pair("cookie whose text file could not be read", 1u)));
    ASSERT_THAT(sink.records, SizeIs(2));
    EXPECT_EQ(sink.records[0].MetaData, "text");
    EXPECT_EQ(sink.records[1].MetaData, "Error Reading File");
    EXPECT_TRUE(sink.records[1].CacheFileExists);
    ASSERT_THAT(log.entries, SizeIs(1));
    EXPECT_EQ(log.entries[0].procedure, "ParserClass.ParseIECookies()");
    EXPECT_THAT(log.entries[0].message, HasSubstr("a.txt"));
}

TEST_F(CookiesFolder, showsWhatItDoes) {
    IndexDat index;
    index.add(cookie("host"));
    const IndexReading reading = read(index);
    ASSERT_THAT(task.headings, SizeIs(1));
    EXPECT_EQ(task.headings[0].title, "PARSING COOKIES INDEX.DAT FILE");
    EXPECT_EQ(task.headings[0].subject, "Internet Explorer");
    EXPECT_EQ(task.headings[0].detail, (disk.path() / kFolder / "index.dat").string());
    EXPECT_EQ(task.headings[0].icon, "ie-32.gif");
    EXPECT_EQ(task.steps.at(0).topMessage, "Reading Hash Table 1 of 1");
    EXPECT_EQ(task.steps.at(1).bottomMessage, "Processing Hash Record 1 of 510");
}

TEST(IECookies, storesTheVersionAndKeepsTheType) {
    IndexDat index;
    index.version("4.7").folder("ABCDEFGH"); // folders mean nothing here
    index.add(cookie("host"));
    const IndexReading reading = readBytes(index.bytes());
    EXPECT_EQ(reading.records().at(0).HistoryVersion, "4.7");
    EXPECT_EQ(reading.file.version, "4.7");
    EXPECT_EQ(reading.file.historyFileType, HistoryFileType::ieCookies);
}

TEST(IECookies, takesUrlRecordsInAnyCaseAndCountsAllOthers) {
    IndexDat index;
    index.add(cookie("one"));
    IndexRecord small = cookie("two");
    small.signature = "url ";
    index.add(small);
    for (const char *other : {"LEAK", "leak", "FILE", "JUNK"}) {
        IndexRecord record = cookie("other");
        record.signature = other;
        index.add(record);
    }
    index.addRedirect("http://host/");
    const IndexReading reading = readBytes(index.bytes());
    EXPECT_THAT(urlsOf(reading), ElementsAre("one/", "two/"));
    EXPECT_EQ(reading.records()[1].Status, "Cookie");
    EXPECT_THAT(reading.result.passedOver,
                ElementsAre(Pair("FILE record in a cookies index", 1),
                            Pair("LEAK record in a cookies index", 2),
                            Pair("REDR record in a cookies index", 1),
                            Pair("entry without a record signature", 1)));
    EXPECT_THAT(reading.log.entries, IsEmpty());
}

TEST(IECookies, skipsFreeSlotsButLooksAtAllOtherStatuses) {
    IndexDat index;
    const auto record = static_cast<std::uint32_t>(index.addUnreferenced(cookie("host")));
    index.entry(0, record).entry(3, record).entry(1, record).entry(0x0BADF00D, record);
    EXPECT_THAT(urlsOf(readBytes(index.bytes())), SizeIs(2));
}

TEST(IECookies, countsRecordsOutsideOfTheHash) {
    IndexDat index;
    index.add(cookie("one"));
    index.addUnreferenced(cookie("two"));
    EXPECT_THAT(readBytes(index.bytes()).result.passedOver,
                ElementsAre(Pair("URL record outside of the hash tables", 1)));
}

TEST(IECookies, tellsOfFilesThatAreTooShortAndPassesOverThoseWithoutAHash) {
    for (const std::string &bytes : {std::string(), std::string("URL "), std::string(4095, 'x')}) {
        const IndexReading reading = readBytes(bytes);
        EXPECT_THAT(reading.records(), IsEmpty());
        EXPECT_EQ(reading.result.state, ReadState::cutShort);
        EXPECT_THAT(reading.log.entries, SizeIs(1));
    }
    const IndexReading zeros = readBytes(std::string(4096, '\0'));
    EXPECT_THAT(zeros.records(), IsEmpty());
    EXPECT_EQ(zeros.result.state, ReadState::complete);
    EXPECT_THAT(zeros.result.passedOver, SizeIs(1));
    EXPECT_THAT(zeros.log.entries, IsEmpty());
}

TEST(IECookies, losesOneDamagedRecordAndNoOther) {
    for (const std::uint32_t blocks : {0U, 0xFFFFFFFFU, 0x7FFFFFFFU}) {
        IndexDat index;
        index.add(cookie("one"));
        const std::size_t bad = index.add(cookie("two"));
        index.add(cookie("three"));
        std::string bytes = index.bytes();
        test::put32(bytes, bad + 4, blocks);
        const IndexReading reading = readBytes(bytes);
        EXPECT_THAT(urlsOf(reading), ElementsAre("one/", "three/"));
        EXPECT_THAT(reading.result.passedOver, ElementsAre(Pair("damaged record", 1)));
        ASSERT_THAT(reading.log.entries, SizeIs(1));
        EXPECT_EQ(reading.log.entries[0].procedure, "ParserClass.ParseIECookies()");
        EXPECT_THAT(reading.log.entries[0].message, HasSubstr("record at " + std::to_string(bad)));
    }
}

TEST(IECookies, endsAtARecordOutsideOfTheFile) {
    IndexDat index;
    index.add(cookie("one"));
    index.entry(0x40, 0x7FFFFFFF);
    index.add(cookie("two"));
    const IndexReading reading = readBytes(index.bytes());
    EXPECT_THAT(urlsOf(reading), ElementsAre("one/"));
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(reading.result.notReached, 2U);
}

TEST(IECookies, tellsDeletedRecords) {
    IndexDat index;
    index.add(cookie("one"));
    IndexReading reading(HistoryFileType::ieCookies, test::kCookiesReader);
    reading.deleted = true;
    reading.readBytes(index.bytes());
    EXPECT_EQ(reading.records().at(0).Status, "Deleted");
}

TEST(IECookies, areCancelledBetweenEntries) {
    IndexDat index;
    for (int i = 0; i < 5; ++i)
        index.add(cookie("host"));
    test::CancelAfter task(2);
    IndexReading reading(HistoryFileType::ieCookies, test::kCookiesReader);
    reading.readBytes(index.bytes(), task);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_THAT(reading.records(), SizeIs(2));
}

TEST(IECookies, tellOfAFileThatCanNotBeRead) {
    const test::TempFolder folder;
    IndexReading reading(HistoryFileType::ieCookies, test::kCookiesReader);
    reading.readFile(folder.path() / "Cookies/index.dat", folder.path());
    EXPECT_EQ(reading.result.state, ReadState::failed);
    EXPECT_THAT(reading.result.reason, HasSubstr("index.dat"));
    EXPECT_THAT(reading.log.entries, SizeIs(1));
}

std::string smallIndex() {
    IndexDat index(1, 2);
    index.add(cookie("one", "a.txt"));
    index.add(cookie("two", "b.txt"));
    index.endTable();
    index.add(cookie("three"));
    return index.bytes();
}

TEST(IECookies, surviveACutAtEveryByteAndTellOfIt) {
    const std::string whole = smallIndex();
    for (std::size_t length = IndexDat::kFirstTable; length < whole.size(); ++length) {
        const IndexReading reading = readBytes(whole.substr(0, length));
        ASSERT_NE(reading.result.state, ReadState::failed) << length;
        ASSERT_TRUE(reading.result.state == ReadState::cutShort ||
                    !reading.result.passedOver.empty())
            << length;
    }
    EXPECT_THAT(urlsOf(readBytes(whole)), SizeIs(3));
}

TEST(IECookies, surviveDamageOfEachByte) {
    const std::string whole = smallIndex();
    for (std::size_t at = 0; at < whole.size(); ++at) {
        if (at == 0x100)
            at = IndexDat::kFirstTable;
        for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
            std::string damaged = whole;
            damaged[at] = static_cast<char>(value);
            const IndexReading reading = readBytes(damaged);
            ASSERT_NE(reading.result.state, ReadState::failed) << value << " at " << at;
            ASSERT_LE(reading.records().size(), 3U) << value << " at " << at;
        }
    }
}

} // namespace
} // namespace nv
