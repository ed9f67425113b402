#include "support/builders/IndexDat.h"
#include "support/builders/IndexReading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace nv {
namespace {

using test::IndexDat;
using test::IndexReading;
using test::IndexRecord;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::UnorderedElementsAre;

IndexRecord visit(const std::string &url) {
    return {.url = "Visited: user@" + url};
}

std::vector<std::string> urlsOf(const IndexReading &reading) {
    std::vector<std::string> urls;
    for (const UrlRecord &record : reading.records())
        urls.push_back(record.URL);
    return urls;
}

std::vector<std::int64_t> offsetsOf(const IndexReading &reading) {
    std::vector<std::int64_t> offsets;
    for (const UrlRecord &record : reading.records())
        offsets.push_back(record.MapFileOffset);
    return offsets;
}

TEST(IEWalk, readsTheRecordsInTheOrderOfTheHash) {
    IndexDat index;
    index.add(visit("http://one/"));
    index.addRedirect("http://two/");
    index.endTable();
    index.add(visit("http://three/"));
    const IndexReading reading = IndexReading().readBytes(index.bytes());
    EXPECT_THAT(urlsOf(reading),
                testing::ElementsAre("http://one/", "http://two/", "http://three/"));
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_THAT(reading.result.passedOver, IsEmpty());
    EXPECT_THAT(reading.log.entries, IsEmpty());
}

TEST(IEWalk, skipsFreeSlotsAndFillerButLooksAtAllOtherStatuses) {
    IndexDat index;
    const auto record = static_cast<std::uint32_t>(index.addUnreferenced(visit("http://one/")));
    index.entry(0, record).entry(3, record);
    index.entry(0xDEADBEEF, 0xDEADBEEF);
    EXPECT_THAT(urlsOf(IndexReading().readBytes(index.bytes())), IsEmpty());
    index.entry(1, record).entry(0x0BADF00D, record).entry(0xDEADBEEF, record);
    const IndexReading reading = IndexReading().readBytes(index.bytes());
    EXPECT_THAT(urlsOf(reading), SizeIs(3)); // an entry that is met twice is two rows
    EXPECT_THAT(reading.log.entries, IsEmpty());
}

TEST(IEWalk, passesOverEntriesWithoutARecordSignatureAndCountsThem) {
    IndexDat index;
    index.add(visit("http://one/"));
    index.add({.signature = "JUNK", .url = "http://two/"});
    index.entry(0x40, 8);
    const IndexReading reading = IndexReading().readBytes(index.bytes());
    EXPECT_THAT(urlsOf(reading), testing::ElementsAre("http://one/"));
    EXPECT_THAT(reading.result.passedOver,
                UnorderedElementsAre(Pair("entry without a record signature", 2)));
}

TEST(IEWalk, takesSignaturesInCapitalsOnlyThoughTheWalkComparesWithoutCase) {
    IndexDat index;
    index.add({.signature = "url ", .url = "http://one/"});
    index.add({.signature = "FILE", .url = "http://two/"});
    const IndexReading reading = IndexReading().readBytes(index.bytes());
    EXPECT_THAT(urlsOf(reading), testing::ElementsAre("http://two/"));
    EXPECT_THAT(
        reading.result.passedOver,
        UnorderedElementsAre(Pair("record of no length or with a signature not in capitals", 1)));
}

TEST(IEWalk, passesOverARecordOfNoLength) {
    IndexDat index;
    const std::size_t at = index.add(visit("http://one/"));
    std::string bytes = index.bytes();
    test::put32(bytes, at + 4, 0);
    const IndexReading reading = IndexReading().readBytes(bytes);
    EXPECT_THAT(reading.records(), IsEmpty());
    EXPECT_THAT(
        reading.result.passedOver,
        UnorderedElementsAre(Pair("record of no length or with a signature not in capitals", 1)));
}

TEST(IEWalk, endsAtARecordOutsideOfTheFileAndTellsWhatIsAfter) {
    IndexDat index;
    index.add(visit("http://one/"));
    index.entry(1, 0x0BADF00D);
    index.add(visit("http://two/"));
    index.entry(3, 3).entry(0xDEADBEEF, 0xDEADBEEF);
    index.endTable();
    index.add(visit("http://three/"));
    const IndexReading reading = IndexReading().readBytes(index.bytes());
    EXPECT_THAT(urlsOf(reading), testing::ElementsAre("http://one/"));
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(reading.result.notReached, 3U);
    EXPECT_EQ(reading.result.reason, "/evidence/index.dat: the hash entry at 16408 expects a "
                                     "record at 195948557, outside of the 25344 bytes");
    ASSERT_THAT(reading.log.entries, SizeIs(1));
    EXPECT_EQ(reading.log.entries[0].message, reading.result.reason);
    EXPECT_EQ(reading.log.entries[0].procedure, "ParserClass.ParseIECacheFile()");
    EXPECT_EQ(reading.log.entries[0].severity, Severity::Warning);
    EXPECT_THAT(reading.result.passedOver, IsEmpty());
}

TEST(IEWalk, takesOffsetsAsSigned) {
    IndexDat index;
    index.entry(1, 0xFFFFFF00);
    const IndexReading reading = IndexReading().readBytes(index.bytes());
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_THAT(reading.result.reason, HasSubstr("a record at -256,"));
}

TEST(IEWalk, goesOnAfterADamagedRecord) {
    IndexDat index;
    index.add(visit("http://one/"));
    const std::size_t bad = index.add(visit("http://two/"));
    const std::size_t negative = index.add(visit("http://three/"));
    index.add(visit("http://four/"));
    std::string bytes = index.bytes();
    test::put32(bytes, bad + 4, 0x1000);
    test::put32(bytes, negative + 4, 0xFFFFFFFF);
    const IndexReading reading = IndexReading().readBytes(bytes);
    EXPECT_THAT(urlsOf(reading), testing::ElementsAre("http://one/", "http://four/"));
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_THAT(reading.result.passedOver, UnorderedElementsAre(Pair("damaged record", 2)));
    ASSERT_THAT(reading.log.entries, SizeIs(2));
    EXPECT_THAT(reading.log.entries[0].message, HasSubstr("record at " + std::to_string(bad)));
    EXPECT_EQ(reading.log.entries[0].procedure, "ParserClass.ParseIECacheFile()");
}

TEST(IEWalk, tellsOfAFileThatEndsWithinItsHeader) {
    for (const std::size_t size : {0U, 28U, 4095U}) {
        const IndexReading reading = IndexReading().readBytes(std::string(size, 'x'));
        EXPECT_EQ(reading.result.state, ReadState::cutShort) << size;
        EXPECT_THAT(reading.result.reason,
                    HasSubstr("the file is " + std::to_string(size) + " bytes long"));
        EXPECT_THAT(reading.log.entries, SizeIs(1));
        EXPECT_THAT(reading.records(), IsEmpty());
    }
}

TEST(IEWalk, passesOverAFileWithoutAHashTableAndWithoutALogLine) {
    const IndexReading zeros = IndexReading().readBytes(std::string(4096, '\0'));
    EXPECT_THAT(zeros.result.passedOver,
                UnorderedElementsAre(Pair("file without a hash table", 1)));
    EXPECT_EQ(zeros.result.state, ReadState::complete);
    EXPECT_THAT(zeros.log.entries, IsEmpty());
    EXPECT_THAT(zeros.records(), IsEmpty());
}

TEST(IEWalk, readsTheFirstTableOffsetBigEndianFromTheByteBeforeIt) {
    IndexDat index;
    index.add(visit("http://one/"));
    // 16 MiB or more: the top byte of the size field becomes part of the offset.
    const IndexReading large = IndexReading().readBytes(index.sizeField(0x01000000).bytes());
    EXPECT_THAT(large.records(), IsEmpty());
    EXPECT_EQ(large.result.state, ReadState::cutShort);
    EXPECT_EQ(large.result.notReached, 1U);
    EXPECT_THAT(large.result.reason, HasSubstr("a hash table was expected at 16793600"));
    EXPECT_THAT(large.log.entries, SizeIs(1));
    // Only the bytes 0x1F to 0x22 count; 0x23 may hold anything.
    std::string bytes = index.sizeField(0).bytes();
    bytes[0x23] = 0x55;
    EXPECT_THAT(IndexReading().readBytes(bytes).records(), SizeIs(1));
}

TEST(IEWalk, stopsAfterTwoHundredAndOneTablesAndCountsWhatIsAfter) {
    IndexDat index(1, 0);
    for (int table = 0; table < 204; ++table) {
        index.add(visit("http://host/" + std::to_string(table)));
        index.endTable();
    }
    const IndexReading reading = IndexReading().readBytes(index.bytes());
    ASSERT_THAT(reading.records(), SizeIs(201));
    EXPECT_EQ(reading.records().back().URL, "http://host/200");
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_THAT(reading.result.passedOver,
                UnorderedElementsAre(Pair("hash table behind hash table 201", 3),
                                     Pair("hash entry behind hash table 201", 3)));
}

TEST(IEWalk, endsAChainThatLoops) {
    IndexDat index;
    index.add(visit("http://one/"));
    index.endTable();
    index.add(visit("http://two/"));
    std::string bytes = index.bytes();
    test::put32(bytes, index.tables()[1] + 8, IndexDat::kFirstTable);
    const IndexReading reading = IndexReading().readBytes(bytes);
    EXPECT_THAT(urlsOf(reading), testing::ElementsAre("http://one/", "http://two/"));
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_THAT(reading.result.reason, HasSubstr("leads back to the one at 16384"));
    EXPECT_THAT(reading.log.entries, SizeIs(1));
}

TEST(IEWalk, readsTheTablesBeforeOneOutsideOfTheFile) {
    for (const std::uint32_t next : {0x7FFFFFF0U, 0xFFFFFF00U}) {
        IndexDat index;
        index.add(visit("http://one/"));
        std::string bytes = index.bytes();
        test::put32(bytes, IndexDat::kFirstTable + 8, next);
        const IndexReading reading = IndexReading().readBytes(bytes);
        EXPECT_THAT(reading.records(), SizeIs(1));
        EXPECT_EQ(reading.result.state, ReadState::cutShort);
        EXPECT_THAT(reading.result.reason, HasSubstr("a hash table was expected at"));
    }
}

TEST(IEWalk, saysWhenATableHasAnImpossibleLength) {
    for (const std::uint32_t blocks : {0U, 0xFFFFFFFFU, 0x7FFFFFFFU}) {
        IndexDat index;
        index.add(visit("http://one/"));
        std::string bytes = index.bytes();
        test::put32(bytes, IndexDat::kFirstTable + 4, blocks);
        const IndexReading reading = IndexReading().readBytes(bytes);
        EXPECT_EQ(reading.result.state, ReadState::cutShort);
        EXPECT_THAT(reading.result.reason, HasSubstr("the hash table at 16384 has an impossible"));
        EXPECT_THAT(reading.records(), SizeIs(blocks == 0x7FFFFFFF ? 1 : 0));
    }
}

TEST(IEWalk, endsWhereATableLeavesTheFile) {
    IndexDat index;
    index.add(visit("http://one/"));
    std::string bytes = index.bytes();
    test::put32(bytes, IndexDat::kFirstTable + 4, 64);
    bytes.resize(IndexDat::kFirstTable + 4096);
    test::put32(bytes, IndexDat::kFirstTable + 0x14, 0x4000); // no signature is there
    const IndexReading reading = IndexReading().readBytes(bytes);
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_THAT(reading.result.reason, HasSubstr("a hash entry was expected at 20480, outside"));
}

TEST(IEWalk, countsRecordsThatNoEntryLeadsTo) {
    IndexDat index;
    index.add({.signature = "LEAK", .url = "http://one/"});
    index.addUnreferenced({.signature = "LEAK", .url = "http://two/"});
    index.addUnreferenced({.signature = "LEAK", .url = "http://three/"});
    index.addUnreferenced({.url = "http://four/"});
    const IndexReading reading = IndexReading().readBytes(index.bytes());
    EXPECT_THAT(reading.records(), SizeIs(1));
    EXPECT_THAT(reading.result.passedOver,
                UnorderedElementsAre(Pair("LEAK record outside of the hash tables", 2),
                                     Pair("URL record outside of the hash tables", 1)));
}

TEST(IEWalk, leavesAtOnceWhenCancelledAndKeepsWhatIsSaved) {
    IndexDat index;
    for (const char *url : {"http://one/", "http://two/", "http://three/"})
        index.add(visit(url));
    const test::TempFolder folder;
    const auto path = folder.write("index.dat", index.bytes());
    test::CancelAfter task(2);
    IndexReading reading;
    reading.readFile(path, folder.path(), task);
    EXPECT_THAT(offsetsOf(reading), SizeIs(2));
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_THAT(reading.log.entries, IsEmpty());
    ASSERT_THAT(task.headings, SizeIs(1));
    EXPECT_EQ(task.headings[0].title, "PARSING CACHE INDEX FILE");
    EXPECT_EQ(task.headings[0].subject, "Internet Explorer");
    EXPECT_EQ(task.headings[0].detail, path.string());
    EXPECT_EQ(task.headings[0].icon, "ie-32.gif");
}

TEST(IEWalk, showsTablesAndEntries) {
    IndexDat index(1, 0);
    for (int i = 0; i < 15; ++i)
        index.add(visit("http://host/" + std::to_string(i)));
    const test::TempFolder folder;
    test::MemoryTask task;
    IndexReading reading;
    reading.readFile(folder.write("index.dat", index.bytes()), folder.path(), task);
    ASSERT_THAT(task.steps, SizeIs(28));
    EXPECT_EQ(task.steps[0].topMessage, "Reading Hash Table 1 of 2");
    EXPECT_EQ(task.steps[1].bottomMessage, "Processing Hash Record 1 of 14");
    EXPECT_EQ(task.steps[27].topMessage, "Reading Hash Table 2 of 2");
    EXPECT_EQ(task.steps[27].topCounter, 2);
    EXPECT_EQ(task.steps[27].bottomCounter, 13);
    EXPECT_EQ(task.steps[27].bottomTotal, 14);
    EXPECT_TRUE(std::is_sorted(task.fractions.begin(), task.fractions.end()));
    EXPECT_LT(task.fractions.back(), 1.0);
}

TEST(IEWalk, saysWhatFileItCouldNotRead) {
    const test::TempFolder folder;
    IndexReading reading;
    reading.readFile(folder.path() / "none.dat", folder.path());
    EXPECT_EQ(reading.result.state, ReadState::failed);
    EXPECT_THAT(reading.result.reason, HasSubstr("none.dat"));
    ASSERT_THAT(reading.log.entries, SizeIs(1));
    EXPECT_EQ(reading.log.entries[0].procedure, "ParserClass.ParseIECacheFile()");
    EXPECT_EQ(reading.log.entries[0].severity, Severity::Warning);
    EXPECT_EQ(reading.log.entries[0].recommendation, kContactSupport);
}

} // namespace
} // namespace nv
