#include "base/Md5.h"
#include "unit/readers/NetAnalysisFixture.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

namespace nv {
namespace {

using test::Jet4;
using test::JetPlace;
using test::JetType;
using test::NetAnalysisCase;
using testing::ElementsAre;
using testing::HasSubstr;
using NetAnalysisWalk = test::NetAnalysisFixture;

NetAnalysisCase caseOf(int events, JetPlace place = JetPlace::here) {
    NetAnalysisCase made;
    for (int i = 1; i <= events; ++i)
        made.add({.internetHistory = fmt::format("http://a/{}", i), .place = place});
    return made;
}

TEST_F(NetAnalysisWalk, showsWhatItReads) {
    read(caseOf(2));
    ASSERT_EQ(task.headings.size(), 1U);
    EXPECT_EQ(task.headings[0].title, "PARSING NET ANALYSIS FILE");
    EXPECT_EQ(task.headings[0].subject, "A total of 2 URLs were found.");
    EXPECT_EQ(task.headings[0].detail, file.string());
    EXPECT_EQ(task.headings[0].icon, "net-32.gif");
    ASSERT_EQ(task.steps.size(), 3U);
    EXPECT_EQ(task.steps[0].topMessage, "Processing 1 of 2");
    EXPECT_EQ(task.steps[1].topMessage, "Processing 2 of 2");
    EXPECT_EQ(task.steps[2].topMessage, "All done.");
    EXPECT_EQ(task.steps[2].topCounter, 2);
    EXPECT_EQ(task.steps[2].topTotal, 2);
}

TEST_F(NetAnalysisWalk, readsRowsOfManyPagesInTheirOrder) {
    read(caseOf(500));
    EXPECT_EQ(result.state, ReadState::complete) << result.reason;
    ASSERT_EQ(sink.records.size(), 500U);
    EXPECT_EQ(sink.records.back().URL, "http://a/500");
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(NetAnalysisWalk, readsTablesWithAListOnAPageOfItsOwn) {
    Jet4 made;
    made.table("History", {{"InternetHistory", JetType::memo}, {"Comment", JetType::text}});
    made.longList();
    for (int i = 1; i <= 300; ++i)
        made.row({fmt::format("http://a/{}", i), std::string(40, 'x')});
    read(made.bytes());
    EXPECT_EQ(sink.records.size(), 300U);
    EXPECT_THAT(result.reason, testing::Not(HasSubstr("list of pages")));
}

TEST_F(NetAnalysisWalk, takesTheCasesVersion) {
    read(caseOf(1));
    EXPECT_EQ(history.version, "1.37");
}

TEST_F(NetAnalysisWalk, readsACaseWithoutEvents) {
    read(caseOf(0));
    EXPECT_EQ(result.state, ReadState::complete) << result.reason;
    EXPECT_TRUE(sink.records.empty());
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(NetAnalysisWalk, countsDeletedRows) {
    NetAnalysisCase made = caseOf(1);
    made.add({.internetHistory = "http://deleted/", .place = JetPlace::deleted});
    made.add({.internetHistory = "http://b/"});
    read(made);
    EXPECT_EQ(result.state, ReadState::complete) << result.reason;
    EXPECT_THAT(urls(), ElementsAre("http://a/1", "http://b/"));
    EXPECT_EQ(result.passedOver,
              (std::map<std::string, std::uint64_t>{{"deleted rows of table History", 1}}));
}

TEST_F(NetAnalysisWalk, followsRowsThatLieElsewhere) {
    NetAnalysisCase made = caseOf(1);
    made.add({.internetHistory = "http://moved/", .place = JetPlace::elsewhere});
    made.add({.internetHistory = "http://b/"});
    read(made);
    EXPECT_EQ(result.state, ReadState::complete) << result.reason;
    EXPECT_THAT(urls(), ElementsAre("http://a/1", "http://moved/", "http://b/"));
    EXPECT_TRUE(result.passedOver.empty());
}

TEST_F(NetAnalysisWalk, findsTablesAndColumnsInEitherCase) {
    Jet4 made;
    made.table("CASE", {{"cachepath", JetType::memo}, {"VERSION", JetType::text}});
    made.row({std::string("D:\\x"), std::string("1")});
    made.table("hISTORY", {{"INTERNETHISTORY", JetType::memo}});
    made.row({std::string("http://a/")});
    read(made.bytes());
    EXPECT_THAT(urls(), ElementsAre("http://a/"));
    EXPECT_EQ(sink.records[0].CacheFolderName, "D:\\x");
}

TEST_F(NetAnalysisWalk, saysWhichColumnsAreMissing) {
    Jet4 made;
    made.table("Case", {{"CachePath", JetType::memo}});
    made.table("History", {{"InternetHistory", JetType::memo}, {"LastVisited", JetType::text}});
    made.row({std::string("http://a/"), std::string("2011-03-14")});
    read(made.bytes());
    EXPECT_EQ(result.state, ReadState::cutShort);
    EXPECT_THAT(result.reason, HasSubstr("table Case has no text column \"Version\""));
    EXPECT_THAT(result.reason, HasSubstr("table History lacks columns, or has them of another "
                                         "type: URLFileName, FileExists"));
    EXPECT_THAT(result.reason, HasSubstr("LastVisited, SecondaryDate"));
    EXPECT_THAT(result.reason, testing::Not(HasSubstr("InternetHistory")));
    EXPECT_THAT(urls(), ElementsAre("http://a/"));
    ASSERT_EQ(log.entries.size(), 1U);
    EXPECT_EQ(log.entries[0].message, result.reason);
}

TEST_F(NetAnalysisWalk, readsTheEventsOfAFileWithoutCase) {
    Jet4 made;
    made.table("History", {{"InternetHistory", JetType::memo}});
    made.row({std::string("http://a/")});
    read(made.bytes());
    EXPECT_EQ(result.state, ReadState::cutShort);
    EXPECT_THAT(result.reason, HasSubstr("the file has no table \"Case\""));
    EXPECT_THAT(urls(), ElementsAre("http://a/"));
}

TEST_F(NetAnalysisWalk, failsWithoutTheTableOfEvents) {
    Jet4 made;
    made.table("Case", {{"CachePath", JetType::memo}, {"Version", JetType::text}});
    read(made.bytes());
    EXPECT_EQ(result.state, ReadState::failed);
    EXPECT_EQ(result.reason, file.string() + ": the file has no table \"History\"");
    ASSERT_EQ(log.entries.size(), 1U);
    EXPECT_EQ(log.entries[0].message, result.reason);
    EXPECT_EQ(log.entries[0].procedure, "MainForm.ParseNetAnalysisFile()");
    EXPECT_EQ(log.entries[0].severity, Severity::Warning);
    EXPECT_EQ(log.entries[0].recommendation,
              "NetAnalysis file version may be incompatible with this build of Norvelane");
}

TEST_F(NetAnalysisWalk, failsOnWhatIsNoJetDatabase) {
    for (const std::string &bytes : {std::string(), std::string("no database"),
                                     std::string(8192, '\0'), std::string(8192, 'x')}) {
        read(bytes);
        EXPECT_EQ(result.state, ReadState::failed);
        EXPECT_FALSE(result.reason.empty());
        EXPECT_TRUE(sink.records.empty());
        EXPECT_FALSE(log.entries.empty());
    }
    std::filesystem::remove(file);
    readAgain();
    EXPECT_EQ(result.state, ReadState::failed);
}

TEST_F(NetAnalysisWalk, stopsWhenCancelled) {
    test::CancelAfter none(0);
    watcher = &none;
    read(caseOf(3));
    EXPECT_EQ(result.state, ReadState::cancelled);
    EXPECT_TRUE(sink.records.empty());
    EXPECT_TRUE(log.entries.empty());
}

/// Cancels as soon as a record has been saved.
struct CancelWhenSaved final : TaskMonitor {
    explicit CancelWhenSaved(const test::MemorySink &saved) : sink(saved) {}
    void describe(const TaskHeading &) override {}
    bool advance(double) override { return sink.records.empty(); }
    bool wantsStep() const override { return false; }
    void show(const TaskStep &) override {}
    const test::MemorySink &sink;
};

TEST_F(NetAnalysisWalk, keepsWhatWasReadBeforeACancel) {
    CancelWhenSaved cancel(sink);
    watcher = &cancel;
    read(caseOf(3));
    EXPECT_EQ(result.state, ReadState::cancelled);
    EXPECT_THAT(urls(), ElementsAre("http://a/1"));
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(NetAnalysisWalk, writesNothingIntoTheEvidence) {
    read(caseOf(2));
    const auto before = fileMD5(file);
    std::filesystem::permissions(file, std::filesystem::perms::owner_read);
    readAgain();
    EXPECT_EQ(fileMD5(file), before);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(file.parent_path()), {}), 1);
    EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
}

TEST_F(NetAnalysisWalk, readsFilesOfAnyName) {
    for (const char *name : {"-h.net", "a b;c$(d).net", "\u043a\u043e\u0442.net", "\xFC.net"}) {
        file = folder.write(name, caseOf(1).bytes());
        readAgain();
        EXPECT_THAT(urls(), ElementsAre("http://a/1")) << name;
    }
}

} // namespace
} // namespace nv
