#include "support/builders/IndexReading.h"
#include "support/builders/Nvd.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using test::IndexReading;
using test::IndexRecord;
using test::Nvd;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

IndexRecord visit(const std::string &url) {
    return {.url = "Visited: user@" + url, .secondDate = test::fileTime(2011, 6, 15, 12, 30)};
}

IndexReading readBytes(const std::string &bytes) {
    IndexReading reading(HistoryFileType::norvelaneNVD, test::kNvdReader);
    reading.file.version = "2.x";
    reading.readBytes(bytes, "/evidence/results/case.nvd");
    return reading;
}

IndexReading read(const Nvd &file) {
    return readBytes(file.bytes());
}

std::vector<std::string> urlsOf(const IndexReading &reading) {
    std::vector<std::string> urls;
    for (const UrlRecord &record : reading.records())
        urls.push_back(record.URL);
    return urls;
}

TEST(Nvd, givesAllFieldsOfARecord) {
    Nvd file;
    const std::size_t at = file.add({.url = "Visited: user@http://www.example.com/a?b=c",
                                     .firstDate = test::fileTime(2010, 1, 1),
                                     .secondDate = test::fileTime(2011, 6, 15, 12, 30, 5),
                                     .hits = 9});
    const IndexReading reading = read(file);
    ASSERT_THAT(reading.records(), SizeIs(1));
    const UrlRecord &record = reading.records()[0];
    EXPECT_EQ(record.URL, "http://www.example.com/a?b=c");
    EXPECT_EQ(record.URLRawValue, "Visited: user@http://www.example.com/a?b=c");
    EXPECT_EQ(record.host, "www.example.com");
    EXPECT_EQ(record.User, "user");
    EXPECT_EQ(record.Visits, 9);
    EXPECT_EQ(record.Status, "URL");
    EXPECT_EQ(record.Action, "Visited");
    EXPECT_EQ(record.cacheType, "Imported Binary");
    EXPECT_EQ(record.Links, "http://www.example.com/a?b=c;");
    EXPECT_EQ(record.ActionDateUTC, Date::fromCivil({2011, 6, 15, 12, 30, 5}));
    EXPECT_FALSE(record.OtherDate.has());
    EXPECT_TRUE(record.IsHistory);
    EXPECT_EQ(record.MapFileOffset, static_cast<std::int64_t>(at));
    EXPECT_EQ(record.HistoryVersion, "2.x");
    EXPECT_EQ(record.HistoryFilePath, "/evidence/results/case.nvd");
    EXPECT_EQ(record.RootPath, "/");
    EXPECT_EQ(record.CacheRootPath, "evidence/results/case.nvd");
    EXPECT_EQ(record.SourceFile_ID, SourceFileId{7});
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_THAT(reading.result.passedOver, IsEmpty());
    EXPECT_THAT(reading.log.entries, IsEmpty());
}

TEST(Nvd, readsTheRecordsInTheOrderOfTheTable) {
    Nvd file;
    const auto first = static_cast<std::uint32_t>(file.add(visit("http://one/")));
    file.addRedirect("http://two/");
    file.add({.signature = "LEAK", .url = "http://three/"});
    file.entry(first, 0x100); // an entry that is met twice is two rows
    EXPECT_THAT(urlsOf(read(file)),
                ElementsAre("http://one/", "http://two/", "http://three/", "http://one/"));
}

TEST(Nvd, takesTheSizeFromTheEntryAndNotFromTheRecord) {
    Nvd file;
    const auto at = static_cast<std::uint32_t>(file.add(visit("http://one/index.html")));
    file.entry(at, 0x68 + 24);
    const IndexReading reading = read(file);
    EXPECT_THAT(urlsOf(reading), ElementsAre("http://one/index.html", "http://one"));
}

TEST(Nvd, skipsAndCountsEntriesWithoutASize) {
    Nvd file;
    file.entry(0x80, 0).entry(0x80, 0xFFFFFFFF).entry(0xFFFFFFFF, 0x80000000);
    file.add(visit("http://one/"));
    const IndexReading reading = read(file);
    EXPECT_THAT(urlsOf(reading), ElementsAre("http://one/"));
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_THAT(reading.result.passedOver, ElementsAre(Pair("entry without a size", 3)));
}

TEST(Nvd, countsEntriesThatLeadToNoRecord) {
    Nvd file;
    file.add({.signature = "url ", .url = "http://one/"});
    file.entry(0, 0x40);
    const IndexReading reading = read(file);
    EXPECT_THAT(reading.records(), IsEmpty());
    EXPECT_THAT(reading.result.passedOver,
                ElementsAre(Pair("entry without a record signature", 2)));
}

TEST(Nvd, logsARecordThatIsTooShortForItsFields) {
    Nvd file;
    const auto at = static_cast<std::uint32_t>(file.add(visit("http://one/")));
    file.entry(at, 3).entry(at, 0x60);
    const IndexReading reading = read(file);
    EXPECT_THAT(urlsOf(reading), ElementsAre("http://one/"));
    EXPECT_THAT(reading.result.passedOver, ElementsAre(Pair("damaged record", 2)));
    ASSERT_THAT(reading.log.entries, SizeIs(2));
    EXPECT_EQ(reading.log.entries[0].procedure, "ParserClass.ParseNorvelaneNVDFile()");
    EXPECT_THAT(reading.log.entries[0].message, HasSubstr("record at 128"));
}

TEST(Nvd, goesOnAfterAnEntryThatLeadsOutOfTheFile) {
    for (const auto &[offset, size] : std::vector<std::pair<std::uint32_t, std::uint32_t>>{
             {0xFFFFFFFF, 0x80}, {0x7FFFFFFF, 0x7FFFFFFF}, {0x80, 0x7FFFFFFF}}) {
        Nvd file;
        file.add(visit("http://one/"));
        file.entry(offset, size).entry(offset, size);
        file.add(visit("http://two/"));
        const IndexReading reading = read(file);
        EXPECT_THAT(urlsOf(reading), ElementsAre("http://one/", "http://two/"));
        EXPECT_EQ(reading.result.state, ReadState::cutShort);
        EXPECT_EQ(reading.result.notReached, 2U);
        EXPECT_THAT(reading.result.reason, HasSubstr("the entry at 656 expects a record of"));
        ASSERT_THAT(reading.log.entries, SizeIs(1));
        EXPECT_EQ(reading.log.entries[0].message, reading.result.reason);
    }
}

TEST(Nvd, endsWhereTheTableLeavesTheFile) {
    Nvd file;
    file.add(visit("http://one/"));
    file.count(0x7FFFFFFF);
    const IndexReading reading = read(file);
    EXPECT_THAT(urlsOf(reading), ElementsAre("http://one/"));
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(reading.result.notReached, 0x7FFFFFFEU);
    EXPECT_THAT(reading.result.reason,
                HasSubstr("the entry of record 2 was expected at 400, outside of the 400 bytes"));
}

TEST(Nvd, tellsOfATableOutsideOfTheFile) {
    for (const std::uint32_t table : {0xFFFFFFF0U, 0x80000000U, 0x7FFFFFFFU, 0x1000U}) {
        Nvd file;
        file.add(visit("http://one/"));
        file.add(visit("http://two/"));
        file.table(table);
        const IndexReading reading = read(file);
        EXPECT_THAT(reading.records(), IsEmpty());
        EXPECT_EQ(reading.result.state, ReadState::cutShort);
        EXPECT_EQ(reading.result.notReached, 2U);
        EXPECT_THAT(reading.result.reason, HasSubstr("outside of the"));
        EXPECT_THAT(reading.log.entries, SizeIs(1));
    }
}

TEST(Nvd, tellsOfANumberOfEntriesBelowZero) {
    Nvd file;
    file.add(visit("http://one/"));
    file.count(0xFFFFFFFF);
    const IndexReading reading = read(file);
    EXPECT_THAT(reading.records(), IsEmpty());
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_THAT(reading.result.reason, HasSubstr("the number of entries at 100 is -1"));
}

TEST(Nvd, givesNothingAndNoErrorForNoEntries) {
    const IndexReading reading = read(Nvd());
    EXPECT_THAT(reading.records(), IsEmpty());
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_THAT(reading.log.entries, IsEmpty());
}

TEST(Nvd, failsWithoutAWholeHeader) {
    for (const std::size_t size : {0U, 4U, 0x6FU}) {
        const IndexReading reading = readBytes(std::string(size, 'x'));
        EXPECT_EQ(reading.result.state, ReadState::failed);
        EXPECT_THAT(reading.result.reason, HasSubstr("a header was expected"));
        EXPECT_THAT(reading.log.entries, SizeIs(1));
    }
}

TEST(Nvd, tellsDeletedRecords) {
    Nvd file;
    file.add(visit("http://one/"));
    IndexReading reading(HistoryFileType::norvelaneNVD, test::kNvdReader);
    reading.deleted = true;
    reading.readBytes(file.bytes());
    EXPECT_EQ(reading.records().at(0).Status, "Deleted");
}

TEST(Nvd, isCancelledBetweenRecords) {
    Nvd file;
    for (int i = 0; i < 5; ++i)
        file.add(visit("http://host/"));
    test::CancelAfter task(2);
    IndexReading reading(HistoryFileType::norvelaneNVD, test::kNvdReader);
    reading.readBytes(file.bytes(), task);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_THAT(reading.records(), SizeIs(2));
}

TEST(Nvd, showsWhatItDoes) {
    Nvd file;
    file.add(visit("http://one/"));
    file.add(visit("http://two/"));
    test::MemoryTask task;
    IndexReading reading(HistoryFileType::norvelaneNVD, test::kNvdReader);
    reading.readBytes(file.bytes(), task, "/evidence/case.nvd");
    ASSERT_THAT(task.headings, SizeIs(1));
    EXPECT_EQ(task.headings[0].title, "PARSING NORVELANE BINARY FILE");
    EXPECT_EQ(task.headings[0].subject, "A total of 2 URLs were found.");
    EXPECT_EQ(task.headings[0].detail, "/evidence/case.nvd");
    EXPECT_EQ(task.headings[0].icon, "norvelane-32.gif");
    ASSERT_THAT(task.steps, SizeIs(3));
    EXPECT_EQ(task.steps[0].topMessage, "Processing 1 of 2");
    EXPECT_EQ(task.steps[1].topMessage, "Processing 2 of 2");
    EXPECT_EQ(task.steps[2].topMessage, "All done.");
}

TEST(Nvd, tellsOfAFileThatCanNotBeRead) {
    const test::TempFolder folder;
    IndexReading reading(HistoryFileType::norvelaneNVD, test::kNvdReader);
    reading.readFile(folder.path() / "gone.nvd", folder.path());
    EXPECT_EQ(reading.result.state, ReadState::failed);
    EXPECT_THAT(reading.result.reason, HasSubstr("gone.nvd"));
    EXPECT_THAT(reading.log.entries, SizeIs(1));
}

Nvd smallFile() {
    Nvd file;
    file.add(visit("http://caf\xE9/"));
    file.addRedirect("http://two/");
    file.entry(0x80, 0);
    file.add({.signature = "LEAK", .url = "http://three/"});
    return file;
}

TEST(Nvd, survivesACutAtEveryByteAndTellsOfIt) {
    const std::string whole = smallFile().bytes();
    for (std::size_t length = 0; length < whole.size(); ++length) {
        const IndexReading reading = readBytes(whole.substr(0, length));
        ASSERT_NE(reading.result.state, ReadState::complete) << length;
        ASSERT_FALSE(reading.result.reason.empty()) << length;
        ASSERT_TRUE(length < 0x70 || reading.result.notReached > 0) << length;
    }
    EXPECT_EQ(urlsOf(readBytes(whole)).at(0), "http://caf\u00e9/");
}

TEST(Nvd, survivesDamageOfEachByte) {
    const std::string whole = smallFile().bytes();
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
            std::string damaged = whole;
            damaged[at] = static_cast<char>(value);
            ASSERT_NO_THROW(readBytes(damaged)) << value << " at " << at;
        }
}

} // namespace
} // namespace nv
