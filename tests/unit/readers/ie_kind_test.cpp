#include "support/builders/IndexDat.h"
#include "support/builders/IndexReading.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using test::IndexDat;
using test::IndexReading;

std::string indexWith(const std::string &url, const std::string &folder = {}) {
    IndexDat index;
    if (!folder.empty())
        index.folder(folder);
    index.add({.url = url});
    return index.bytes();
}

HistoryFileType kindOf(const std::string &bytes, HistoryFileType type,
                       const std::string &folder = "/evidence") {
    return IndexReading(type).readBytes(bytes, folder + "/index.dat").file.historyFileType;
}

HistoryFileType kindInFolder(const std::string &folder) {
    return kindOf(indexWith("Visited: user@http://host/"), HistoryFileType::ieHistory,
                  "/evidence/History.IE5/" + folder);
}

HistoryFileType kindByText(const std::string &url, HistoryFileType type = HistoryFileType::none) {
    return kindOf(indexWith(url), type);
}

TEST(IEKind, ofACacheIndexWithoutFoldersIsMainHistory) {
    const std::string bytes = indexWith("http://host/");
    const IndexReading reading = IndexReading(HistoryFileType::ieCache).readBytes(bytes);
    EXPECT_EQ(reading.file.historyFileType, HistoryFileType::ieHistory);
    EXPECT_EQ(reading.records().at(0).cacheType, "IE History");
}

TEST(IEKind, ofACacheIndexWithFoldersStays) {
    EXPECT_EQ(kindOf(indexWith("http://host/", "ABCDEFGH"), HistoryFileType::ieCache),
              HistoryFileType::ieCache);
}

TEST(IEKind, readsTheFolderTestOneByteBeforeTheCount) {
    std::string bytes = indexWith("http://host/");
    bytes[0x47] = 1; // no folders at all, but the word at 0x47 is above zero
    EXPECT_EQ(kindOf(bytes, HistoryFileType::ieCache), HistoryFileType::ieCache);
    test::put32(bytes, 0x47, 0x80000001); // below zero as a signed number
    EXPECT_EQ(kindOf(bytes, HistoryFileType::ieCache), HistoryFileType::ieHistory);
}

TEST(IEKind, followsTheTwoDatesInTheNameOfAHistoryFolder) {
    EXPECT_EQ(kindInFolder("MSHist012011061520110616"), HistoryFileType::ieDaily);
    EXPECT_EQ(kindInFolder("mshist012011061520110622"), HistoryFileType::ieWeekly);
    EXPECT_EQ(kindInFolder("MSHist012011061520110618"), HistoryFileType::ieHistory);
    EXPECT_EQ(kindInFolder("MSHist01xxxxxxxxxxxxxxxx"), HistoryFileType::ieHistory);
    EXPECT_EQ(kindInFolder("MSHist"), HistoryFileType::ieHistory);
}

TEST(IEKind, acrossAMonthIsDailyFromDayTwentyEightAndOtherwiseWeeklyForFolders) {
    EXPECT_EQ(kindInFolder("MSHist012011063020110701"), HistoryFileType::ieDaily);
    EXPECT_EQ(kindInFolder("MSHist012011022820110301"), HistoryFileType::ieDaily);
    EXPECT_EQ(kindInFolder("MSHist012011062720110701"), HistoryFileType::ieWeekly);
    EXPECT_EQ(kindInFolder("MSHist012011062720110704"), HistoryFileType::ieWeekly);
}

TEST(IEKind, ofAFolderNameCountsOnlyTheFolderThatHoldsTheFile) {
    EXPECT_EQ(kindInFolder("MSHist012011061520110616/deeper"), HistoryFileType::ieHistory);
}

TEST(IEKind, isMainHistoryWithAVisitedRecordWhateverTheTypeWas) {
    EXPECT_EQ(kindByText("Visited: user@http://host/", HistoryFileType::none),
              HistoryFileType::ieHistory);
    EXPECT_EQ(kindByText("Visited: user@http://host/", HistoryFileType::ieIndexByCommandLine),
              HistoryFileType::ieHistory);
}

TEST(IEKind, followsTheDatesOfTheFirstRecordOtherwise) {
    EXPECT_EQ(kindByText(":2011061520110616: user@http://host/"), HistoryFileType::ieDaily);
    EXPECT_EQ(kindByText(":2011063020110701: user@http://host/"), HistoryFileType::ieDaily);
    EXPECT_EQ(kindByText(":2011061520110622: user@http://host/"), HistoryFileType::ieWeekly);
    EXPECT_EQ(kindByText(":2011061520110617: user@http://host/"), HistoryFileType::none);
    EXPECT_EQ(kindByText(":20110615201106xx: user@http://host/"), HistoryFileType::none);
    EXPECT_EQ(kindByText("x2011061520110616: user@http://host/"), HistoryFileType::none);
}

TEST(IEKind, byTheFirstRecordKnowsNoWeekAcrossAMonth) {
    EXPECT_EQ(kindByText(":2011062720110701: user@http://host/"), HistoryFileType::none);
    EXPECT_EQ(kindByText(":2011062720110704: user@http://host/"), HistoryFileType::none);
}

TEST(IEKind, needsTheMarkToStandFarEnoughIntoTheFile) {
    std::string bytes = indexWith("http://host/");
    bytes.replace(2, 18, ":2011061520110616:");
    bytes[20] = ' '; // the mark is at 19
    EXPECT_EQ(kindOf(bytes, HistoryFileType::none), HistoryFileType::none);
}

TEST(IEKind, withoutAnyMarkStays) {
    EXPECT_EQ(kindByText("http://host/"), HistoryFileType::none);
    EXPECT_EQ(kindByText("http://host/", HistoryFileType::ieHistory), HistoryFileType::ieHistory);
}

TEST(IEKind, takesUpToThreeCharactersOfVersionForHistoriesAndCachesOnly) {
    const auto versionFor = [](HistoryFileType type, std::string_view version) {
        IndexDat index;
        index.version(version).add({.url = "http://host/"});
        IndexReading reading(type);
        reading.readBytes(index.bytes());
        EXPECT_EQ(reading.records().at(0).HistoryVersion, reading.file.version);
        return reading.file.version;
    };
    EXPECT_EQ(versionFor(HistoryFileType::ieHistory, "5.2"), "5.2");
    EXPECT_EQ(versionFor(HistoryFileType::ieHistory, "10.2"), "10.");
    EXPECT_EQ(versionFor(HistoryFileType::ieHistory, std::string_view("4\0.", 3)), "4");
    EXPECT_EQ(versionFor(HistoryFileType::none, "5.2"), "");
    EXPECT_EQ(versionFor(HistoryFileType::ieIndexByCommandLine, "5.2"), "");
}

std::string folderOf(const std::string &bytes) {
    IndexReading reading(HistoryFileType::ieCache);
    return reading.readBytes(bytes).records().at(0).CacheFolderName;
}

TEST(IEKind, readsFoldersOfEightCharactersEveryTwelveBytesUpToAnEmptyOne) {
    IndexDat index;
    index.folder("AAAAAAAA").folder("BBB").folder("").folder("DDDDDDDD");
    const std::size_t record = index.add({.url = "http://host/", .folder = 0});
    std::string bytes = index.bytes();
    EXPECT_EQ(folderOf(bytes), "AAAAAAAA");
    bytes[record + 0x38] = 1;
    EXPECT_EQ(folderOf(bytes), "BBB");
    bytes[record + 0x38] = 3; // after the empty name
    EXPECT_EQ(folderOf(bytes), "");
}

} // namespace
} // namespace nv
