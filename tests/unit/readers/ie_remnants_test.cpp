#include "base/Files.h"
#include "support/Facts.h"
#include "support/builders/IndexDat.h"
#include "support/builders/IndexReading.h"
#include "time/DateFormat.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using test::factOf;
using test::IndexDat;
using test::IndexReading;
using test::IndexRecord;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::StartsWith;

/// An index with all that the classic rules pass over.
class IERemnants : public testing::Test {
  protected:
    IERemnants() { index.folder("ABCDEFGH"); } // without one it would be a history

    IndexReading &read(const std::string &bytes, HistoryFileType type = HistoryFileType::ieCache) {
        reading.emplace(type);
        reading->classicOnly = false;
        return reading->readBytes(bytes);
    }
    const UrlRecord &record(std::size_t i) const { return reading->records().at(i); }
    std::vector<std::string> urls() const {
        std::vector<std::string> urls;
        for (const UrlRecord &each : reading->records())
            urls.push_back(each.cacheType + " " + each.URL);
        return urls;
    }
    static IndexRecord entry(const std::string &url, const std::string &signature = "URL ") {
        return {.signature = signature,
                .url = url,
                .firstDate = test::fileTime(2011, 3, 1),
                .secondDate = test::fileTime(2011, 3, 2, 10, 20, 30),
                .expiry = test::dosDate(2012, 1, 2, 3, 4, 6),
                .fileSize = 100,
                .folder = 0,
                .hits = 4,
                .fileName = "page[1].htm"};
    }

    IndexDat index;
    std::optional<IndexReading> reading;
};

TEST_F(IERemnants, areRecordsThatNoEntryLeadsTo) {
    index.add(entry("http://listed/"));
    const std::size_t leak = index.addUnreferenced(entry("http://leak/", "LEAK"));
    const std::size_t loose = index.addUnreferenced(entry("http://loose/"));
    const std::string bytes = index.bytes() + test::redirectBytes("http://redirected/");
    read(bytes);
    EXPECT_THAT(urls(), ElementsAre("IE Cache http://listed/", "IE Remnant http://leak/",
                                    "IE Remnant http://loose/", "IE Remnant http://redirected/"));
    EXPECT_THAT(reading->result.passedOver, IsEmpty());
    EXPECT_EQ(reading->result.state, ReadState::complete);
    EXPECT_EQ(record(0).Visits, 4);
    const UrlRecord &first = record(1);
    EXPECT_EQ(first.Status, "Recovered");
    EXPECT_EQ(first.Visits, kVisitsUnknown); // totals add the column up
    EXPECT_EQ(factOf(first, "count"), "4");
    EXPECT_EQ(factOf(first, "recovered_from"),
              fmt::format("LEAK record in block 0x{:X}, not in any hash table, free by the index's "
                          "map of blocks",
                          leak));
    EXPECT_EQ(factOf(first, "source_offset"), std::to_string(leak));
    EXPECT_EQ(first.MapFileOffset, static_cast<std::int64_t>(leak));
    EXPECT_EQ(isoUtc(first.ActionDateUTC), "2011-03-02T10:20:30Z");
    EXPECT_EQ(first.CacheFolderName, "ABCDEFGH");
    EXPECT_EQ(record(2).MapFileOffset, static_cast<std::int64_t>(loose));
    EXPECT_EQ(record(3).Action, "Redirected");
    EXPECT_EQ(record(3).Status, "Recovered");
    EXPECT_FALSE(record(3).ActionDateUTC.has());
}

TEST_F(IERemnants, withTheNameOfTheirFileAloneHaveNoUrl) {
    const std::size_t at = index.addUnreferenced({.signature = "LEAK", .url = "page[1].htm"});
    std::string bytes = index.bytes();
    for (std::size_t field = 8; field < 0x68; field += 4)
        test::put32(bytes, at + field, 0xDEADBEEF);
    test::put32(bytes, at + 0x3C, 0x68);
    const UrlRecord leak = read(bytes).records().at(0);
    EXPECT_EQ(leak.URL, "");
    EXPECT_EQ(leak.URLRawValue, "");
    EXPECT_EQ(leak.CacheFileName, "page[1].htm");
    EXPECT_FALSE(leak.ActionDateUTC.has());
    EXPECT_EQ(leak.Visits, kVisitsUnknown);
    EXPECT_EQ(factOf(leak, "count"), "-");
    EXPECT_EQ(factOf(leak, "last_checked"), "-");
    EXPECT_EQ(factOf(leak, "expires"), "-");
}

TEST_F(IERemnants, tellWhetherTheIndexHasTheirBlocksInUse) {
    const std::size_t at = index.addUnreferenced(entry("http://leak/", "LEAK"));
    std::string bytes = index.bytes();
    const std::size_t block = (at - 0x4000) / 0x80;
    bytes[0x250 + block / 8] = static_cast<char>(1 << (block % 8));
    EXPECT_THAT(factOf(read(bytes).records().at(0), "recovered_from"),
                HasSubstr(", in use by the index's map of blocks"));
    bytes[0x18] = '4'; // which has its map elsewhere
    EXPECT_THAT(factOf(read(bytes).records().at(0), "recovered_from"),
                testing::EndsWith("not in any hash table"));
}

TEST_F(IERemnants, areNoRowsByTheClassicRules) {
    index.add(entry("http://listed/"));
    index.addUnreferenced(entry("http://leak/", "LEAK"));
    IndexReading classic(HistoryFileType::ieCache);
    classic.readBytes(index.bytes());
    ASSERT_THAT(classic.records(), SizeIs(1));
    EXPECT_TRUE(classic.records()[0].facts.empty());
    EXPECT_THAT(classic.result.passedOver,
                ElementsAre(Pair("LEAK record outside of the hash tables", 1)));
    const IndexReading &whole = read(index.bytes());
    EXPECT_EQ(whole.records()[0].URL, classic.records()[0].URL);
    EXPECT_EQ(whole.records()[0].Status, classic.records()[0].Status);
}

TEST_F(IERemnants, classicRowsTellWhenTheyEndAndWereChecked) {
    const std::size_t at = index.add(entry("http://listed/"));
    std::string bytes = index.bytes();
    test::put32(bytes, at + 0x50, test::dosDate(2011, 3, 4, 5, 6, 8));
    const UrlRecord listed = read(bytes).records().at(0);
    EXPECT_EQ(factOf(listed, "last_checked"), "2011-03-04 05:06:08");
    EXPECT_EQ(factOf(listed, "expires"), "2012-01-02 03:04:06");
    EXPECT_FALSE(listed.ExpiryDate.has()); // the classic row stays
    EXPECT_EQ(factOf(listed, "stale_hash"), "-");
    test::put32(bytes, at + 0x34, 0x60); // a record of an earlier version
    test::put64(bytes, at + 0x18, test::fileTime(2013, 4, 5));
    EXPECT_EQ(factOf(read(bytes).records().at(0), "last_checked"), "-");
    EXPECT_EQ(factOf(record(0), "expires"), "2013-04-05 00:00:00");
}

TEST_F(IERemnants, staleEntriesOfTheHashAreMarked) {
    const auto at = static_cast<std::uint32_t>(index.addUnreferenced(entry("http://given-up/")));
    index.entry(0x1234'5641, at);
    index.add(entry("http://listed/"));
    read(index.bytes());
    ASSERT_THAT(reading->records(), SizeIs(2)); // both are classic rows
    EXPECT_EQ(factOf(record(0), "stale_hash"), "yes [305419841]");
    EXPECT_EQ(factOf(record(1), "stale_hash"), "-");
}

TEST_F(IERemnants, withinTheBlocksOfAListedRecordAreThatRecords) {
    IndexRecord large = entry("http://listed/" + std::string(400, 'a'));
    const std::size_t at = index.add(large);
    std::string bytes = index.bytes();
    bytes.replace(at + 0x100, 0x80, test::recordBytes({.url = "x"}).substr(0, 0x80));
    read(bytes);
    EXPECT_THAT(reading->records(), SizeIs(1));
    EXPECT_THAT(reading->result.passedOver,
                ElementsAre(Pair("signature within the blocks of a listed record", 1)));
}

TEST_F(IERemnants, endWhereAnotherRecordBegins) {
    IndexRecord large = entry("http://loose/" + std::string(300, 'b'));
    large.headers = "HTTP/1.1 200 OK";
    const std::size_t at = index.addUnreferenced(large);
    std::string bytes = index.bytes();
    const std::string other = test::recordBytes({.url = "http://newer/"});
    bytes.replace(at + 0x100, other.size(), other);
    read(bytes);
    ASSERT_THAT(reading->records(), SizeIs(2));
    EXPECT_THAT(record(0).URL, StartsWith("http://loose/bbb"));
    EXPECT_THAT(record(0).URL, testing::Not(HasSubstr("newer")));
    EXPECT_EQ(record(0).CacheFileName, ""); // it stood in the blocks that are gone
    EXPECT_EQ(record(0).MetaData, "");
    EXPECT_THAT(factOf(record(0), "recovered_from"),
                testing::EndsWith("; 2 of its 4 blocks are left, the others hold something else or "
                                  "aren't there; the end of its URL was in those"));
    EXPECT_EQ(record(1).URL, "http://newer/");
}

TEST_F(IERemnants, ofAnyLengthLeaveTheOthersReadable) {
    for (const std::uint32_t blocks : {0U, 0xFFFFFFFFU, 0x80000000U, 0x7FFFFFFFU, 0x10000U}) {
        SCOPED_TRACE(blocks);
        IndexDat damaged;
        damaged.folder("ABCDEFGH");
        const std::size_t bad = damaged.addUnreferenced(entry("http://damaged/"));
        damaged.addUnreferenced(entry("http://sound/"));
        std::string bytes = damaged.bytes();
        test::put32(bytes, bad + 4, blocks);
        read(bytes);
        EXPECT_EQ(reading->records().back().URL, "http://sound/");
        const bool isRead = blocks == 0x7FFFFFFF || blocks == 0x10000;
        EXPECT_THAT(reading->records(), SizeIs(isRead ? 2 : 1));
        EXPECT_EQ(reading->result.passedOver["damaged record outside of the hash tables"],
                  isRead ? 0 : 1);
        EXPECT_EQ(reading->result.state, ReadState::complete);
    }
}

TEST_F(IERemnants, atTheEndOfTheFileAreCountedWhenTheyAreCut) {
    index.addUnreferenced(entry("http://cut/"));
    std::string bytes = index.bytes();
    bytes.resize(bytes.size() - 0x20);
    read(bytes);
    EXPECT_THAT(reading->records(), IsEmpty());
    EXPECT_THAT(reading->result.passedOver,
                ElementsAre(Pair("damaged record outside of the hash tables", 1)));
}

TEST_F(IERemnants, recordsOfHistoriesKeepTheMeaningOfTheirDates) {
    index.addUnreferenced({.url = "Visited: mara@http://one/",
                           .firstDate = test::fileTime(2011, 3, 1),
                           .secondDate = test::fileTime(2011, 3, 2)});
    const UrlRecord visit = read(index.bytes(), HistoryFileType::ieHistory).records().at(0);
    EXPECT_EQ(visit.cacheType, "IE Remnant");
    EXPECT_EQ(visit.User, "mara");
    EXPECT_EQ(visit.OtherDateMeaning, "Last Visited (GMT)");
    EXPECT_EQ(visit.Action, "Visited");
    EXPECT_TRUE(visit.IsHistory);
}

TEST_F(IERemnants, goOnWithEntriesAfterOneThatLeadsOutOfTheFile) {
    index.add(entry("http://one/"));
    index.entry(1, 0x0BADF00D);
    index.add(entry("http://two/"));
    index.endTable();
    index.entry(1, 0x7FFFFFFF);
    index.add(entry("http://three/"));
    read(index.bytes());
    EXPECT_THAT(urls(), ElementsAre("IE Cache http://one/", "IE Cache http://two/",
                                    "IE Cache http://three/"));
    EXPECT_EQ(factOf(record(0), "classic_rule"), "-");
    EXPECT_EQ(factOf(record(2), "classic_rule"),
              "hash entry after one that leads out of the file, where the classic rules end");
    EXPECT_EQ(reading->result.state, ReadState::cutShort);
    EXPECT_EQ(reading->result.notReached, 2U); // the two that lead nowhere
}

TEST_F(IERemnants, goOnAfterTheTablesOfTheClassicRulesWithEachRecordOnce) {
    IndexDat many(1, 0);
    for (int table = 0; table < 203; ++table) {
        many.add({.url = "http://host/" + std::to_string(table)});
        many.endTable();
    }
    const auto again = static_cast<std::uint32_t>(many.tables()[1] + 0x80);
    many.entry(0x40, again).entry(0x40, again + 8); // has its row; amid a block
    read(many.bytes());
    ASSERT_THAT(reading->records(), SizeIs(203));
    EXPECT_EQ(record(202).URL, "http://host/202");
    EXPECT_THAT(factOf(record(202), "classic_rule"), StartsWith("hash table behind the last one"));
    EXPECT_THAT(reading->result.passedOver,
                ElementsAre(Pair("hash entry that leads amid a block", 1)));
}

TEST_F(IERemnants, findTheTablesOfALargeIndex) {
    index.add(entry("http://one/"));
    read(index.sizeField(0x01000000).bytes());
    EXPECT_THAT(urls(), ElementsAre("IE Cache http://one/"));
    EXPECT_EQ(record(0).CacheFolderName, "ABCDEFGH");
    EXPECT_EQ(reading->result.notReached, 0U);
    EXPECT_EQ(reading->result.state, ReadState::cutShort);
}

TEST_F(IERemnants, areFoundWithoutAHash) {
    const std::size_t at = index.add(entry("http://one/"));
    std::string bytes = index.bytes();
    test::put32(bytes, 0x1C, 0);
    test::put32(bytes, 0x20, 0);
    bytes.erase(0x4000, at - 0x4000);
    read(bytes);
    EXPECT_THAT(urls(), ElementsAre("IE Remnant http://one/"));
    EXPECT_THAT(reading->result.passedOver, ElementsAre(Pair("file without a hash table", 1)));
}

TEST_F(IERemnants, canBeCancelledAmidThem) {
    index.add(entry("http://listed/"));
    for (int i = 0; i < 5; ++i)
        index.addUnreferenced(entry("http://loose/" + std::to_string(i)));
    test::MemoryTask counting;
    reading.emplace(HistoryFileType::ieCache);
    reading->classicOnly = false;
    reading->readBytes(index.bytes(), counting);
    EXPECT_TRUE(std::is_sorted(counting.fractions.begin(), counting.fractions.end()));
    EXPECT_LE(counting.fractions.back(), 1.0);
    test::CancelAfter task(static_cast<int>(counting.fractions.size()) - 2);
    reading.emplace(HistoryFileType::ieCache);
    reading->classicOnly = false;
    reading->readBytes(index.bytes(), task);
    EXPECT_EQ(reading->result.state, ReadState::cancelled);
    EXPECT_THAT(reading->records(), SizeIs(4));
}

/// A cache on a disk, with its files.
class IERemnantFiles : public IERemnants {
  protected:
    std::vector<UrlRecord> readOnDisk() {
        const auto path = disk.write("Content.IE5/index.dat", index.bytes());
        reading.emplace(HistoryFileType::ieCache);
        reading->classicOnly = false;
        return reading->readFile(path, disk.path()).records();
    }
    test::TempFolder disk;
};

TEST_F(IERemnantFiles, areTheRemnantsWhenTheySayTheSameAndAreNobodyElses) {
    index.addUnreferenced(entry("http://leak/", "LEAK"));
    disk.write("Content.IE5/ABCDEFGH/page[1].htm", std::string(100, 'x'));
    const UrlRecord leak = readOnDisk().at(0);
    EXPECT_TRUE(leak.CacheFileExists);
    EXPECT_EQ(leak.Status, "Recovered");
    EXPECT_THAT(leak.CacheFileRelativePath, testing::EndsWith("ABCDEFGH/page[1].htm"));
    EXPECT_EQ(factOf(leak, "body"), "a file of this name and size, which no listed record has");
}

TEST_F(IERemnantFiles, thatAListedRecordHasAreNotTheirs) {
    index.add(entry("http://listed/"));
    IndexRecord same = entry("http://loose/");
    same.fileName = "PAGE[1].htm"; // names are the same in any case
    index.addUnreferenced(same);
    disk.write("Content.IE5/ABCDEFGH/page[1].htm", std::string(100, 'x'));
    const std::vector<UrlRecord> records = readOnDisk();
    EXPECT_TRUE(records.at(0).CacheFileExists);
    EXPECT_FALSE(records.at(1).CacheFileExists);
    EXPECT_EQ(records.at(1).CacheFileRelativePath, "");
    EXPECT_EQ(factOf(records.at(1), "body"), "none: a listed record has the cached file");
}

TEST_F(IERemnantFiles, ofAnotherSizeOrGoneAreNotOffered) {
    index.addUnreferenced(entry("http://loose/"));
    IndexRecord gone = entry("http://gone/");
    gone.fileName = "gone[1].htm";
    index.addUnreferenced(gone);
    disk.write("Content.IE5/ABCDEFGH/page[1].htm", "newer");
    const std::vector<UrlRecord> records = readOnDisk();
    EXPECT_FALSE(records.at(0).CacheFileExists);
    EXPECT_EQ(factOf(records.at(0), "body"),
              "none: the file of this name has 5 bytes, the record 100");
    EXPECT_EQ(factOf(records.at(1), "body"), "none: the cached file is gone");
}

} // namespace
} // namespace nv
