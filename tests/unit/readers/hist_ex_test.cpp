#include "base/Trap.h"
#include "support/builders/HistEx.h"
#include "support/builders/IndexReading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using test::HistEx;
using test::IndexReading;
using test::IndexRecord;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

constexpr const char *kOffGrid = "record signatures off the 128-byte grid";
constexpr const char *kBefore = "record signatures before the first record";
constexpr const char *kInside = "record signatures inside of another record";

IndexRecord visit(const std::string &url) {
    return {.url = "Visited: user@" + url, .secondDate = test::fileTime(2011, 6, 15, 12, 30)};
}

IndexReading readAs(HistoryFileType type, const HistEx &file) {
    IndexReading reading(type, test::kHistExReader);
    reading.readBytes(file.bytes());
    return reading;
}

IndexReading read(const HistEx &file) {
    return readAs(HistoryFileType::histEx, file);
}

std::vector<std::int64_t> offsetsOf(const IndexReading &reading) {
    std::vector<std::int64_t> offsets;
    for (const UrlRecord &record : reading.records())
        offsets.push_back(record.MapFileOffset);
    return offsets;
}

TEST(HistEx, givesAllFieldsOfARecord) {
    HistEx file;
    file.add({.url = "Visited: user@http://www.example.com:80/a%20b?c=d",
              .firstDate = test::fileTime(2010, 1, 1),
              .secondDate = test::fileTime(2011, 6, 15, 12, 30, 5),
              .hits = 9,
              .created = test::dosDate(2011, 6, 15, 12, 30, 4)});
    for (const auto type : {HistoryFileType::histEx, HistoryFileType::histExIndex}) {
        const IndexReading reading = readAs(type, file);
        ASSERT_THAT(reading.records(), SizeIs(1));
        const UrlRecord &record = reading.records()[0];
        EXPECT_EQ(record.URL, "http://www.example.com:80/a b?c=d");
        EXPECT_EQ(record.URLRawValue, "Visited: user@http://www.example.com:80/a%20b?c=d");
        EXPECT_EQ(record.host, "www.example.com");
        EXPECT_EQ(record.User, "user");
        EXPECT_EQ(record.URLParameters, "c=d");
        EXPECT_EQ(record.Visits, 9);
        EXPECT_EQ(record.Status, "URL");
        EXPECT_EQ(record.Action, "Visited");
        EXPECT_EQ(record.cacheType, "Unallocated");
        EXPECT_EQ(record.Links, record.URL + ";");
        EXPECT_EQ(record.ActionDateUTC, Date::fromCivil({2011, 6, 15, 12, 30, 5}));
        EXPECT_EQ(record.CacheFileCreatedGMTDOS, Date::fromCivil({2011, 6, 15, 12, 30, 4}));
        EXPECT_FALSE(record.OtherDate.has());
        EXPECT_EQ(record.OtherDateMeaning, "");
        EXPECT_TRUE(record.IsHistory);
        EXPECT_FALSE(record.CacheFileExists);
        EXPECT_EQ(record.MapFileOffset, 0x80);
        EXPECT_EQ(record.RecordSize, 256U);
        EXPECT_EQ(record.HistoryVersion, "Ver 5.2");
        EXPECT_EQ(record.HistoryFilePath, "/evidence/index.dat");
        EXPECT_EQ(record.RootPath, "/");
        EXPECT_EQ(record.CacheRootPath, ""); // only other recovered files tell it here
        EXPECT_EQ(record.SourceFile_ID, SourceFileId{7});
        EXPECT_EQ(reading.result.state, ReadState::complete);
        EXPECT_THAT(reading.result.passedOver, IsEmpty());
        EXPECT_THAT(reading.log.entries, IsEmpty());
    }
}

TEST(HistEx, carvesRecordsOfThreeSignaturesWithFillerBetween) {
    HistEx file;
    const auto first = static_cast<std::int64_t>(file.add(visit("http://one/")));
    file.filler(2);
    const auto second = static_cast<std::int64_t>(file.addRedirect("http://two/"));
    const auto third = static_cast<std::int64_t>(
        file.add({.signature = "LEAK", .url = "http://three/" + std::string(400, 'x')}));
    const auto fourth = static_cast<std::int64_t>(file.add(visit("http://four/")));
    const IndexReading reading = read(file);
    EXPECT_THAT(offsetsOf(reading), ElementsAre(first, second, third, fourth));
    EXPECT_EQ(reading.records()[1].Status, "REDR");
    EXPECT_EQ(reading.records()[1].Action, "Redirected");
    EXPECT_EQ(reading.records()[1].cacheType, "");
    EXPECT_EQ(reading.records()[2].Status, "URL");
    EXPECT_THAT(reading.result.passedOver, IsEmpty());
}

TEST(HistEx, takesNeitherOtherSignaturesNorSmallLetters) {
    HistEx file;
    file.add(visit("http://one/"));
    file.add({.signature = "FILE", .url = "http://two/"});
    file.add({.signature = "url ", .url = "http://three/"});
    EXPECT_THAT(offsetsOf(read(file)), ElementsAre(0x80));
}

TEST(HistEx, trimsTheVersionAndEndsItAtAZeroByte) {
    const auto version = [](std::string_view text) {
        HistEx file(text);
        file.add(visit("http://one/"));
        return read(file).records().at(0).HistoryVersion;
    };
    EXPECT_EQ(version("Ver 5.2tail"), "Ver 5.2"); // the seventh character is the last one
    EXPECT_EQ(version(" 5.2   "), "5.2");
    EXPECT_EQ(version(std::string_view("4.7\0xyz", 7)), "4.7");
    EXPECT_EQ(version(""), "");
}

TEST(HistEx, givesNothingAndNoErrorWithoutARecord) {
    for (const std::string &bytes :
         {std::string(), std::string(5000, 'x'), std::string("URL"), HistEx().filler(3).bytes()}) {
        IndexReading reading(HistoryFileType::histEx, test::kHistExReader);
        reading.readBytes(bytes);
        EXPECT_THAT(reading.records(), IsEmpty());
        EXPECT_EQ(reading.result.state, ReadState::complete);
        EXPECT_THAT(reading.result.passedOver, ElementsAre(Pair("file without a record", 1)));
        EXPECT_THAT(reading.log.entries, IsEmpty());
    }
}

// The mark of one kind of these files holds the letters "URL": if they counted as the first record,
// the walk would start at them and meet none of the others.
TEST(HistEx, takesTheFirstRecordByItsSignatureWithTheBlank) {
    HistEx file;
    file.mark("NetAnalysisURLCacheMSIE5Hstex");
    file.add(visit("http://one/"));
    file.add(visit("http://two/"));
    EXPECT_THAT(offsetsOf(readAs(HistoryFileType::histExIndex, file)), ElementsAre(0x80, 0x180));
}

TEST(HistEx, startsAtTheFirstUrlAlthoughOtherRecordsLieBeforeAndCountsThese) {
    HistEx file;
    file.addRedirect("http://one/");
    file.add({.signature = "LEAK", .url = "http://two/"});
    const auto url = static_cast<std::int64_t>(file.add(visit("http://three/")));
    const IndexReading reading = read(file);
    EXPECT_THAT(offsetsOf(reading), ElementsAre(url));
    EXPECT_THAT(reading.result.passedOver, ElementsAre(Pair(kBefore, 2)));
}

TEST(HistEx, startsAtARedirectBeforeALeakWithoutAUrl) {
    HistEx both;
    both.add({.signature = "LEAK", .url = "http://one/"});
    const auto redirect = static_cast<std::int64_t>(both.addRedirect("http://two/"));
    const IndexReading reading = read(both);
    EXPECT_THAT(offsetsOf(reading), ElementsAre(redirect));
    EXPECT_THAT(reading.result.passedOver, ElementsAre(Pair(kBefore, 1)));
    HistEx leak;
    leak.add({.signature = "LEAK", .url = "http://one/"});
    EXPECT_THAT(offsetsOf(read(leak)), ElementsAre(0x80));
}

TEST(HistEx, walksTheBlocksFromTheFirstRecordWhereverThatIs) {
    HistEx file = HistEx::withoutHeader();
    file.raw("odd");
    file.add(visit("http://one/"));
    file.filler(1).add(visit("http://two/"));
    const IndexReading reading = read(file);
    EXPECT_THAT(offsetsOf(reading), ElementsAre(3, 3 + 0x180));
    EXPECT_THAT(reading.result.passedOver, IsEmpty());
}

TEST(HistEx, countsRecordsThatLieOffTheBlocksOfTheFirstOne) {
    HistEx file;
    file.add(visit("http://one/"));
    file.raw("odd");
    file.add(visit("http://two/"));
    file.addRedirect("http://three/");
    const IndexReading reading = read(file);
    EXPECT_THAT(offsetsOf(reading), ElementsAre(0x80));
    EXPECT_THAT(reading.result.passedOver, ElementsAre(Pair(kOffGrid, 2)));
}

TEST(HistEx, countsNoWordsOfTextsAsSignatures) {
    HistEx file;
    file.add(visit("http://one/?q=the URL of my page, REDRESS and LEAKS there"));
    EXPECT_THAT(read(file).result.passedOver, IsEmpty());
}

TEST(HistEx, countsRecordsThatAnotherOneSwallows) {
    HistEx file;
    const std::size_t first = file.add(visit("http://one/"));
    file.add(visit("http://two/"));
    file.add(visit("http://three/"));
    file.add(visit("http://four/"));
    std::string bytes = file.bytes();
    test::put32(bytes, first + 4, 6); // three records' worth of blocks
    IndexReading reading(HistoryFileType::histEx, test::kHistExReader);
    reading.readBytes(bytes);
    EXPECT_THAT(offsetsOf(reading), ElementsAre(0x80, 0x380));
    EXPECT_THAT(reading.result.passedOver, ElementsAre(Pair(kInside, 2)));
}

TEST(HistEx, goesOnByOneBlockAfterARecordOfImpossibleLength) {
    for (const std::uint32_t blocks :
         {0U, 0xFFFFFFFFU, 0x80000000U, 0x7FFFFFFFU, 0x02000000U, 7U}) {
        SCOPED_TRACE(blocks);
        HistEx file;
        file.add(visit("http://one/"));
        const std::size_t bad = file.add(visit("http://two/"));
        file.add(visit("http://three/"));
        std::string bytes = file.bytes();
        test::put32(bytes, bad + 4, blocks);
        IndexReading reading(HistoryFileType::histEx, test::kHistExReader);
        reading.readBytes(bytes);
        EXPECT_THAT(offsetsOf(reading), ElementsAre(0x80, 0x280));
        EXPECT_EQ(reading.result.state, ReadState::complete);
        EXPECT_THAT(reading.result.passedOver, ElementsAre(Pair("damaged record", 1)));
        ASSERT_THAT(reading.log.entries, SizeIs(1));
        EXPECT_EQ(reading.log.entries[0].procedure, "ParserClass.ParseHistExFile()");
        EXPECT_EQ(reading.log.entries[0].severity, Severity::Warning);
        EXPECT_THAT(reading.log.entries[0].message, HasSubstr("record at 384"));
    }
}

TEST(HistEx, logsTheFirstDamagedRecordsAndCountsAll) {
    HistEx file;
    for (int i = 0; i < 70; ++i)
        file.raw("URL \xFF\xFF\xFF\xFF" + std::string(0x78, 'x'));
    const IndexReading reading = read(file);
    EXPECT_THAT(reading.result.passedOver, ElementsAre(Pair("damaged record", 70)));
    EXPECT_THAT(reading.log.entries, SizeIs(RecordTrap::kLoggedRecords + 1));
}

TEST(HistEx, neverCallsARecordDeleted) {
    HistEx file;
    file.add(visit("http://one/"));
    IndexReading reading(HistoryFileType::histEx, test::kHistExReader);
    reading.deleted = true;
    reading.readBytes(file.bytes());
    EXPECT_EQ(reading.records().at(0).Status, "URL");
}

TEST(HistEx, givesNoDateForStampsThatAreNone) {
    HistEx file;
    file.add({.url = "http://host/", .secondDate = 0});
    file.add({.signature = "LEAK",
              .url = "page[1].htm",
              .secondDate = 0xDEADBEEFDEADBEEF,
              .hits = 0xDEADBEEF,
              .created = 0xDEADBEEFDEADBEEF});
    file.add({.url = "http://host/", .secondDate = 0xFFFFFFFFFFFFFFFF});
    const IndexReading reading = read(file);
    ASSERT_THAT(reading.records(), SizeIs(3));
    for (const UrlRecord &record : reading.records())
        EXPECT_FALSE(record.ActionDateUTC.has() || record.CacheFileCreatedGMTDOS.has());
    EXPECT_EQ(reading.records()[1].Visits, -559038737); // signed, as all numbers of the format
    EXPECT_EQ(reading.records()[1].URL, "page[1].htm");
}

TEST(HistEx, readsTheFirstAndTheLastDate) {
    HistEx file;
    file.add({.url = "http://host/", .secondDate = test::fileTime(1601, 1, 1, 0, 0, 1)});
    file.add({.url = "http://host/", .secondDate = test::fileTime(9999, 12, 31, 23, 59, 59)});
    const IndexReading reading = read(file);
    EXPECT_EQ(reading.records().at(0).ActionDateUTC, Date::fromCivil({1601, 1, 1, 0, 0, 1}));
    EXPECT_EQ(reading.records().at(1).ActionDateUTC, Date::fromCivil({9999, 12, 31, 23, 59, 59}));
}

TEST(HistEx, readsTextsAsWindows1252) {
    HistEx file;
    file.add({.url = "http://host/caf\xE9?\x80"});
    EXPECT_EQ(read(file).records().at(0).URLRawValue, "http://host/caf\u00e9?\u20ac");
}

TEST(HistEx, isCancelledBetweenRecords) {
    HistEx file;
    for (int i = 0; i < 5; ++i)
        file.add(visit("http://host/"));
    test::CancelAfter task(2);
    IndexReading reading(HistoryFileType::histEx, test::kHistExReader);
    reading.readBytes(file.bytes(), task);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_THAT(reading.records(), SizeIs(2));
}

TEST(HistEx, showsWhatItDoes) {
    HistEx file;
    file.add(visit("http://host/"));
    const test::TempFolder folder;
    const auto path = folder.write("0001-UC-index.dat", file.bytes());
    test::MemoryTask task;
    IndexReading reading(HistoryFileType::histEx, test::kHistExReader);
    reading.readFile(path, folder.path(), task);
    ASSERT_THAT(task.headings, SizeIs(1));
    EXPECT_EQ(task.headings[0].title, "PARSING NET ANALYSIS HIST-EX FILE");
    EXPECT_EQ(task.headings[0].subject, "Internet Explorer (Unallocated Space)");
    EXPECT_EQ(task.headings[0].detail, path.string());
    EXPECT_EQ(task.headings[0].icon, "net-32.gif");
    ASSERT_THAT(task.steps, SizeIs(1));
    EXPECT_EQ(task.steps[0].topMessage, "Extracting MSIE URL - Reading byte 128 of 384");
    EXPECT_THAT(reading.records(), SizeIs(1));
}

TEST(HistEx, tellsOfAFileThatCanNotBeRead) {
    const test::TempFolder folder;
    IndexReading reading(HistoryFileType::histEx, test::kHistExReader);
    reading.readFile(folder.path() / "gone-UC-index.dat", folder.path());
    EXPECT_EQ(reading.result.state, ReadState::failed);
    EXPECT_THAT(reading.result.reason, HasSubstr("gone-UC-index.dat"));
    ASSERT_THAT(reading.log.entries, SizeIs(1));
    EXPECT_EQ(reading.log.entries[0].procedure, "ParserClass.ParseHistExFile()");
}

HistEx smallFile() {
    HistEx file;
    file.add(visit("http://one/"));
    file.addRedirect("http://two/");
    file.add({.signature = "LEAK", .url = "http://three/"});
    return file;
}

TEST(HistEx, survivesACutAtEveryByte) {
    const std::string whole = smallFile().bytes();
    std::size_t before = 0;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        IndexReading reading(HistoryFileType::histEx, test::kHistExReader);
        reading.readBytes(whole.substr(0, length));
        ASSERT_EQ(reading.result.state, ReadState::complete) << length;
        ASSERT_GE(reading.records().size(), before) << length;
        before = reading.records().size();
        // A record of which at least the signature is left is either saved or counted.
        ASSERT_TRUE(length < 0x84 || before > 0 || !reading.result.passedOver.empty()) << length;
    }
    EXPECT_EQ(before, 3U);
}

TEST(HistEx, survivesDamageOfEachByte) {
    const std::string whole = smallFile().bytes();
    for (std::size_t at = 0; at < whole.size(); ++at)
        for (const int value : {0x00, 0x7F, 0x80, 0xFF}) {
            std::string damaged = whole;
            damaged[at] = static_cast<char>(value);
            IndexReading reading(HistoryFileType::histExIndex, test::kHistExReader);
            ASSERT_NO_THROW(reading.readBytes(damaged)) << value << " at " << at;
            ASSERT_LE(reading.records().size(), 3U);
        }
}

TEST(HistEx, takesAFileOfNothingButASignatureForADamagedRecord) {
    IndexReading reading(HistoryFileType::histEx, test::kHistExReader);
    reading.readBytes("URL ");
    EXPECT_THAT(reading.records(), IsEmpty());
    EXPECT_THAT(reading.result.passedOver, ElementsAre(Pair("damaged record", 1)));
    EXPECT_THAT(reading.log.entries, SizeIs(1));
}

} // namespace
} // namespace nv
