#include "base/Files.h"
#include "base/Md5.h"
#include "readers/ContentProbe.h"
#include "readers/firefox/mork/MorkFile.h"
#include "readers/firefox/mork/MorkHistory.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/builders/Mork.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using test::MorkHistory;
using test::morkTime;

constexpr std::int64_t kStamp = 1205364946; // 2008-03-12 23:35:46
constexpr const char *kNoUrl = "row without a URL, stored as it is";

class MorkReader : public testing::Test {
  protected:
    void read(const std::string &bytes, TaskMonitor &watcher) {
        const Evidence evidence("");
        ContentProbe content;
        file.fullPath = folder.write("history.dat", bytes);
        file.sourceFileID = SourceFileId{7};
        ReadContext ctx{file, evidence, content, clock, {}, sink, log, watcher};
        sink.records.clear();
        result = parseMorkFile(ctx);
    }
    void read(const std::string &bytes) { read(bytes, task); }
    /// The record of the only page; the table's first row, with the byte order, has none.
    const UrlRecord &onlyPage(const MorkHistory &history) {
        read(history.bytes());
        EXPECT_EQ(sink.records.size(), 2U);
        return sink.records.at(1);
    }

    test::TempFolder folder;
    HistoryFile file;
    test::FixedClock clock;
    test::MemorySink sink;
    test::MemoryLog log;
    test::MemoryTask task;
    ReadResult result;
};

TEST_F(MorkReader, fillsEveryFieldOfARecord) {
    MorkHistory history;
    history.add({.url = "http://www.example.com/a%20b/page.htm?q=caf%C3%A9",
                 .lastVisit = morkTime(kStamp),
                 .firstVisit = morkTime(kStamp - 3600),
                 .host = "example.com",
                 .title = "Title",
                 .referrer = "http://www.example.com/",
                 .visitCount = "12",
                 .typed = true,
                 .hidden = true});
    clock.offset = std::chrono::hours(2);
    const UrlRecord &record = onlyPage(history);
    EXPECT_EQ(record.SourceFile_ID, SourceFileId{7});
    EXPECT_EQ(record.URL, "http://www.example.com/a%20b/page.htm?q=caf%C3%A9");
    EXPECT_EQ(record.URLRawValue, record.URL);
    EXPECT_EQ(record.HashedURL, hashOfUrl(record.URL));
    EXPECT_FALSE(record.CacheFileExists);
    EXPECT_EQ(record.CacheFileName, "page.htm?q=caf%C3%A9");
    EXPECT_EQ(record.HistoryFilePath, file.fullPath.string());
    EXPECT_EQ(record.RootPath, "/");
    EXPECT_EQ(record.HistoryVersion, "1.4");
    EXPECT_EQ(record.URLProtocol, "http");
    EXPECT_EQ(record.URLParameters, "q=caf%C3%A9");
    EXPECT_EQ(record.cacheType, "Firefox2 History");
    EXPECT_EQ(record.Action, "Visited");
    EXPECT_EQ(record.Status, "URL");
    EXPECT_TRUE(record.IsHistory);
    EXPECT_TRUE(record.Typed);
    EXPECT_EQ(record.User, "");
    EXPECT_EQ(isoUtc(record.ActionDateUTC), "2008-03-12T23:35:46Z");
    EXPECT_EQ(record.LastVisited, record.ActionDateUTC);
    EXPECT_EQ(isoUtc(record.ActionDateLocal), "2008-03-13T01:35:46Z");
    EXPECT_EQ(isoUtc(record.OtherDate), "2008-03-12T22:35:46Z");
    EXPECT_EQ(record.OtherDateMeaning, "First Visit Date");
    EXPECT_EQ(record.host, "example.com");
    EXPECT_EQ(record.Visits, 12);
    // These stay on the entry.
    EXPECT_EQ(record.Referrer, "");
    EXPECT_EQ(record.WebpageTitle, "");
    EXPECT_FALSE(record.Hidden);
}

TEST_F(MorkReader, tellsTheTaskWhatItDoes) {
    MorkHistory history;
    test::addExamplePages(history);
    read(history.bytes());
    ASSERT_EQ(task.headings.size(), 1U);
    EXPECT_EQ(task.headings[0].title, "PARSING MOZILLA FIREFOX HISTORY FILE");
    EXPECT_EQ(task.headings[0].subject, "A total of 4 URLs were found.");
    EXPECT_EQ(task.headings[0].detail,
              "Due to the complex file format of Firefox history files, this could take a few "
              "minutes for larger files so please be extra patient...");
    EXPECT_EQ(task.headings[0].icon, "firefox-32.gif");
    ASSERT_EQ(task.steps.size(), 4U);
    EXPECT_EQ(task.steps[1].topMessage, "Saving record 2 of 4 records...");
    EXPECT_EQ(result.state, ReadState::complete);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(MorkReader, storesTheRowWithoutAUrlAndCountsIt) {
    MorkHistory history;
    read(history.bytes());
    ASSERT_EQ(sink.records.size(), 1U);
    EXPECT_EQ(sink.records[0].URL, "");
    EXPECT_EQ(sink.records[0].HistoryVersion, ""); // told of records with a URL only
    EXPECT_EQ(sink.records[0].Visits, 1);
    EXPECT_EQ(result.noted.at(kNoUrl), 1U);
    EXPECT_TRUE(result.passedOver.empty());
    EXPECT_EQ(result.state, ReadState::complete);
}

TEST_F(MorkReader, countsAPageWithoutACountAsVisitedOnce) {
    for (const char *count : {"", "0", "many"}) {
        const UrlRecord &record =
            onlyPage(MorkHistory().add({.url = "http://x/", .visitCount = count}));
        EXPECT_EQ(record.Visits, 1) << count;
    }
    EXPECT_EQ(onlyPage(MorkHistory().add({.visitCount = "99999999999999999999"})).Visits, 1);
}

TEST_F(MorkReader, storesARowThatIsMarkedForDeletion) {
    const UrlRecord &record = onlyPage(MorkHistory().add({.url = "http://gone/", .rowId = "-2"}));
    EXPECT_EQ(record.URL, "http://gone/");
    EXPECT_EQ(record.Status, "URL");
    EXPECT_EQ(result.noted.at("row marked for deletion"), 1U);
}

TEST_F(MorkReader, takesNoDateFromFewerThanTenDigitsOrFromText) {
    for (const char *text : {"", "120536494", "1205364946x", "-", "not a date at all"}) {
        const UrlRecord &record = onlyPage(
            MorkHistory().add({.url = "http://x/", .lastVisit = text, .firstVisit = text}));
        EXPECT_FALSE(record.ActionDateUTC.has()) << text;
        EXPECT_FALSE(record.LastVisited.has()) << text;
        EXPECT_FALSE(record.ActionDateLocal.has()) << text;
        EXPECT_FALSE(record.OtherDate.has()) << text;
        EXPECT_EQ(record.OtherDateMeaning, "") << text;
    }
}

TEST_F(MorkReader, readsTheFirstAndTheLastDate) {
    const auto dateOf = [this](const char *digits) {
        return isoUtc(
            onlyPage(MorkHistory().add({.url = "http://x/", .lastVisit = digits})).ActionDateUTC);
    };
    EXPECT_EQ(dateOf("0000000001"), "1970-01-01T00:00:01Z");
    EXPECT_EQ(dateOf("9999999999999999"), "2286-11-20T17:46:39Z");
    EXPECT_EQ(dateOf("1205364946"), "2008-03-12T23:35:46Z");
    EXPECT_EQ(dateOf("-123456789012345"), "1966-02-02T02:26:51Z");
}

TEST_F(MorkReader, dropsNoonAndMidnightAndCountsThem) {
    constexpr std::int64_t kMidnight = 1205280000;
    for (const std::int64_t stamp : {kMidnight, kMidnight + 43200}) {
        const UrlRecord &record = onlyPage(MorkHistory().add(
            {.url = "http://x/", .lastVisit = morkTime(stamp), .firstVisit = morkTime(stamp)}));
        EXPECT_FALSE(record.ActionDateUTC.has());
        EXPECT_FALSE(record.OtherDate.has());
        EXPECT_EQ(record.OtherDateMeaning, "");
        EXPECT_EQ(result.noted.at("last visit at noon or midnight, stored without that date"), 1U);
        EXPECT_EQ(result.noted.at("first visit at noon or midnight, stored without that date"), 1U);
    }
    EXPECT_TRUE(onlyPage(MorkHistory().add({.lastVisit = morkTime(kMidnight + 43201)}))
                    .ActionDateUTC.has());
}

TEST_F(MorkReader, takesNoParametersAfterAMarkThatOpensOrEndsTheUrl) {
    const auto parametersOf = [this](const char *url) {
        return onlyPage(MorkHistory().add({.url = url})).URLParameters;
    };
    EXPECT_EQ(parametersOf("http://x/?a=b?c"), "a=b?c");
    EXPECT_EQ(parametersOf("http://x/?"), "");
    EXPECT_EQ(parametersOf("?a=b"), "");
}

TEST_F(MorkReader, readsBytesAboveAsciiAsWindows1252) {
    EXPECT_EQ(onlyPage(MorkHistory().add({.url = "http://x/caf\xE9\x80"})).URL,
              "http://x/caf\u00e9\u20ac");
}

TEST_F(MorkReader, cancelsAfterARecord) {
    MorkHistory history;
    test::addExamplePages(history);
    test::CancelAfter watcher(2);
    read(history.bytes(), watcher);
    EXPECT_EQ(sink.records.size(), 2U);
    EXPECT_EQ(result.state, ReadState::cancelled);
}

TEST_F(MorkReader, cancelsWhileItGathersTheRows) {
    MorkHistory history;
    for (int i = 0; i < 600; ++i)
        history.add({.url = "http://x/"});
    test::CancelAfter watcher(1);
    read(history.bytes(), watcher);
    EXPECT_TRUE(sink.records.empty());
    EXPECT_EQ(result.state, ReadState::cancelled);
    EXPECT_TRUE(watcher.headings.empty());
}

TEST_F(MorkReader, isFailedAndLoggedWithoutTheMarks) {
    const std::string good = MorkHistory().bytes();
    for (const std::string &bytes :
         {std::string(), std::string("no history"), good.substr(0, good.find("< <")),
          MorkHistory().firstLine("// nothing").bytes()}) {
        log.entries.clear();
        read(bytes);
        EXPECT_TRUE(sink.records.empty());
        EXPECT_EQ(result.state, ReadState::failed);
        ASSERT_EQ(log.entries.size(), 1U);
        EXPECT_EQ(log.entries[0].procedure, "MainBAS.ParseMorkFile()");
        EXPECT_EQ(log.entries[0].severity, Severity::Warning);
        EXPECT_EQ(log.entries[0].recommendation,
                  "Mork file is likely improperly formatted or partially corrupted");
        EXPECT_EQ(log.entries[0].message, result.reason);
    }
    EXPECT_TRUE(task.headings.empty());
}

TEST_F(MorkReader, saysThatAFileCouldNotBeRead) {
    file.fullPath = "/nowhere/history.dat";
    const Evidence evidence("");
    ContentProbe content;
    ReadContext ctx{file, evidence, content, clock, {}, sink, log, task};
    result = parseMorkFile(ctx);
    EXPECT_EQ(result.state, ReadState::failed);
    EXPECT_EQ(result.reason, "could not be read: /nowhere/history.dat");
    ASSERT_EQ(log.entries.size(), 1U);
}

} // namespace
} // namespace nv
