#include "LinkProject.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

namespace nv::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class LinkAnalysisTest : public testing::Test, protected LinkProject {
  protected:
    static std::string pair(std::int64_t parent, std::int64_t child, const std::string &url) {
        return fmt::format("{}>{} {} {}", parent, child, url, hashOfUrl(url));
    }
};

TEST_F(LinkAnalysisTest, aRecordIsPairedWithThePageThatLinksToIt) {
    const auto page = record("http://a/page");
    const auto visit = record("http://b/", true);
    link(page, "http://b/");
    const LinkTotals totals = run();
    EXPECT_THAT(pairs(), ElementsAre(pair(page, visit, "http://b/")));
    EXPECT_EQ(totals.matches, 1);
    EXPECT_EQ(totals.records, 2);
    EXPECT_EQ(totals.examined, 2);
    EXPECT_EQ(notesOn(totals), "");
    EXPECT_THAT(project.log.entries, IsEmpty());
}

TEST_F(LinkAnalysisTest, withoutLinksThereAreNoMatchesAndTheReasonIsTold) {
    record("http://a/", true);
    const LinkTotals totals = run();
    EXPECT_EQ(totals.matches, 0);
    EXPECT_THAT(notesOn(totals), HasSubstr("'Parse Advanced Metadata'"));
}

TEST_F(LinkAnalysisTest, anEmptyProjectIsAnalysed) {
    EXPECT_EQ(run().matches, 0);
}

TEST_F(LinkAnalysisTest, theSameLinkTwiceInAPageIsOnePair) {
    const auto page = record("http://a/page");
    const auto visit = record("http://b/", true);
    link(page, "  http://b/");
    link(page, "http://b/");
    db().exec("UPDATE Links SET HashedURL = '" + hashOfUrl("http://b/") + "'");
    EXPECT_EQ(run().matches, 1);
    EXPECT_THAT(pairs(), ElementsAre(pair(page, visit, "http://b/"))); // trimmed
}

TEST_F(LinkAnalysisTest, aPagesLinkToItselfIsNoMatch) {
    const auto page = record("http://a/page");
    link(page, "http://a/page");
    EXPECT_EQ(run().matches, 0);
}

TEST_F(LinkAnalysisTest, twoPagesThatLinkToOneRecordAreTwoPairs) {
    const auto visit = record("http://b/", true);
    const auto one = record("http://a/one");
    const auto two = record("http://a/two");
    link(two, "http://b/");
    link(one, "http://b/");
    EXPECT_EQ(run().matches, 2);
    // In the order in which the links were found.
    EXPECT_THAT(pairs(), ElementsAre(pair(two, visit, "http://b/"), pair(one, visit, "http://b/")));
}

TEST_F(LinkAnalysisTest, caseAndQueryOfAUrlCount) {
    const auto page = record("http://a/page");
    record("http://b/Page?x=1", true);
    link(page, "http://b/page?x=1");
    link(page, "http://b/Page");
    EXPECT_EQ(run().matches, 0);
}

TEST_F(LinkAnalysisTest, recordsWithoutAHashAreNotTakenForEqual) {
    const auto page = record("http://a/page");
    record("http://b/", true);
    link(page, "http://b/");
    db().exec("UPDATE Links SET HashedURL = ''");
    db().exec("UPDATE URLs SET HashedURL = '  ' WHERE IsHistory");
    EXPECT_EQ(run().matches, 0);
}

TEST_F(LinkAnalysisTest, recordsWithoutAUrlAreComparedWithNothingAndCounted) {
    const auto one = record("");
    record("");
    link(one, "");
    const LinkTotals totals = run();
    EXPECT_EQ(totals.matches, 0);
    EXPECT_EQ(totals.withoutUrl, 2);
    EXPECT_EQ(notesOn(totals), "2 records without a URL: compared with nothing.");
}

TEST_F(LinkAnalysisTest, aRecordWithAUrlButNoHashIsComparedAllTheSame) {
    const auto page = record("http://a/page");
    const auto one = record("http://b/", true);
    const auto two = record("http://b/", true);
    link(page, "http://b/");
    db().exec(fmt::format("UPDATE URLs SET HashedURL = NULL WHERE URL_ID = {};"
                          "UPDATE URLs SET HashedURL = ' ' WHERE URL_ID = {}",
                          one, two));
    EXPECT_EQ(run().withoutUrl, 0);
    EXPECT_THAT(pairs(), ElementsAre(pair(page, one, "http://b/"), pair(page, two, "http://b/")));
}

TEST_F(LinkAnalysisTest, linksWithoutAHashAreCountedAndTold) {
    const auto page = record("http://a/page");
    record("http://b/", true);
    link(page, "http://b/");
    link(page, "http://c/");
    db().exec("UPDATE Links SET HashedURL = CASE Link_ID WHEN 1 THEN NULL ELSE '' END");
    const LinkTotals totals = run();
    EXPECT_EQ(totals.withoutHash, 2);
    EXPECT_EQ(notesOn(totals), "2 hyperlinks without a hash: compared with nothing.");
}

TEST_F(LinkAnalysisTest, linksOfPagesThatAreGoneAreLeftOutAndCounted) {
    const auto gone = record("http://a/gone");
    const auto page = record("http://a/page");
    const auto visit = record("http://b/", true);
    link(gone, "http://b/");
    link(page, "http://b/");
    db().exec(fmt::format("PRAGMA foreign_keys = OFF; DELETE FROM URLs WHERE URL_ID = {};"
                          "PRAGMA foreign_keys = ON",
                          gone));
    const LinkTotals totals = run();
    EXPECT_THAT(pairs(), ElementsAre(pair(page, visit, "http://b/")));
    EXPECT_EQ(totals.matches, 1);
    EXPECT_EQ(totals.withoutPage, 1);
    EXPECT_EQ(notesOn(totals), "1 match left out: the page that holds the link is no "
                               "longer in the project.");
    EXPECT_THAT(project.log.entries, IsEmpty());
}

TEST_F(LinkAnalysisTest, aSecondRunGivesTheSamePairsUnderNewIds) {
    const auto page = record("http://a/page");
    record("http://b/", true);
    link(page, "http://b/");
    run();
    const auto first = pairs();
    const auto id = project.number("SELECT Link_ID FROM LinkAnalysis");
    run();
    EXPECT_EQ(pairs(), first);
    EXPECT_GT(project.number("SELECT Link_ID FROM LinkAnalysis"), id);
}

TEST_F(LinkAnalysisTest, theStatusTextsStandAsTheyAre) {
    const auto page = record("http://a/page");
    record("http://b/", true);
    record("http://c/", true);
    link(page, "http://b/");
    MemoryTask watched;
    runLinkAnalysis(context(watched));
    ASSERT_EQ(watched.headings.size(), 1U);
    EXPECT_EQ(watched.headings[0].title, "RUNNING LINK ANALYSIS");
    EXPECT_EQ(watched.headings[0].subject, "Comparing History data to Cache data...");
    ASSERT_FALSE(watched.steps.empty());
    EXPECT_EQ(watched.steps.back().topMessage, "Examining 3 of 3");
    EXPECT_EQ(watched.steps.back().topTotal, 3);
    EXPECT_EQ(watched.steps.back().bottomMessage, "Match Count: 1");
}

TEST_F(LinkAnalysisTest, aCancelKeepsThePairsOfTheRowsExamined) {
    const auto page = record("http://a/page");
    const auto visit = record("http://b/", true);
    record("http://b/", true);
    link(page, "http://b/");
    run(); // makes the index
    CancelAfter twoRows(2);
    const LinkTotals totals = runLinkAnalysis(context(twoRows));
    EXPECT_TRUE(totals.cancelled);
    EXPECT_EQ(totals.examined, 2);
    EXPECT_THAT(pairs(), ElementsAre(pair(page, visit, "http://b/")));
    EXPECT_EQ(notesOn(totals), "The analysis was cancelled: 2 of 3 records were examined.");
    run();
    EXPECT_EQ(pairs().size(), 2U);
}

TEST_F(LinkAnalysisTest, aFailureLeavesNoPairsAtAll) {
    const auto page = record("http://a/page");
    record("http://b/", true);
    record("http://fails/", true);
    link(page, "http://b/");
    link(page, "http://fails/");
    run();
    ASSERT_EQ(pairs().size(), 2U);
    db().exec("CREATE TRIGGER breaks BEFORE INSERT ON LinkAnalysis WHEN NEW.Child_ID = 3 BEGIN "
              "SELECT RAISE(FAIL, 'broken'); END");
    EXPECT_ANY_THROW(run());
    EXPECT_THAT(pairs(), IsEmpty());
    db().exec("DROP TRIGGER breaks"); // the connection is usable, nothing is left open
    EXPECT_EQ(run().matches, 2);
}

TEST_F(LinkAnalysisTest, aPagesTextAndLinksAreWrittenAnew) {
    const auto page = cached("IE Cache", "p.htm",
                             "<HTML><BODY>Hello<p>there <a href='http://b/x|y'>b</a>"
                             "<a href='../c'>c</a></BODY></HTML>");
    db().exec("UPDATE URLs SET HTMLBody = 'old', Links = 'old'");
    const LinkTotals totals = run();
    EXPECT_EQ(totals.refreshed, 1);
    EXPECT_EQ(field("HTMLBody", page), "Hello\r\nthere bc");
    EXPECT_EQ(field("Links", page), "http://b/x|y\r\n../c");
    EXPECT_EQ(project.number("SELECT Count(*) FROM Links"), 0); // the column, not the table
}

TEST_F(LinkAnalysisTest, eitherTagMakesAPageAndNeitherLeavesTheRowAlone) {
    const auto body = cached(" opera cache ", "b.bin", "junk <Body>text");
    const auto none = cached("IE Cache", "n.htm", "<p>text");
    db().exec("UPDATE URLs SET HTMLBody = 'old'");
    EXPECT_EQ(run().refreshed, 1);
    EXPECT_EQ(field("HTMLBody", body), "junk text");
    EXPECT_EQ(field("HTMLBody", none), "old");
}

TEST_F(LinkAnalysisTest, otherTypesAndRowsWithoutContentAreNotLookedAt) {
    const auto other = cached("Simple HTML", "o.htm", "<html><body>text");
    const auto gone = cached("IE Cache", "g.htm", "<html><body>text");
    db().exec(fmt::format("UPDATE URLs SET CacheFileExists = 0 WHERE URL_ID = {}", gone));
    const LinkTotals totals = run();
    EXPECT_EQ(totals.refreshed, 0);
    EXPECT_EQ(totals.notFetched, 0);
    EXPECT_EQ(field("ifnull(HTMLBody, '')", other), "");
}

TEST_F(LinkAnalysisTest, contentThatIsGoneIsCountedAndTold) {
    const auto page = cached("IE Cache", "gone.htm", "");
    cached("Chrome Cache", "data_1", "");
    db().exec("UPDATE URLs SET HTMLBody = 'old'");
    const LinkTotals totals = run();
    EXPECT_EQ(totals.notFetched, 2);
    EXPECT_THAT(notesOn(totals), HasSubstr("2 records whose cached content was not found"));
    EXPECT_EQ(field("HTMLBody", page), "old");
}

TEST_F(LinkAnalysisTest, aPageBeyondALimitIsLoggedAndCountedAndTheRunGoesOn) {
    const auto big = cached("IE Cache", "big.htm", "<html>" + std::string(9U << 20U, 'x'));
    const auto page = cached("IE Cache", "p.htm", "<html><body>text");
    db().exec("UPDATE URLs SET HTMLBody = 'old'");
    const LinkTotals totals = run();
    EXPECT_EQ(totals.notRead, 1);
    EXPECT_EQ(totals.refreshed, 1);
    EXPECT_THAT(notesOn(totals), HasSubstr("1 record could not be read as a page"));
    EXPECT_EQ(field("HTMLBody", big), "old");
    EXPECT_EQ(field("HTMLBody", page), "text");
    ASSERT_EQ(project.log.entries.size(), 1U);
    EXPECT_EQ(project.log.entries[0].procedure, "MainForm.RunLinkAnalysis()");
    EXPECT_EQ(project.log.entries[0].severity, Severity::Warning);
}

TEST_F(LinkAnalysisTest, evidenceTextIsNeverSql) {
    const std::string url = "http://b/');DELETE FROM URLs;--\xC3\xA9";
    const auto page = record("http://a/page");
    record(url, true);
    link(page, url);
    EXPECT_EQ(run().matches, 1);
    EXPECT_EQ(project.number("SELECT Count(*) FROM URLs"), 2);
}

/// The rule as it is told: every record, every link with its hash, unless the pair is there.
std::vector<std::string> plainWay(LinkProject &made) {
    SQLite::Database &db = made.db();
    SQLite::Transaction together(db);
    db.exec("DELETE FROM LinkAnalysis");
    SQLite::Statement rows(db, "SELECT URL_ID, trim(HashedURL) FROM URLs ORDER BY URL_ID");
    while (rows.executeStep()) {
        const std::int64_t id = rows.getColumn(0).getInt64();
        SQLite::Statement links(
            db, "SELECT * FROM Links WHERE HashedURL = ? AND URL_ID <> ? ORDER BY Link_ID");
        links.bind(1, rows.getColumn(1).getString());
        links.bind(2, id);
        while (links.executeStep()) {
            const std::int64_t page = links.getColumn("URL_ID").getInt64();
            const auto known = fmt::format(
                "SELECT Count(*) FROM LinkAnalysis WHERE Parent_ID = {} AND Child_ID = {}", page,
                id);
            if (db.execAndGet(known).getInt64() > 0)
                continue;
            SQLite::Statement add(db, "INSERT INTO LinkAnalysis (Parent_ID, Child_ID, URL, "
                                      "HashedURL) VALUES (?, ?, trim(?), ?)");
            add.bind(1, page);
            add.bind(2, id);
            add.bind(3, links.getColumn("URL").getString());
            add.bind(4, links.getColumn("HashedURL").getString());
            add.exec();
        }
    }
    together.commit();
    return made.pairs();
}

TEST(LinkAnalysisPlainTest, randomProjectsGiveThePairsOfThePlainWayInItsOrder) {
    for (unsigned seed = 1; seed <= 12; ++seed) {
        std::mt19937 random(seed);
        LinkProject made;
        SQLite::Transaction together(made.db());
        const auto any = [&random](unsigned count) {
            return static_cast<unsigned>(random() % count);
        };
        const auto url = [&] { return fmt::format("http://host{}/", any(10 + seed * 5)); };
        const unsigned count = 40 + any(200);
        for (unsigned i = 0; i < count; ++i)
            made.record(url(), any(2) == 0);
        for (unsigned i = 0; i < count * 4; ++i)
            made.link(1 + any(count), any(5) == 0 ? " " + url() + "  " : url());
        // Links with blanks about them carry the hash of the plain URL, and some hashes vary in
        // letter case and blanks, as files of other tools may.
        made.db().exec("UPDATE URLs SET HashedURL = ' ' || upper(HashedURL) || ' ' WHERE URL_ID % "
                       "7 = 0");
        made.db().exec("DELETE FROM URLs WHERE URL_ID % 11 = 0 AND URL_ID NOT IN (SELECT URL_ID "
                       "FROM Links)");
        together.commit();
        const auto expected = plainWay(made);
        EXPECT_EQ(made.run().matches, static_cast<std::int64_t>(expected.size()));
        EXPECT_EQ(made.pairs(), expected) << "seed " << seed;
        EXPECT_FALSE(expected.empty());
    }
}

} // namespace
} // namespace nv::test
