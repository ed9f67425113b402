#include "cli/CliCase.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <unistd.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class ExportCliTest : public CliCase {
  protected:
    ExportCliTest() {
        IndexDat index;
        index.add(
            {.url = "Visited: mara@http://a.example/", .secondDate = fileTime(2011, 3, 1, 12)});
        index.add(
            {.url = "Visited: mara@http://b.example/", .secondDate = fileTime(2011, 3, 2, 12)});
        folder.write("evidence/History.IE5/index.dat", index.bytes());
        const CliResult run = cli({"import", project, (folder.path() / "evidence").string()});
        EXPECT_EQ(run.exit, 0) << run.err;
    }
    CliResult exported(std::vector<std::string> more) {
        std::vector<std::string> words{"export", project, out.string()};
        words.insert(words.end(), more.begin(), more.end());
        return cli(words);
    }
    std::string text() { return std::string(ByteView(readWhole(out)).raw()); }
    void change(const std::string &sql) {
        SQLite::Database(project, SQLite::OPEN_READWRITE).exec(sql);
    }

    fs::path out = folder.path() / "rows.out";
};

TEST_F(ExportCliTest, rowsAreChosenByFilter) {
    const CliResult run = exported({"--columns", "url", "--filter", "CacheURLs"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(text(), "URL\r\n");
    EXPECT_THAT(run.err, HasSubstr("filters hide 2 of 2 rows"));
    EXPECT_EQ(exported({"--filter", "nothing", "--overwrite"}).exit, 1);
}

TEST_F(ExportCliTest, rowsAreExportedInTheChosenForm) {
    const CliResult run = exported({"--columns", "Index,url", "--delimiter", "tab"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(text(), "Index\tURL\r\n1\thttp://a.example/\r\n2\thttp://b.example/\r\n");
    EXPECT_THAT(run.err, HasSubstr("2 rows"));
    out = folder.path() / "rows.jsonl";
    EXPECT_EQ(exported({"--host", "b.ex"}).exit, 0);
    EXPECT_EQ(nlohmann::json::parse(text()).at("datetime"), "2011-03-02T12:00:00.000000+00:00");
    EXPECT_EQ(cli({"tag", project, "1"}).exit, 0);
    EXPECT_EQ(exported({"--tagged", "--overwrite", "--format", "csv", "--columns", "url"}).exit, 0);
    EXPECT_EQ(text(), "url\r\nhttp://a.example/\r\n");
}

TEST_F(ExportCliTest, whatMakesNoSenseIsRefused) {
    EXPECT_EQ(exported({"--delimiter", "x"}).exit, 1);
    EXPECT_EQ(exported({"--columns", "URLs"}).exit, 1);
    EXPECT_EQ(exported({"--query", "none"}).exit, 1);
    EXPECT_FALSE(fs::exists(out));
    writeWhole(out, "kept");
    EXPECT_EQ(exported({}).exit, 1);
    EXPECT_EQ(text(), "kept");
    out = project;
    EXPECT_EQ(exported({"--overwrite"}).exit, 1);
    out = folder.path() / "evidence" / "rows.txt";
    EXPECT_EQ(exported({}).exit, 1);
    EXPECT_FALSE(fs::exists(out));
}

TEST_F(ExportCliTest, anUpgradeTellsOfDifferencesByItsExitCode) {
    EXPECT_EQ(cli({"upgrade", project}).exit, 0);
    change("DROP INDEX URLIndex");
    const CliResult found = cli({"upgrade", project, "--format", "csv"});
    EXPECT_EQ(found.exit, 2);
    EXPECT_EQ(found.out, "TABLE,OBJECT,NAME,STATUS\r\nURLs,Index,URLIndex,Missing\r\n");
    EXPECT_THAT(found.err, HasSubstr("Scan complete."));
    const CliResult fixed = cli({"upgrade", project, "--fix"});
    EXPECT_EQ(fixed.exit, 0) << fixed.err;
    EXPECT_THAT(fixed.out, HasSubstr("Fixed!"));
    EXPECT_TRUE(fs::exists(project + ".old"));
    EXPECT_EQ(cli({"upgrade", project}).exit, 0);
    EXPECT_EQ(exported({}).exit, 0) << "the views of stored queries work";
}

TEST_F(ExportCliTest, aProjectThatCantBeOpenedCanBeUpgraded) {
    change("CREATE TABLE Mine (a); INSERT INTO Mine VALUES (1)");
    {
        SQLite::Database database(project, SQLite::OPEN_READWRITE);
        database.exec("PRAGMA foreign_keys=OFF; PRAGMA legacy_alter_table=ON; DROP TABLE URLs");
    }
    EXPECT_EQ(cli({"list", project}).exit, 3);
    const CliResult found = cli({"upgrade", project});
    EXPECT_EQ(found.exit, 2) << found.err;
    EXPECT_THAT(found.err, HasSubstr("Table \"Mine\" with 1 row"));
    EXPECT_EQ(cli({"upgrade", project, "--fix"}).exit, 0);
    EXPECT_EQ(cli({"list", project}).exit, 0);
}

TEST_F(ExportCliTest, anOlderProjectNamesTheCommand) {
    change("UPDATE DefaultSettings SET DefaultValue = '0' WHERE DefaultName LIKE 'App%'");
    EXPECT_THAT(cli({"list", project}).err, HasSubstr("upgrade"));
    const std::string before = CliCase::text(project);
    const CliResult looked = cli({"upgrade", project});
    EXPECT_EQ(looked.exit, 0);
    EXPECT_THAT(looked.err, HasSubstr("--fix"));
    EXPECT_EQ(CliCase::text(project), before) << "without --fix no byte changes";
    EXPECT_EQ(cli({"upgrade", project, "--fix"}).exit, 0);
    EXPECT_EQ(cli({"list", project}).err, "") << "the fix has stamped it";
}

TEST_F(ExportCliTest, aKilledFixLeavesAProjectThatOpens) {
    change("DROP INDEX URLIndex; WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n "
           "WHERE i < 60000) INSERT INTO Links (URL_ID, URL) SELECT 1, 'http://x' || i FROM n");
    const std::string before = std::string(ByteView(readWhole(project)).raw());
    for (const int wait : {50, 150, 250, 350, 450}) { // milliseconds
        CliProcess fixing({"upgrade", project, "--fix"}, folder.path() / "home");
        ::usleep(static_cast<useconds_t>(wait) * 1000);
        fixing.signal(SIGKILL);
        fixing.finish();
        if (std::string(ByteView(readWhole(project)).raw()) != before)
            break; // it was through
        EXPECT_EQ(cli({"upgrade", project}).exit, 2);
    }
    EXPECT_LE(cli({"upgrade", project, "--fix"}).exit, 0);
    EXPECT_EQ(SQLite::Database(project).execAndGet("SELECT count(*) FROM Links").getInt(), 60000);
}

} // namespace
} // namespace nv::test
