#include "base/Files.h"
#include "base/Md5.h"
#include "readers/Limits.h"
#include "readers/safari/Cookies.h"
#include "readers/safari/History.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/Safari.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

#include <map>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::SafariHistory;
using Counts = std::map<std::string, std::uint64_t>;

constexpr const char *kUrl = "http://www.example.com/";

struct SafariHistoryTest : testing::Test {
    fs::path file() const { return folder.path() / "History.plist"; }
    const std::vector<UrlRecord> &read(const std::string &bytes) {
        writeWhole(file(), bytes);
        reading.read(parseSafariHistoryFile, file());
        EXPECT_TRUE(fs::is_empty(reading.scratch.path()));
        return reading.records();
    }
    UrlRecord recordOf(const test::SafariVisit &visit) {
        const UrlRecord record = read(SafariHistory().add(visit).text()).at(0);
        EXPECT_EQ(reading.result.state, ReadState::complete);
        return record;
    }
    /// Reads what yields nothing, and gives back why.
    std::string reasonFor(const std::string &bytes, ReadState state = ReadState::failed) {
        reading.log.entries.clear();
        EXPECT_TRUE(read(bytes).empty());
        EXPECT_EQ(reading.result.state, state);
        EXPECT_EQ(reading.log.entries.size(), 1U);
        const Failure &failure = reading.log.entries.at(0);
        EXPECT_EQ(failure.procedure, "ParserClass.ParseSafariHistoryFile()");
        EXPECT_EQ(failure.severity, Severity::Serious);
        EXPECT_EQ(failure.recommendation, kContactSupport);
        EXPECT_EQ(failure.message, reading.result.reason);
        return reading.result.reason.substr((file().string() + ": ").size());
    }
    test::TempFolder folder;
    test::SqliteHistoryReading reading;
};

TEST_F(SafariHistoryTest, aPageFillsEveryField) {
    SafariHistory history;
    addExampleVisits(history);
    ASSERT_EQ(read(history.text()).size(), 3U);
    const UrlRecord &r = reading.records()[0];
    EXPECT_EQ(r.URL, "http://www.example.com/shop/list.html?item=7&colour=red");
    EXPECT_EQ(r.URLRawValue, r.URL);
    EXPECT_EQ(r.URLFileName, "list.html?item=7&colour=red");
    EXPECT_EQ(r.URLParameters, "item=7&colour=red");
    EXPECT_EQ(r.URLProtocol, "http");
    EXPECT_EQ(r.host, "www.example.com");
    EXPECT_EQ(r.HashedURL, hashOfUrl(r.URL));
    EXPECT_EQ(r.RecordSize, 55U);
    EXPECT_EQ(r.Action, "Visited");
    EXPECT_EQ(r.Status, "URL");
    EXPECT_EQ(r.cacheType, "Safari History");
    EXPECT_EQ(r.SourceFile_ID, SourceFileId{7});
    EXPECT_EQ(r.RootPath, folder.path().string() + "/");
    EXPECT_EQ(r.HistoryFilePath, file().string());
    EXPECT_EQ(r.HistoryVersion, "1.0");
    EXPECT_TRUE(r.CacheFileCreatedGMTDOS.has());
    EXPECT_EQ(isoUtc(r.ActionDateUTC), "2011-03-10T00:00:00Z");
    EXPECT_EQ(r.WebpageTitle, "Shop \u2013 example");
    EXPECT_EQ(r.Visits, 3);
    EXPECT_TRUE(r.IsHistory);
    EXPECT_FALSE(r.IsWebPage || r.Hidden || r.CacheFileExists || r.IsCookie);
    EXPECT_EQ(r.User + r.Referrer, "");
    EXPECT_EQ(reading.records()[2].WebpageTitle, "Tea & more");
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.log.entries.empty());
    EXPECT_EQ(reading.task.headings.at(0).title, "PARSING SAFARI HISTORY FILE");
    EXPECT_EQ(reading.task.headings.at(0).icon, "safari-32.png");
}

TEST_F(SafariHistoryTest, aUrlIsTakenAsItStands) {
    const UrlRecord r = recordOf({.url = "x-man-page:caf%C3%A9 http://b/"});
    EXPECT_EQ(r.URL, "x-man-page:caf%C3%A9 http://b/");
    EXPECT_EQ(r.URLRawValue, r.URL);
}

TEST_F(SafariHistoryTest, secondZeroIsTheFirstOfJanuary2001) {
    EXPECT_EQ(isoUtc(recordOf({.url = kUrl, .lastVisited = "0"}).ActionDateUTC),
              "2001-01-01T00:00:00Z");
}

TEST_F(SafariHistoryTest, datesAreReadOverTheWholeCalendar) {
    const std::map<std::string, std::string> dates = {{"-0.5", "2000-12-31T23:59:59Z"},
                                                      {"321408000.9", "2011-03-10T00:00:00Z"},
                                                      {"252423993599", "9999-12-31T23:59:59Z"},
                                                      {" 1 ", "2001-01-01T00:00:01Z"},
                                                      {"252423993600", ""},
                                                      {"1e300", ""},
                                                      {"nan", ""},
                                                      {"yesterday", ""},
                                                      {"", ""}};
    for (const auto &[text, date] : dates) {
        reading.sink.records.clear();
        EXPECT_EQ(isoUtc(recordOf({.url = kUrl, .lastVisited = text}).ActionDateUTC), date) << text;
        EXPECT_EQ(reading.result.passedOver.empty(), text.empty() || !date.empty()) << text;
    }
}

TEST_F(SafariHistoryTest, anEntryWithoutADateIsStoredWithoutOne) {
    EXPECT_FALSE(recordOf({.url = kUrl}).ActionDateUTC.has());
    EXPECT_TRUE(reading.result.passedOver.empty());
}

TEST_F(SafariHistoryTest, aCountThatIsNotToldIsNotZero) {
    EXPECT_EQ(recordOf({.url = kUrl, .visitCount = {}}).Visits, -1);
}

TEST_F(SafariHistoryTest, aPageNeverVisitedIsNoBrowsersOwn) {
    const UrlRecord r = recordOf({.url = kUrl, .visitCount = "0"});
    EXPECT_EQ(r.Visits, 0);
    EXPECT_EQ(r.Status, "URL");
}

TEST_F(SafariHistoryTest, aCountThat16BitsCantHoldFailsItsEntryOnly) {
    const std::string text = SafariHistory()
                                 .add({.url = "a", .visitCount = "32767"})
                                 .add({.url = "b", .visitCount = "32768"})
                                 .add({.url = "c", .visitCount = "-32768"})
                                 .add({.url = "d", .visitCount = "many"})
                                 .text();
    ASSERT_EQ(read(text).size(), 2U);
    EXPECT_EQ(reading.records()[0].Visits, 32767);
    EXPECT_EQ(reading.records()[1].Visits, -32768);
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_EQ(reading.result.passedOver,
              (Counts{{"entries with a value that can't be right; the log names them", 2}}));
    ASSERT_EQ(reading.log.entries.size(), 2U);
    const std::size_t place = text.find("<dict>", text.find("32767"));
    EXPECT_EQ(reading.log.entries[0].message,
              file().string() + ": record at " + std::to_string(place + 1) +
                  ": visitCount \"32768\": a number of 16 bits was expected");
}

TEST_F(SafariHistoryTest, onlyTheFirstListHoldsPages) {
    const std::string nested = "<dict><key></key><string>outer</string><key>x</key><array><dict>"
                               "<key></key><string>inner</string><key>lastVisitedDate</key>"
                               "<string>1</string></dict></array></dict>";
    const std::string later = "<array><dict><key>lastVisitedDate</key><string>2</string></dict>"
                              "</array>";
    std::string text = SafariHistory().add({.url = kUrl, .lastVisited = "0"}).addXml(nested).text();
    text.insert(text.rfind("</dict>"), "<key>other</key>" + later);
    ASSERT_EQ(read(text).size(), 2U);
    EXPECT_EQ(reading.records()[1].URL, "outer");
    EXPECT_EQ(reading.result.passedOver, (Counts{{"entries outside of the first list", 2}}));
}

TEST_F(SafariHistoryTest, addressesThatLedOnAreCounted) {
    recordOf({.url = kUrl, .redirects = {"http://a/", "http://b/"}});
    EXPECT_EQ(reading.result.passedOver,
              (Counts{{"addresses that led on to a page are not stored", 2}}));
}

TEST_F(SafariHistoryTest, entriesThatHoldNothingAreCounted) {
    EXPECT_EQ(read(SafariHistory().addXml("<dict/><dict>\n</dict>").text()).size(), 0U);
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_EQ(reading.result.passedOver, (Counts{{"entries that hold nothing", 2}}));
}

TEST_F(SafariHistoryTest, anEmptyListIsAHistoryWithoutPages) {
    EXPECT_TRUE(read(SafariHistory().text()).empty());
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_TRUE(reading.log.entries.empty());
}

TEST_F(SafariHistoryTest, spacesBetweenTheElementsMakeNoDifference) {
    SafariHistory dense(SafariHistory::Spacing::none);
    addExampleVisits(dense);
    ASSERT_EQ(read(dense.text()).size(), 3U);
    EXPECT_EQ(reading.records()[0].Visits, 3);
    EXPECT_EQ(reading.records()[0].WebpageTitle, "Shop \u2013 example");
}

TEST_F(SafariHistoryTest, fromDeletedSpaceTheStatusIsDeleted) {
    reading.deleted = true;
    EXPECT_EQ(recordOf({.url = kUrl}).Status, "Deleted");
}

TEST_F(SafariHistoryTest, theBinaryFormIsNotReadYet) {
    EXPECT_EQ(reasonFor("bplist00\xd3", ReadState::notReadYet),
              "a property list in binary form: a later form, not read yet");
}

TEST_F(SafariHistoryTest, whatIsNoPropertyListSaysWhy) {
    EXPECT_EQ(reasonFor(""), "at offset 0: no document element found; a property list in XML form "
                             "was expected");
    EXPECT_EQ(reasonFor("<plist><dict/></plist>"),
              "a list of entries was expected and is not there");
    EXPECT_NE(reasonFor(std::string(5000, '<')).find("was expected"), std::string::npos);
}

TEST_F(SafariHistoryTest, aHugeFileIsRefusedUnread) {
    writeWhole(file(), "<plist>");
    fs::resize_file(file(), limits::kPropertyListBytes + 1);
    reading.read(parseSafariHistoryFile, file());
    EXPECT_EQ(reading.result.state, ReadState::failed);
    EXPECT_NE(reading.result.reason.find("longer than the"), std::string::npos);
}

TEST_F(SafariHistoryTest, entitiesAreNeitherExpandedNorFetched) {
    const fs::path secret = folder.write("secret", "http://secret/");
    std::string text = SafariHistory().addXml("<dict><key/><string>&f;&b;</string></dict>").text();
    const std::string doctype = "<!DOCTYPE plist [<!ENTITY a \"aaaaaaaa\"><!ENTITY b \"&a;&a;&a;\">"
                                "<!ENTITY f SYSTEM \"file://" +
                                secret.string() + "\">]>";
    text.replace(text.find("<!DOCTYPE"), text.find("<plist") - text.find("<!DOCTYPE"), doctype);
    EXPECT_EQ(read(text).at(0).URL, "&f;&b;");
}

TEST_F(SafariHistoryTest, ofACutFileWholeEntriesAreKeptAndTheRestCounted) {
    SafariHistory history;
    addExampleVisits(history);
    const std::string text = history.text();
    const std::vector<UrlRecord> whole = read(text);
    for (std::size_t length = 0; length < text.size() - 2; ++length) {
        reading.sink.records.clear();
        reading.log.entries.clear();
        read(text.substr(0, length));
        const bool isFailed = reading.result.state == ReadState::failed;
        EXPECT_TRUE(isFailed || reading.result.state == ReadState::cutShort) << length;
        EXPECT_EQ(isFailed, reading.records().empty()) << length;
        EXPECT_EQ(reading.log.entries.size(), 1U) << length;
        for (std::size_t i = 0; i < reading.records().size(); ++i) {
            EXPECT_EQ(reading.records()[i].URL, whole[i].URL) << length;
            EXPECT_EQ(reading.records()[i].ActionDateUTC, whole[i].ActionDateUTC) << length;
            EXPECT_EQ(reading.records()[i].WebpageTitle, whole[i].WebpageTitle) << length;
            EXPECT_EQ(reading.records()[i].Visits, whole[i].Visits) << length;
        }
    }
}

TEST_F(SafariHistoryTest, damageAmidTheEntriesTellsHowManyLieAfterIt) {
    SafariHistory history;
    for (const char *url : {"a", "b", "c", "d"})
        history.add({.url = url});
    std::string text = history.text();
    text[text.find("<string>c") + 12] = '#'; // in the tag that ends the URL
    ASSERT_EQ(read(text).size(), 2U);
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_EQ(reading.result.notReached, 2U);
    EXPECT_TRUE(reading.result.reason.starts_with(file().string() + ": at offset "));
}

TEST_F(SafariHistoryTest, cancellingKeepsTheRowsSoFar) {
    SafariHistory history;
    for (int i = 0; i < 20; ++i)
        history.add({.url = kUrl + std::to_string(i)});
    writeWhole(file(), history.text());
    test::CancelAfter task(5);
    reading.read(parseSafariHistoryFile, file(), task);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_EQ(reading.records().size(), 5U);
}

TEST_F(SafariHistoryTest, theListOfEntriesIsAList) {
    HistoryEntries entries;
    for (const char *url : {"a", "b"})
        entries.add(HistoryEntry()).urlValue = url;
    entries.remove(1);
    EXPECT_EQ(entries.count(), 1U);
    EXPECT_EQ(entries.item(1).urlValue, "b");
    EXPECT_EQ(entries.item(1).visitCount, -1);
    entries.clear();
    EXPECT_EQ(entries.begin(), entries.end());
}

TEST(SafariCookies, areNotReadAndTheResultSaysSo) {
    const test::TempFolder folder;
    test::SqliteHistoryReading reading;
    reading.read(parseSafariCookiesFile, folder.write("Cookies.plist", "<plist/>"));
    EXPECT_TRUE(reading.records().empty());
    EXPECT_EQ(reading.result.state, ReadState::notReadYet);
    EXPECT_EQ(reading.result.reason, "cookies of Safari are found and listed, but not read");
    EXPECT_TRUE(reading.log.entries.empty());
}

} // namespace
} // namespace nv
