#include "base/Text.h"
#include "cli/CliCase.h"
#include "support/builders/WebSite.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char *kPage = "http://host/page.html";

/// A cached page (row 1), a picture (row 2), and a visit to that page (row 3), imported.
class LinksCliTest : public CliCase {
  protected:
    LinksCliTest() {
        IndexDat cache;
        cache.folder("ABCDEFGH");
        addCached(
            cache, kPage, "page[1].htm",
            "<html><title>Inbox</title><body>Hello <a href='http://host/pic/logo.gif'>logo</a>"
            "<a href='b.html'>b</a></body></html> ",
            evidence / "a");
        addCached(cache, "http://host/pic/logo.gif", "logo[1].gif", "GIF89a", evidence / "a");
        writeWhole(evidence / "a" / "index.dat", cache.bytes());
        IndexDat history;
        history.add({.url = std::string("Visited: mara@") + kPage});
        fs::create_directories(evidence / "b");
        writeWhole(evidence / "b" / "index.dat", history.bytes());
    }
    void import(std::vector<std::string> more = {}) {
        std::vector<std::string> words = {"import", project, evidence.string(), "--kinds",
                                          "ie-cache,ie-history,firefox-cache,chrome-cache,"
                                          "safari-cache,opera-cache"};
        words.insert(words.end(), more.begin(), more.end());
        const CliResult run = cli(words);
        ASSERT_EQ(run.exit, 0) << run.err;
    }
    std::string value(const std::string &query) {
        SQLite::Database database(project);
        return database.execAndGet(query).getString();
    }
};

TEST_F(LinksCliTest, thePagesThatLeadToARecordAreFoundAndListed) {
    import();
    const CliResult run = cli({"links", project});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(run.out,
              "3 records examined, 1 match, 1 page refreshed, 0 not fetched, 0 not read\n");
    EXPECT_EQ(run.err, "");
    const CliResult child = cli({"links", project, "--url", "3", "--format", "tsv"});
    EXPECT_EQ(child.exit, 0) << child.err;
    EXPECT_THAT(child.out, StartsWith("URL_ID\tKind\tDirection\tVisitCount\tVisits\tURL\t"
                                      "HashedURL\n1\tCache\tParent\t1\t"));
    EXPECT_THAT(child.out, HasSubstr(std::string("\t") + kPage + "\t"));
    const CliResult parent = cli({"links", project, "--url", "1", "--format", "jsonl"});
    EXPECT_THAT(parent.out, HasSubstr(R"("URL_ID":3,"Kind":"History","Direction":"Child")"));
    EXPECT_EQ(value("SELECT Links FROM URLs WHERE URL_ID = 1"),
              "http://host/pic/logo.gif\r\nb.html");
    EXPECT_EQ(value("SELECT HTMLBody FROM URLs WHERE URL_ID = 1"), "Hello logob");
}

TEST_F(LinksCliTest, aProjectWithoutMetadataGivesNoneAndSaysWhy) {
    import({"--no-metadata"});
    const CliResult run = cli({"links", project});
    EXPECT_EQ(run.exit, 0);
    EXPECT_THAT(run.out, HasSubstr("3 records examined, 0 matches, 1 page refreshed"));
    EXPECT_THAT(run.err, HasSubstr("holds no hyperlinks"));
}

TEST_F(LinksCliTest, beforeARunTheListIsEmptyAndSaysSo) {
    import();
    const CliResult run = cli({"links", project, "--url", "3"});
    EXPECT_EQ(run.exit, 0);
    EXPECT_THAT(run.err, HasSubstr("run the command without --url first"));
}

TEST_F(LinksCliTest, contentThatIsGoneIsTold) {
    import();
    fs::remove_all(evidence);
    const CliResult run = cli({"links", project});
    EXPECT_EQ(run.exit, 0);
    EXPECT_THAT(run.out, HasSubstr("1 match, 0 pages refreshed, 2 not fetched"));
    EXPECT_THAT(run.err, HasSubstr("2 records whose cached content was not found"));
}

TEST_F(LinksCliTest, anIdBeyond16BitsNamesTheSwitchThatLiftsIt) {
    import();
    {
        SQLite::Database database(project, SQLite::OPEN_READWRITE);
        database.exec("PRAGMA foreign_keys = OFF; UPDATE URLs SET URL_ID = 40000 WHERE URL_ID = 3");
    }
    EXPECT_EQ(cli({"links", project}).exit, 0);
    EXPECT_EQ(cli({"links", project, "--url", "40000"}).exit, 0) << "as everybody expects";
    ASSERT_EQ(cli({"options", "set", "WideRecordIds", "False"}).exit, 0);
    const CliResult run = cli({"links", project, "--url", "40000"});
    EXPECT_EQ(run.exit, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, HasSubstr("Error Loading Links"));
    EXPECT_THAT(run.err, HasSubstr("40000"));
    EXPECT_THAT(run.err, HasSubstr("WideRecordIds"));
    EXPECT_THAT(run.err, HasSubstr("--wide-ids"));
    const CliResult wide = cli({"links", project, "--url", "40000", "--wide-ids"});
    EXPECT_EQ(wide.exit, 0);
    EXPECT_THAT(wide.out, HasSubstr(kPage));
}

TEST_F(LinksCliTest, wrongCallsAreRefused) {
    import();
    EXPECT_EQ(cli({"links"}).exit, 1);
    EXPECT_EQ(cli({"links", project, "--url", "99"}).exit, 1);
    EXPECT_EQ(cli({"links", project, "--url", "x"}).exit, 1);
    EXPECT_EQ(cli({"links", project, "--format", "csv"}).exit, 1);
    EXPECT_EQ(cli({"links", (folder.path() / "none.nvp").string()}).exit, 3);
}

TEST_F(LinksCliTest, pagesOfEveryBrowsersCacheAreFetched) {
    for (const SiteCache cache : {SiteCache::internetExplorer, SiteCache::firefox,
                                  SiteCache::chrome, SiteCache::safari, SiteCache::opera}) {
        fs::remove_all(evidence);
        fs::remove(project);
        writeSite(exampleSite(), cache, evidence);
        import();
        const std::string count = value("SELECT Count(*) FROM URLs WHERE length(HTMLBody) > 0");
        const std::string bodies = "SELECT group_concat(HTMLBody, '|') FROM URLs";
        const std::string imported = value(bodies);
        {
            SQLite::Database database(project, SQLite::OPEN_READWRITE);
            database.exec("UPDATE URLs SET HTMLBody = 'old' WHERE length(HTMLBody) > 0");
        }
        const CliResult run = cli({"links", project});
        EXPECT_EQ(run.exit, 0) << run.err;
        EXPECT_NE(count, "0");
        EXPECT_EQ(value(bodies), imported) << static_cast<int>(cache);
    }
}

} // namespace
} // namespace nv::test
