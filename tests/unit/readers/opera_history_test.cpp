#include "base/Files.h"
#include "base/Md5.h"
#include "readers/ContentProbe.h"
#include "readers/Limits.h"
#include "readers/opera/History.h"
#include "readers/sqlite/HistoryRow.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/builders/Opera.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

#include <random>

namespace nv {
namespace {

using test::OperaHistory;
using test::OperaTyped;
using Strings = std::vector<std::string>;

constexpr const char *kUndated = "visit without a date that can be read";
constexpr const char *kStray = "line that belongs to no whole record";

class OperaHistoryReader : public testing::Test {
  protected:
    OperaHistoryReader() {
        file.fullPath = folder.path() / "global_history.dat";
        file.sourceFileID = SourceFileId{7};
        file.version = "9.0";
    }
    void read(const std::string &bytes, TaskMonitor &watcher) {
        writeWhole(file.fullPath, bytes);
        const Evidence evidence("");
        ContentProbe content;
        ReadContext ctx{file, evidence, content, clock, {}, sink, log, watcher, deleted};
        sink.records.clear();
        log.entries.clear();
        result = parseOperaHistoryFile(ctx);
    }
    void read(const std::string &bytes) { read(bytes, task); }
    void readTyped(const std::string &bytes) {
        file.fullPath = folder.path() / "typed_history.xml";
        read(bytes);
    }
    const UrlRecord &only(const OperaHistory &history) {
        read(history.bytes());
        EXPECT_EQ(sink.records.size(), 1U);
        return sink.records.at(0);
    }
    Strings urls() const {
        Strings all;
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
    bool deleted = false;
};

TEST_F(OperaHistoryReader, fillsEveryFieldOfARecord) {
    OperaHistory history;
    history.add("Caf\xC3\xA9", "http://www.example.com/a%20b?q=c", "1205364946", "-1");
    file.fullPath = folder.write("profile/global.dat", history.bytes());
    clock.offset = std::chrono::hours(1);
    const Evidence evidence(folder.path());
    ContentProbe content;
    ReadContext ctx{file, evidence, content, clock, {}, sink, log, task};
    result = parseOperaHistoryFile(ctx);
    ASSERT_EQ(sink.records.size(), 1U);
    const UrlRecord &record = sink.records[0];
    EXPECT_EQ(record.Action, "Visited");
    EXPECT_EQ(record.SourceFile_ID, SourceFileId{7});
    EXPECT_EQ(record.URL, "http://www.example.com/a%20b?q=c");
    EXPECT_EQ(record.URLRawValue, record.URL);
    EXPECT_EQ(record.RootPath, folder.path().string() + "/");
    EXPECT_EQ(record.cacheType, "Opera History");
    EXPECT_EQ(record.CacheFileCreatedGMTDOS, Evidence({}).factsOf(file.fullPath).created);
    EXPECT_FALSE(record.CacheFileExists);
    EXPECT_EQ(record.HashedURL, hashOfUrl(record.URL));
    EXPECT_FALSE(record.Hidden);
    EXPECT_EQ(record.HistoryFilePath, file.fullPath.string());
    EXPECT_EQ(record.HistoryVersion, "9.0");
    EXPECT_EQ(record.host, "www.example.com");
    EXPECT_TRUE(record.IsHistory);
    EXPECT_FALSE(record.IsWebPage);
    EXPECT_EQ(isoUtc(record.ActionDateUTC), "2008-03-12T23:35:46Z");
    EXPECT_EQ(isoUtc(record.ActionDateLocal), "2008-03-13T00:35:46Z");
    EXPECT_EQ(record.LastVisited, record.ActionDateUTC);
    EXPECT_EQ(record.RecordSize, 32U);
    EXPECT_EQ(record.Referrer, "");
    EXPECT_EQ(record.Status, "URL");
    EXPECT_EQ(record.WebpageTitle, "Caf\u00e9");
    EXPECT_EQ(record.URLParameters, "q=c");
    EXPECT_EQ(record.User, "");
    EXPECT_EQ(record.Visits, -1);
    EXPECT_EQ(record.URLProtocol, "http");
    EXPECT_FALSE(record.Typed);
    EXPECT_EQ(record.MapFileOffset, 0);
    EXPECT_EQ(result.state, ReadState::complete);
    ASSERT_EQ(task.headings.size(), 1U);
    EXPECT_EQ(task.headings[0].title, "PARSING OPERA HISTORY FILE");
    EXPECT_EQ(task.headings[0].icon, "opera-32.gif");
}

TEST_F(OperaHistoryReader, readsLinesOfBothKinds) {
    for (const char *end : {"\n", "\r\n"}) {
        OperaHistory history(end);
        test::addExampleVisits(history);
        read(history.bytes());
        EXPECT_EQ(urls(), (Strings{"http://www.example.com/", "http://www.example.com/a?b=c",
                                   "http://www.example.org/"}));
        EXPECT_EQ(sink.records[1].WebpageTitle, "http://www.example.com/a?b=c");
        EXPECT_TRUE(result.noted.empty());
        EXPECT_TRUE(result.passedOver.empty());
    }
}

TEST_F(OperaHistoryReader, readsTitlesThatAreNoUtf8AsWindows1252AndEmptyOnes) {
    EXPECT_EQ(only(OperaHistory().add("caf\xE9", "http://x/", "1205364946")).WebpageTitle,
              "caf\u00e9");
    EXPECT_EQ(only(OperaHistory().add("", "http://x/", "1205364946")).WebpageTitle, "");
}

TEST_F(OperaHistoryReader, marksRecordsOfDeletedSpace) {
    deleted = true;
    EXPECT_EQ(only(OperaHistory().add("T", "http://x/", "1205364946")).Status, "Deleted");
}

TEST_F(OperaHistoryReader, readsTheFirstAndTheLastDate) {
    const auto dateOf = [this](const char *text) {
        return isoUtc(only(OperaHistory().add("T", "http://x/", text)).ActionDateUTC);
    };
    EXPECT_EQ(dateOf("1"), "1970-01-01T00:00:01Z");
    EXPECT_EQ(dateOf("2147483647"), "2038-01-19T03:14:07Z");
    EXPECT_EQ(dateOf("-2147483648"), "1901-12-13T20:45:52Z");
    EXPECT_EQ(dateOf(" 1205364946 "), "2008-03-12T23:35:46Z");
    EXPECT_TRUE(result.noted.empty());
    for (const char *text : {"0", "-1", "2147483648", "99999999999999999999", "12x", "", "noon"}) {
        EXPECT_EQ(dateOf(text), "") << text;
        EXPECT_EQ(result.noted.at(kUndated), 1U);
    }
}

TEST_F(OperaHistoryReader, dropsALastRecordOfFewerThanFourLines) {
    const std::string sound = OperaHistory().add("T", "http://x/", "1205364946").bytes();
    for (const char *rest :
         {"T2", "T2\n", "T2\nhttp://y/\n", "T2\nhttp://y/\n12\n", "T2\nhttp://y/\n12\n-1"}) {
        read(sound + rest);
        EXPECT_EQ(urls(), Strings{"http://x/"}) << rest;
        EXPECT_EQ(result.state, ReadState::cutShort);
        EXPECT_EQ(result.reason, file.fullPath.string() + ": the file ends within the record at " +
                                     std::to_string(sound.size()));
        EXPECT_EQ(result.notReached, 1U);
        ASSERT_EQ(log.entries.size(), 1U);
        EXPECT_EQ(log.entries[0].severity, Severity::Serious);
        EXPECT_EQ(log.entries[0].procedure, "ParserClass.ParseOperaHistoryFile()");
        EXPECT_EQ(log.entries[0].recommendation,
                  "Please contact technical support if this error re-occurs");
    }
    read(sound + "\n\n");
    EXPECT_EQ(result.state, ReadState::complete);
}

TEST_F(OperaHistoryReader, getsBackInStepWhenALineIsMissing) {
    for (int missing = 0; missing < 4; ++missing) {
        OperaHistory history;
        history.add("One", "http://one/", "1205364946");
        for (int line = 0; line < 4; ++line)
            if (line != missing)
                history.line(Strings{"Two", "http://two/", "1205364947",
                                     "-1"}[static_cast<std::size_t>(line)]);
        history.add("Three", "http://three/", "1205364948")
            .add("Four", "http://four/", "1205364949");
        read(history.bytes());
        EXPECT_EQ(urls().back(), "http://four/") << missing;
        EXPECT_EQ(sink.records.back().WebpageTitle, "Four");
        for (const UrlRecord &record : sink.records) {
            EXPECT_TRUE(record.URL.starts_with("http://")) << record.URL;
            EXPECT_EQ(record.ActionDateUTC.has(), missing != 2 || record.URL != "http://two/");
        }
        EXPECT_EQ(sink.records.size(), missing < 2 ? 3U : 4U) << missing;
    }
}

TEST_F(OperaHistoryReader, countsAndLogsTheLinesOfNoRecord) {
    read(OperaHistory().line("a title in two").add("lines", "http://x/", "1205364946").bytes());
    EXPECT_EQ(urls(), Strings{"http://x/"});
    EXPECT_EQ(result.passedOver.at(kStray), 1U);
    ASSERT_EQ(log.entries.size(), 1U);
    EXPECT_EQ(log.entries[0].message,
              file.fullPath.string() + ": 1 lines at 0 belong to no whole record");
}

TEST_F(OperaHistoryReader, refusesAFileOfTaggedFields) {
    const std::string tagged = test::OperaCache().add({.url = "http://x/a\nb\nc\nd\n"}).bytes();
    read(tagged);
    EXPECT_TRUE(sink.records.empty());
    EXPECT_EQ(result.state, ReadState::failed);
    EXPECT_EQ(log.entries.size(), 1U);
    file.fullPath = folder.path() / "Download.dat"; // which the browser writes so
    read(tagged);
    EXPECT_TRUE(sink.records.empty());
    EXPECT_EQ(result.state, ReadState::notReadYet);
    EXPECT_EQ(result.reason, "holds tagged fields and not lines, which is a form that is not read");
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(OperaHistoryReader, tellsOfGarbageThatTakesRecords) {
    OperaHistory history;
    for (int i = 0; i < 40; ++i)
        history.add("A title of page " + std::to_string(i),
                    "http://www.example.com/page" + std::to_string(100 + i),
                    std::to_string(1300000000 + i));
    const std::string bytes = history.bytes();
    std::mt19937 random(20110615); // NOLINT: the same garbage each time
    std::size_t lost = 0;
    for (const std::size_t length : {30U, 70U, 300U, 1500U})
        for (std::size_t at = 1; at + length <= bytes.size(); at += 7)
            for (const bool zeros : {true, false}) {
                std::string damaged = bytes;
                for (std::size_t i = at; i < at + length; ++i)
                    damaged[i] = zeros ? '\0' : static_cast<char>(random());
                read(damaged);
                if (sink.records.size() >= 40U)
                    continue;
                ++lost;
                EXPECT_TRUE(result.state != ReadState::complete || !result.passedOver.empty() ||
                            !result.noted.empty())
                    << length << " bytes at " << at << ", zeros " << zeros;
                EXPECT_FALSE(result.state == ReadState::complete && log.entries.empty());
            }
    EXPECT_GT(lost, 500U);
}

TEST_F(OperaHistoryReader, notesTypedAddressesWithBytesThatAreNoText) {
    readTyped(test::OperaTyped()
                  .add("www.exa\x01\x02mple.com", "2011-03-05T09:30:00Z")
                  .add("www.example.com", "2011-03-05T09:30:00Z")
                  .bytes());
    EXPECT_EQ(sink.records.size(), 2U);
    EXPECT_EQ(result.noted.at("record with bytes that are no text, in which others may be lost"),
              1U);
}

TEST_F(OperaHistoryReader, takesAnEmptyFileForOneWithoutRecords) {
    read("");
    EXPECT_TRUE(sink.records.empty());
    EXPECT_EQ(result.state, ReadState::complete);
}

TEST_F(OperaHistoryReader, saysThatAFileCouldNotBeRead) {
    const Evidence evidence("");
    ContentProbe content;
    ReadContext ctx{file, evidence, content, clock, {}, sink, log, task};
    file.fullPath = "/nowhere/global.dat";
    result = parseOperaHistoryFile(ctx);
    EXPECT_EQ(result.state, ReadState::failed);
    EXPECT_EQ(result.reason, "could not be read: /nowhere/global.dat");
    ASSERT_EQ(log.entries.size(), 1U);
}

TEST_F(OperaHistoryReader, cancelsAfterARecord) {
    OperaHistory history;
    test::addExampleVisits(history);
    test::CancelAfter watcher(1);
    read(history.bytes(), watcher);
    EXPECT_EQ(sink.records.size(), 1U);
    EXPECT_EQ(result.state, ReadState::cancelled);
}

TEST_F(OperaHistoryReader, survivesACutAtEveryByteAndEveryChange) {
    OperaHistory history;
    test::addExampleVisits(history);
    const std::string bytes = history.bytes();
    read(bytes);
    const std::vector<UrlRecord> whole = sink.records;
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        read(bytes.substr(0, size));
        for (std::size_t i = 0; i < sink.records.size(); ++i) {
            EXPECT_EQ(sink.records[i].URL, whole.at(i).URL);
            EXPECT_EQ(sink.records[i].ActionDateUTC, whole.at(i).ActionDateUTC);
        }
        for (const char value : {'\0', '\n', '\x80', '\xFF'}) {
            std::string damaged = bytes;
            damaged[size] = value;
            read(damaged);
            EXPECT_LE(sink.records.size(), 3U) << size;
            EXPECT_TRUE(result.state == ReadState::failed || sink.records.size() >= 2U) << size;
        }
    }
}

TEST_F(OperaHistoryReader, readsLongLinesInOnePass) {
    read(std::string(20'000'000, '\n'));
    EXPECT_EQ(result.passedOver.at("four empty lines"), 5'000'000U);
    read(std::string(20'000'000, 'x'));
    EXPECT_TRUE(sink.records.empty());
    EXPECT_EQ(result.state, ReadState::cutShort);
}

TEST_F(OperaHistoryReader, readsTypedAddresses) {
    const std::string bytes = OperaTyped()
                                  .add("www.example.com", "2013-11-11T23:45:27Z", "selected")
                                  .add("caf\xC3\xA9.example/?a=b&amp;c=d", "2013-11-11T22:58:24Z")
                                  .bytes();
    readTyped(bytes);
    ASSERT_EQ(urls(), (Strings{"www.example.com", "caf\u00e9.example/?a=b&c=d"}));
    const UrlRecord &record = sink.records[0];
    EXPECT_TRUE(record.Typed);
    EXPECT_EQ(isoUtc(record.ActionDateUTC), "2013-11-11T23:45:27Z");
    EXPECT_EQ(record.cacheType, "Opera History");
    EXPECT_EQ(record.Action, "Visited");
    EXPECT_EQ(record.Status, "URL");
    EXPECT_EQ(record.Visits, -1);
    EXPECT_TRUE(record.IsHistory);
    EXPECT_EQ(record.MapFileOffset, static_cast<std::int64_t>(bytes.find("typed_history_item")));
    EXPECT_EQ(sink.records[1].URLParameters, "a=b&c=d");
    EXPECT_EQ(result.state, ReadState::complete);
    EXPECT_TRUE(result.noted.empty());
}

TEST_F(OperaHistoryReader, notesTypedAddressesWithoutADateAndPassesOverEmptyOnes) {
    readTyped(OperaTyped()
                  .add("one", "yesterday")
                  .add("two", "2013-02-30T23:45:27Z")
                  .add("three", "2013-11-11T23:45:27+01:00")
                  .add("four", "2013-11-11 23:45:27Z")
                  .add("", "2013-11-11T23:45:27Z")
                  .raw("<typed_history_item/>")
                  .bytes());
    EXPECT_EQ(urls(), (Strings{"one", "two", "three", "four"}));
    for (const UrlRecord &record : sink.records)
        EXPECT_FALSE(record.ActionDateUTC.has()) << record.URL;
    EXPECT_EQ(result.noted.at("typed address without a date that can be read"), 4U);
    EXPECT_EQ(result.passedOver.at("typed address without a text"), 2U);
}

TEST_F(OperaHistoryReader, readsTypedAddressesUpToTheDamage) {
    const std::string sound =
        OperaTyped().add("one", "2013-11-11T23:45:27Z").add("two", "2013-11-11T23:45:28Z").bytes();
    for (std::size_t size = 0; size < sound.size(); ++size) {
        readTyped(sound.substr(0, size));
        for (const std::string &url : urls()) // never half of an address
            EXPECT_TRUE(url == "one" || url == "two") << size;
    }
    readTyped(sound.substr(0, sound.find("two")));
    EXPECT_EQ(urls(), Strings{"one"});
    EXPECT_EQ(result.state, ReadState::cutShort);
    EXPECT_NE(result.reason.find("the XML is damaged at "), std::string::npos);
    EXPECT_EQ(result.notReached, 1U);
    std::string damaged = sound;
    damaged[sound.find("/>")] = '<';
    readTyped(damaged);
    EXPECT_TRUE(sink.records.empty());
    EXPECT_EQ(result.notReached, 2U);
}

TEST_F(OperaHistoryReader, opensNoEntityOfADocument) {
    readTyped("<?xml version=\"1.0\"?><!DOCTYPE t [<!ENTITY e SYSTEM \"file:///etc/hostname\">"
              "<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">]><typed_history>"
              "<typed_history_item content=\"x&e;&b;\" last_typed=\"\"/></typed_history>");
    EXPECT_EQ(urls(), Strings{"x&e;&b;"});
}

TEST_F(OperaHistoryReader, readsXmlOfAnyDepthAndSize) {
    std::string deep;
    for (int i = 0; i < 1'000'000; ++i)
        deep += "<a>";
    readTyped(deep + "<typed_history_item content=\"deep\" last_typed=\"\"/>");
    EXPECT_EQ(urls(), Strings{"deep"});
    EXPECT_EQ(result.state, ReadState::cutShort);
    std::string large = "<typed_history>";
    while (large.size() <= limits::kOperaTypedBytes)
        large += "<!-- " + std::string(1'000'000, 'x') + " -->";
    readTyped(large + "</typed_history>");
    EXPECT_EQ(result.state, ReadState::cutShort);
    EXPECT_NE(result.reason.find("only the first 16777216 are read"), std::string::npos);
}

TEST_F(OperaHistoryReader, readsLinesOfAFileThatIsXmlByNameOnly) {
    OperaHistory history;
    test::addExampleVisits(history);
    readTyped(history.bytes());
    EXPECT_EQ(sink.records.size(), 3U);
}

} // namespace
} // namespace nv
