#include "base/Files.h"
#include "base/Md5.h"
#include "readers/chrome/history/History.h"
#include "readers/sqlite/HistoryRow.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/ChromeHistory.h"
#include "time/ShownDate.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using test::ChromeHistory;
using test::chromeTime;

constexpr std::int64_t kStamp = 1305849600; // 2011-05-20

/// The rows of the classic rules; what comes beyond them has tests of its own.
class ChromeHistoryReader : public testing::Test {
  protected:
    ChromeHistoryReader() { reading.classicOnly = true; }
    ChromeHistory &history() {
        if (!m_history)
            m_history.emplace(file());
        return *m_history;
    }
    std::filesystem::path file() const { return folder.path() / "Default" / "History"; }
    test::SqliteHistoryReading &read() {
        m_history.reset();
        return reading.read(parseChromeHistoryFile, file());
    }
    const UrlRecord &only() {
        read();
        EXPECT_EQ(reading.records().size(), 1U);
        EXPECT_TRUE(reading.log.entries.empty());
        return reading.records().at(0);
    }

    test::TempFolder folder;
    test::SqliteHistoryReading reading;

  private:
    std::optional<ChromeHistory> m_history;
};

TEST_F(ChromeHistoryReader, aRecordThatCantBeTakenIsCountedAndNotOnlyLogged) {
    struct RefusingSink final : RecordSink {
        void save(UrlRecord &record) override {
            if (record.URL == "http://refused/")
                throw std::runtime_error("refused");
            ++saved;
        }
        int saved = 0;
    };
    history().add({.id = 1, .url = "http://one/"});
    history().add({.id = 2, .url = "http://refused/"});
    history().add({.id = 3, .url = "http://three/"});
    read(); // closes the builder
    const Evidence evidence(file().parent_path());
    ContentProbe content;
    HistoryFile artefact;
    artefact.fullPath = file();
    RefusingSink sink;
    ReadContext context{artefact, evidence,    content,      reading.clock, reading.scratch.path(),
                        sink,     reading.log, reading.task, false,         true};
    const ReadResult result = parseChromeHistoryFile(context);
    EXPECT_EQ(sink.saved, 2);
    EXPECT_EQ(result.passedOver.at("damaged record"), 1u);
}

TEST_F(ChromeHistoryReader, fillsEveryFieldOfARecord) {
    history().add({.id = 12,
                   .url = "http://user@www.example.com/a%20b/page.html?q=caf%C3%A9",
                   .title = "Caf\u00e9",
                   .visitCount = 3,
                   .lastVisitTime = chromeTime(kStamp, 750'000),
                   .hidden = true});
    reading.clock.offset = std::chrono::hours(2);
    const UrlRecord &record = only();
    EXPECT_EQ(record.Action, "Visited");
    EXPECT_EQ(record.SourceFile_ID, SourceFileId{7});
    EXPECT_EQ(record.Reference_ID, 12);
    EXPECT_EQ(record.URLRawValue, "http://user@www.example.com/a%20b/page.html?q=caf%C3%A9");
    EXPECT_EQ(record.URL, "http://user@www.example.com/a b/page.html?q=caf\u00e9");
    EXPECT_EQ(record.URLFileName, "page.html?q=caf\u00e9");
    EXPECT_EQ(record.URLParameters, "q=caf\u00e9");
    EXPECT_EQ(record.URLProtocol, "http");
    EXPECT_EQ(record.host, "www.example.com");
    EXPECT_EQ(record.HashedURL, hashOfUrl(record.URL));
    EXPECT_EQ(record.RecordSize, 48U);
    EXPECT_EQ(record.cacheType, "Chrome History");
    EXPECT_EQ(record.RootPath, file().parent_path().string() + "/");
    EXPECT_EQ(record.HistoryFilePath, file().string());
    EXPECT_EQ(record.HistoryVersion, "1.0");
    EXPECT_EQ(record.CacheFileCreatedGMTDOS, Evidence({}).factsOf(file()).created);
    EXPECT_TRUE(record.CacheFileCreatedGMTDOS.has());
    EXPECT_EQ(isoUtc(record.ActionDateUTC), isoUtc(Date::fromUnixSeconds(kStamp)));
    EXPECT_EQ(record.LastVisited, record.ActionDateUTC);
    EXPECT_EQ(record.ActionDateLocal, Date::fromUnixSeconds(kStamp + 7200));
    EXPECT_EQ(record.WebpageTitle, "Caf\u00e9");
    EXPECT_EQ(record.Visits, 3);
    EXPECT_EQ(record.Status, "URL");
    EXPECT_TRUE(record.Hidden);
    EXPECT_TRUE(record.IsHistory);
    EXPECT_FALSE(record.IsWebPage || record.IsPicture || record.CacheFileExists || record.IsCookie);
    EXPECT_EQ(record.Referrer + record.User + record.Category + record.OtherDateMeaning, "");
}

TEST_F(ChromeHistoryReader, showsWhatItReads) {
    test::addExamplePages(history());
    read();
    ASSERT_EQ(reading.task.headings.size(), 1U);
    EXPECT_EQ(reading.task.headings[0].title, "PARSING CHROME HISTORY FILE");
    EXPECT_EQ(reading.task.headings[0].subject, "Google Chrome");
    EXPECT_EQ(reading.task.headings[0].detail, file().string());
    EXPECT_EQ(reading.task.headings[0].icon, "chrome-32.png");
    EXPECT_EQ(reading.task.fractions.size(), 3U);
    EXPECT_DOUBLE_EQ(reading.task.fractions.back(), 1);
}

TEST_F(ChromeHistoryReader, tellsRowsThatNobodyVisited) {
    history().add({.url = "http://a/", .visitCount = 0});
    const UrlRecord &record = only();
    EXPECT_EQ(record.Status, "(autogen)");
    EXPECT_EQ(record.Action, "Visited"); // only Firefox's reader empties it
    EXPECT_FALSE(record.ActionDateUTC.has() || record.LastVisited.has());
    EXPECT_FALSE(record.ActionDateLocal.has());
}

TEST_F(ChromeHistoryReader, marksRecordsFromDeletedSpace) {
    history()
        .add({.id = 1, .url = "http://a/"})
        .add({.id = 2, .url = "http://b/", .visitCount = 0});
    reading.deleted = true;
    read();
    ASSERT_EQ(reading.records().size(), 2U);
    EXPECT_EQ(reading.records()[0].Status, "Deleted");
    EXPECT_EQ(reading.records()[1].Status, "(autogen)");
}

TEST_F(ChromeHistoryReader, takesParametersOnlyAfterAUrl) {
    history()
        .add({.id = 1, .url = "http://a/?"})
        .add({.id = 2, .url = "?q=1"})
        .add({.id = 3, .url = "http://a/?b?c"});
    read();
    ASSERT_EQ(reading.records().size(), 3U);
    EXPECT_EQ(reading.records()[0].URLParameters, "");
    EXPECT_EQ(reading.records()[1].URLParameters, "");
    EXPECT_EQ(reading.records()[2].URLParameters, "b?c");
}

TEST_F(ChromeHistoryReader, countsTheVisitsThatItPassesOver) {
    test::addExamplePages(history());
    history().run("INSERT INTO visits(url,visit_time) VALUES(99,1),(99,2),('x',3)");
    read();
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_EQ(reading.result.passedOver,
              (std::map<std::string, std::uint64_t>{
                  {"visits of a page other than the last are not stored", 1},
                  {"visits of pages that are no longer listed", 3}}));
}

TEST_F(ChromeHistoryReader, readsEveryVersionOfTheTables) {
    for (const auto version : {ChromeHistory::Version::schema20, ChromeHistory::Version::schema29,
                               ChromeHistory::Version::schema66}) {
        ChromeHistory made(file(), version);
        test::addExamplePages(made);
        made.close();
        test::SqliteHistoryReading each;
        each.classicOnly = true;
        each.read(parseChromeHistoryFile, file());
        EXPECT_EQ(each.records().size(), 3U);
        EXPECT_TRUE(each.log.entries.empty());
    }
}

TEST_F(ChromeHistoryReader, leavesEmptyWhatAVersionLacks) {
    history().run("DROP TABLE urls; DROP TABLE visits;"
                  "CREATE TABLE URLS(ID INTEGER PRIMARY KEY, Url TEXT);"
                  "INSERT INTO urls VALUES(5,'http://a/')");
    const UrlRecord &record = only();
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_EQ(record.Reference_ID, 5);
    EXPECT_EQ(record.URL, "http://a/");
    EXPECT_EQ(record.WebpageTitle, "");
    EXPECT_FALSE(record.ActionDateUTC.has());
    EXPECT_EQ(record.Visits, -1); // not counted, which is not the same as never visited
    EXPECT_EQ(record.Status, "URL");
    EXPECT_TRUE(reading.result.passedOver.empty());
}

TEST_F(ChromeHistoryReader, readsValuesOfTheWrongType) {
    history().run(
        "DROP TABLE urls; CREATE TABLE urls(id INTEGER PRIMARY KEY, url, title, visit_count,"
        "last_visit_time, hidden);"
        "INSERT INTO urls VALUES(1,x'687474703a2f2f612f',42,'3','12950323200000000','true');"
        "INSERT INTO urls VALUES(2,NULL,NULL,NULL,NULL,NULL);"
        "INSERT INTO urls VALUES(3,7,x'ff',9223372036854775807,9223372036854775807,0.5);"
        "INSERT INTO urls VALUES(4,'u',1.5,-1,-9223372036854775807,x'');"
        "INSERT INTO urls VALUES(5,'u','','many','yesterday','no');");
    read();
    ASSERT_EQ(reading.records().size(), 5U);
    EXPECT_TRUE(reading.log.entries.empty());
    const auto &rows = reading.records();
    EXPECT_EQ(rows[0].URL, "http://a/");
    EXPECT_EQ(rows[0].WebpageTitle, "42");
    EXPECT_EQ(rows[0].Visits, 3);
    EXPECT_EQ(rows[0].ActionDateUTC, Date::fromUnixSeconds(kStamp));
    EXPECT_TRUE(rows[0].Hidden);
    EXPECT_EQ(rows[1].URL, "");
    EXPECT_FALSE(rows[1].ActionDateUTC.has() || rows[1].Hidden);
    EXPECT_EQ(rows[2].URLRawValue, "7");
    EXPECT_EQ(rows[2].WebpageTitle, "\u00ff");
    EXPECT_EQ(rows[2].Visits, INT64_MAX);
    EXPECT_FALSE(rows[2].ActionDateUTC.has());
    EXPECT_TRUE(rows[2].Hidden);
    EXPECT_EQ(rows[3].Visits, -1);
    EXPECT_FALSE(rows[3].ActionDateUTC.has() || rows[3].Hidden);
    EXPECT_FALSE(rows[4].ActionDateUTC.has() || rows[4].Hidden);
    EXPECT_EQ(rows[4].Status, "URL");
}

TEST_F(ChromeHistoryReader, saysThatATableIsMissing) {
    history().run("DROP TABLE urls");
    read();
    EXPECT_EQ(reading.result.state, ReadState::failed);
    EXPECT_EQ(reading.result.reason, file().string() + ": in its list of tables: table \"urls\" "
                                                       "was expected and is not there");
    ASSERT_EQ(reading.log.entries.size(), 1U);
    EXPECT_EQ(reading.log.entries[0].message, reading.result.reason);
    EXPECT_EQ(reading.log.entries[0].procedure, "ParserClass.ParseChromeHistoryFile()");
    EXPECT_EQ(reading.log.entries[0].severity, Severity::Serious);
    EXPECT_EQ(reading.log.entries[0].recommendation,
              "Please contact technical support if this error re-occurs");
}

TEST_F(ChromeHistoryReader, goesOnAfterARecordThatCanNotBeSaved) {
    struct Choosy final : RecordSink {
        void save(UrlRecord &record) override {
            if (record.Reference_ID == 2)
                throw std::runtime_error("not this one");
            kept.push_back(record.Reference_ID);
        }
        std::vector<std::int64_t> kept;
    } sink;
    test::addExamplePages(history());
    history().close();
    HistoryFile described;
    described.fullPath = file();
    const Evidence evidence("");
    ContentProbe content;
    ReadContext context{described, evidence,    content,      reading.clock, reading.scratch.path(),
                        sink,      reading.log, reading.task, false,         true};
    EXPECT_EQ(parseChromeHistoryFile(context).state, ReadState::complete);
    EXPECT_EQ(sink.kept, (std::vector<std::int64_t>{1, 3}));
    ASSERT_EQ(reading.log.entries.size(), 1U);
    EXPECT_EQ(reading.log.entries[0].message, textOf(file()) + ": record at 2: not this one");
    EXPECT_EQ(reading.log.entries[0].severity, Severity::Warning);
}

TEST_F(ChromeHistoryReader, stopsWhenCancelledAndKeepsWhatIsSaved) {
    test::addExamplePages(history());
    history().close();
    test::CancelAfter cancel(2);
    reading.read(parseChromeHistoryFile, file(), cancel);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_EQ(reading.records().size(), 2U);
    EXPECT_TRUE(reading.log.entries.empty());
    EXPECT_TRUE(std::filesystem::is_empty(reading.scratch.path()));
}

} // namespace
} // namespace nv
