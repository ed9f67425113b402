#include "base/Files.h"
#include "cli/CliRun.h"
#include "support/TempFolder.h"
#include "support/builders/IndexDat.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <fstream>

namespace nv::test {
namespace {

using nlohmann::json;
namespace fs = std::filesystem;

/// A Chrome history of `rows` pages, one visited every second from 2011-04-07 12:03:11 UTC on.
void makeChromeHistory(const fs::path &file, int rows) {
    fs::create_directories(file.parent_path());
    SQLite::Database history(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    history.exec("CREATE TABLE urls(id INTEGER PRIMARY KEY, url LONGVARCHAR, title LONGVARCHAR, "
                 "visit_count INTEGER, last_visit_time INTEGER, hidden INTEGER)");
    SQLite::Transaction transaction(history);
    SQLite::Statement insert(history, "INSERT INTO urls VALUES(?, ?, ?, 1, ?, 0)");
    for (int i = 1; i <= rows; ++i) {
        insert.bind(1, i);
        insert.bind(2, "http://site" + std::to_string(i % 7) + ".example/page" + std::to_string(i) +
                           ".html?q=" + std::to_string(i));
        insert.bind(3, "Page " + std::to_string(i));
        insert.bind(4, static_cast<std::int64_t>(12946651391000000) + i * std::int64_t{1000000});
        insert.exec();
        insert.reset();
    }
    transaction.commit();
}

struct CliTest : testing::Test {
    CliResult cli(std::vector<std::string> arguments) {
        return runCli(arguments, folder.path() / "home");
    }
    /// Imports a history of three pages into `project`.
    void importThree() {
        makeChromeHistory(evidence / "Chrome" / "Default" / "History", 3);
        const CliResult run = cli({"import", project.string(), evidence.string()});
        ASSERT_EQ(run.exit, 0) << run.err;
    }
    TempFolder folder;
    fs::path evidence = folder.path() / "evidence";
    fs::path project = folder.path() / "case.nvp";
};

TEST_F(CliTest, helpShowsExamplesAndVersionANumber) {
    const CliResult help = cli({"--help"});
    EXPECT_EQ(help.exit, 0);
    EXPECT_NE(help.out.find("norvelane-cli import case.nvp"), std::string::npos);
    const CliResult version = cli({"--version"});
    EXPECT_EQ(version.exit, 0);
    EXPECT_NE(version.out.find('.'), std::string::npos);
}

TEST_F(CliTest, wrongUsageIsOne) {
    EXPECT_EQ(cli({}).exit, 1);
    EXPECT_EQ(cli({"nonsense"}).exit, 1);
    EXPECT_EQ(cli({"import"}).exit, 1);
    EXPECT_EQ(cli({"import", project.string(), (folder.path() / "nowhere").string()}).exit, 1);
    EXPECT_FALSE(fs::exists(project)) << "a wrong call makes no project";
    EXPECT_EQ(cli({"import", project.string(), folder.path().string(), "--zone", "9999"}).exit, 1);
    EXPECT_EQ(cli({"import", project.string(), folder.path().string(), "--kinds", "nonsense"}).exit,
              1);
}

TEST_F(CliTest, aProjectThatCantBeUsedIsThree) {
    const fs::path text = folder.write("text.nvp", "this is no database, however long it may be");
    EXPECT_EQ(cli({"list", text.string()}).exit, 3);
    EXPECT_EQ(cli({"list", (folder.path() / "none.nvp").string()}).exit, 3);
    makeChromeHistory(evidence / "Chrome" / "History", 1);
    EXPECT_EQ(cli({"import", (folder.path() / "none" / "x.nvp").string(), evidence.string()}).exit,
              3);
    const CliResult wrongName =
        cli({"import", (folder.path() / "case.txt").string(), evidence.string()});
    EXPECT_EQ(wrongName.exit, 3);
    EXPECT_NE(wrongName.err.find("Selected file is not a valid Norvelane Project File."),
              std::string::npos);
}

TEST_F(CliTest, importTellsOfEveryArtefactAndAppends) {
    importThree();
    const CliResult again =
        cli({"import", project.string(), evidence.string(), "--format", "json"});
    ASSERT_EQ(again.exit, 0) << again.err;
    const json summary = json::parse(again.out);
    ASSERT_EQ(summary["artefacts"].size(), 1u);
    const json artefact = summary["artefacts"][0];
    EXPECT_EQ(artefact["reader"], "chrome-history");
    EXPECT_EQ(artefact["type"], 21);
    EXPECT_EQ(artefact["rows"], 3);
    EXPECT_EQ(artefact["state"], "complete");
    EXPECT_EQ(artefact["not_reached"], 0);
    EXPECT_EQ(artefact["md5"].get<std::string>().size(), 32u);
    EXPECT_EQ(summary["totals"]["rows"], 3);
    SQLite::Database database(project.string());
    EXPECT_EQ(database.execAndGet("SELECT count(*) FROM URLs").getInt(), 6);
    EXPECT_EQ(database.execAndGet("SELECT count(*) FROM SourceFiles").getInt(), 1);
    EXPECT_EQ(database.execAndGet("SELECT Successful FROM SourceFiles").getInt(), 1);
    EXPECT_EQ(database.execAndGet("PRAGMA integrity_check").getString(), "ok");
}

TEST_F(CliTest, aDamagedArtefactIsTwoAndTheRestIsRead) {
    makeChromeHistory(evidence / "a" / "Chrome" / "History", 3);
    folder.write("evidence/b/Chrome/History", "SQLite format 3\0 and nothing sensible behind it");
    const CliResult run = cli({"import", project.string(), evidence.string(), "--format", "json"});
    EXPECT_EQ(run.exit, 2);
    const json summary = json::parse(run.out);
    EXPECT_EQ(summary["totals"]["rows"], 3);
    EXPECT_EQ(summary["artefacts"][1]["state"], "failed");
    EXPECT_FALSE(summary["artefacts"][1]["reason"].get<std::string>().empty());
}

TEST_F(CliTest, anEmptyFolderIsToldAndEndsWithOne) {
    fs::create_directories(evidence);
    const CliResult run = cli({"import", project.string(), evidence.string()});
    EXPECT_EQ(run.exit, 1);
    EXPECT_NE(run.err.find("No valid history or cache files found"), std::string::npos);
    EXPECT_NE(run.err.find("Nothing was imported"), std::string::npos);
    EXPECT_EQ(cli({"import", project.string(), evidence.string(), "--found"}).exit, 1);
    makeChromeHistory(evidence / "Chrome" / "History", 3);
    EXPECT_EQ(cli({"import", project.string(), evidence.string()}).exit, 0)
        << "the project can be used";
    EXPECT_EQ(cli({"import", project.string(), evidence.string(), "--kinds", "ie-cache"}).exit, 1)
        << "nothing that was asked for";
}

TEST_F(CliTest, aNamedFileThatIsNoArtefactIsToldWithAWayOut) {
    makeChromeHistory(folder.path() / "copy" / "History", 3); // its folder tells nothing
    const std::string file = (folder.path() / "copy" / "History").string();
    const CliResult run = cli({"import", project.string(), file});
    EXPECT_EQ(run.exit, 1);
    EXPECT_NE(run.err.find("--as READER"), std::string::npos) << run.err;
    EXPECT_EQ(cli({"import", project.string(), file, "--as", "chrome-history"}).exit, 0);
}

TEST_F(CliTest, aProjectIsNeverMadeAmongTheEvidence) {
    makeChromeHistory(evidence / "Chrome" / "Default" / "History", 3);
    const fs::path inside = evidence / "Chrome" / "case.nvp";
    const CliResult run = cli({"import", inside.string(), evidence.string()});
    EXPECT_EQ(run.exit, 1);
    EXPECT_NE(run.err.find("lies in the evidence folder"), std::string::npos) << run.err;
    EXPECT_FALSE(fs::exists(inside));
}

TEST_F(CliTest, aRowThatIsNotThereIsNotRebuilt) {
    importThree();
    const std::string out = (folder.path() / "pages").string();
    const CliResult run = cli({"rebuild", project.string(), "99999", "--out", out});
    EXPECT_EQ(run.exit, 1);
    EXPECT_NE(run.err.find("the project has no row 99999"), std::string::npos) << run.err;
}

TEST_F(CliTest, formatsThatAreNotReadYetAreListed) {
    folder.write("evidence/Safari/Cookies.plist", std::string(64, 'x'));
    const CliResult run = cli({"import", project.string(), evidence.string(), "--format", "json"});
    EXPECT_EQ(run.exit, 2);
    EXPECT_EQ(json::parse(run.out)["artefacts"][0]["state"], "not read yet");
}

TEST_F(CliTest, kindsNarrowTheScan) {
    makeChromeHistory(evidence / "Chrome" / "History", 3);
    const CliResult run = cli({"import", project.string(), evidence.string(), "--kinds",
                               "ie-history,ie-cache", "--format", "json"});
    EXPECT_EQ(run.exit, 1) << "nothing that was asked for";
    EXPECT_TRUE(json::parse(run.out)["artefacts"].empty());
}

TEST_F(CliTest, listShowsTheCellsOfTheTable) {
    importThree();
    const CliResult lines = cli({"list", project.string(), "--format", "jsonl", "--columns",
                                 "id,action_date_utc,url,status"});
    ASSERT_EQ(lines.exit, 0) << lines.err;
    const json first = json::parse(lines.out.substr(0, lines.out.find('\n')));
    EXPECT_EQ(first["action_date_utc"], "2011-04-07T12:03:12Z");
    EXPECT_EQ(first["url"], "http://site1.example/page1.html?q=1");
    const CliResult table = cli({"list", project.string(), "--host", "site2"});
    EXPECT_NE(table.out.find("page2.html"), std::string::npos);
    EXPECT_EQ(table.out.find("page1.html"), std::string::npos);
    EXPECT_EQ(cli({"list", project.string(), "--columns", "COL_NONE"}).exit, 1);
    EXPECT_EQ(cli({"list", project.string(), "--query", "no such query"}).exit, 1);
    EXPECT_EQ(cli({"list", project.string(), "--query", "_Show Only History"}).exit, 0);
}

TEST_F(CliTest, hostTextIsNeverSqlNorAPattern) {
    importThree();
    for (const char *host : {"'", "%", "_", "[", "x' OR '1'='1"}) {
        const CliResult run = cli({"list", project.string(), "--format", "jsonl", "--host", host});
        EXPECT_EQ(run.exit, 0) << host << run.err;
        EXPECT_EQ(run.out, "") << host;
    }
}

TEST_F(CliTest, queryReadsInTheProjectsDialectAndOnlyReads) {
    importThree();
    const CliResult top = cli({"query", project.string(), "--format", "csv",
                               "SELECT TOP 2 URL_ID, Len(URL) AS L FROM URLs WHERE Hidden = False "
                               "AND ActionDateUTC > #4/7/2011# ORDER BY URL_ID"});
    EXPECT_EQ(top.exit, 0) << top.err;
    EXPECT_EQ(top.out, "URL_ID,L\r\n1,35\r\n2,35\r\n");
    for (const char *sql : {"DELETE FROM URLs", "DROP TABLE URLs", "UPDATE URLs SET URL = ''",
                            "ATTACH 'x' AS y", "SELECT * FROM nowhere", "SELEC", ""})
        EXPECT_EQ(cli({"query", project.string(), sql}).exit, 1) << sql;
    EXPECT_EQ(SQLite::Database(project.string()).execAndGet("SELECT count(*) FROM URLs").getInt(),
              3);
}

TEST_F(CliTest, queriesShowAndZonesAnswer) {
    importThree();
    const CliResult queries = cli({"queries", project.string()});
    EXPECT_EQ(queries.exit, 0);
    EXPECT_NE(queries.out.find("TOP 25 URLs"), std::string::npos);
    const CliResult show = cli({"show", project.string(), "2"});
    EXPECT_EQ(show.exit, 0) << show.err;
    EXPECT_NE(show.out.find("page2.html"), std::string::npos);
    EXPECT_EQ(cli({"show", project.string(), "99"}).exit, 1);
    const CliResult zones = cli({"zones"});
    EXPECT_EQ(zones.exit, 0);
    EXPECT_NE(zones.out.find("Eastern Standard Time"), std::string::npos);
}

TEST_F(CliTest, dumpReadsOneArtefactWithoutAProject) {
    makeChromeHistory(evidence / "Chrome" / "History", 3);
    const CliResult dump =
        cli({"dump", (evidence / "Chrome" / "History").string(), "--format", "jsonl"});
    EXPECT_EQ(dump.exit, 0) << dump.err;
    EXPECT_EQ(std::count(dump.out.begin(), dump.out.end(), '\n'), 3);
    EXPECT_EQ(cli({"dump", folder.write("x.bin", "nothing").string()}).exit, 2);
    EXPECT_EQ(cli({"dump", (folder.path() / "none").string()}).exit, 1);
}

/// A cache of one page, whose response had `headers`.
void makeCache(const fs::path &folder, const std::string &page) {
    IndexDat index;
    index.folder("ABCDEFGH");
    index.add({.url = "http://host/a.htm",
               .fileSize = static_cast<std::uint32_t>(page.size()),
               .folder = 0,
               .fileName = "a[1].htm",
               .headers = "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n"});
    fs::create_directories(folder / "ABCDEFGH");
    writeWhole(folder / "index.dat", index.bytes());
    writeWhole(folder / "ABCDEFGH" / "a[1].htm", page);
}

TEST_F(CliTest, extractWritesTheCachedContentAndNothingElse) {
    const std::string page = "<html><body>caf\xE9</body></html>";
    makeCache(evidence / "Content.IE5", page);
    ASSERT_EQ(cli({"import", project.string(), evidence.string()}).exit, 0);
    const fs::path out = folder.path() / "out.htm";
    const auto extract = [&](const fs::path &to) {
        return cli({"extract", project.string(), "1", to.string()});
    };
    const CliResult first = extract(out);
    EXPECT_EQ(first.exit, 0) << first.err;
    EXPECT_EQ(ByteView(readWhole(out)).raw(), page);
    EXPECT_EQ(extract(out).exit, 1); // it is there already
    EXPECT_EQ(extract("-").out, page);
    EXPECT_EQ(extract(evidence / "new.htm").exit, 1);
    EXPECT_FALSE(fs::exists(evidence / "new.htm"));
    EXPECT_EQ(cli({"extract", project.string(), "99", out.string(), "--overwrite"}).exit, 1);
    fs::remove(evidence / "Content.IE5" / "ABCDEFGH" / "a[1].htm");
    const CliResult gone = cli({"extract", project.string(), "1", out.string(), "--overwrite"});
    EXPECT_EQ(gone.exit, 2);
    EXPECT_NE(gone.err.find("a[1].htm"), std::string::npos) << gone.err;
    EXPECT_EQ(ByteView(readWhole(out)).raw(), page);
}

TEST_F(CliTest, showGivesHttpHeadersOneALine) {
    makeCache(evidence / "Content.IE5", "page");
    ASSERT_EQ(cli({"import", project.string(), evidence.string()}).exit, 0);
    const CliResult show = cli({"show", project.string(), "1"});
    EXPECT_NE(show.out.find("HTTP/1.1 200 OK\n" + std::string(24, ' ') + "Content-Type"),
              std::string::npos)
        << show.out;
}

TEST_F(CliTest, asReadsAFileUnderAnotherName) {
    const fs::path renamed = evidence / "0001.bin";
    makeChromeHistory(renamed, 3);
    EXPECT_EQ(cli({"dump", renamed.string()}).exit, 2);
    EXPECT_EQ(cli({"dump", renamed.string(), "--as", "chrome-history"}).exit, 0);
    const CliResult run =
        cli({"import", project.string(), renamed.string(), "--as", "chrome-history"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_NE(run.out.find("3 rows"), std::string::npos) << run.out;
    EXPECT_EQ(cli({"import", project.string(), evidence.string(), "--as", "chrome-history"}).exit,
              1);
    EXPECT_EQ(cli({"import", project.string(), renamed.string(), "--as", "nonsense"}).exit, 1);
}

TEST_F(CliTest, ctrlCKeepsWhatWasWritten) {
    makeChromeHistory(evidence / "Chrome" / "History", 300'000);
    CliProcess import({"import", project.string(), evidence.string(), "--format", "json"},
                      folder.path() / "home");
    while (!fs::exists(project) || fs::file_size(project) < 100'000)
        ::usleep(10'000);
    ::usleep(700'000);
    import.signal(SIGINT);
    const CliResult run = import.finish();
    ASSERT_EQ(run.exit, 130) << run.err;
    const json summary = json::parse(run.out);
    EXPECT_EQ(summary["artefacts"][0]["state"], "cancelled");
    SQLite::Database database(project.string());
    const int rows = database.execAndGet("SELECT count(*) FROM URLs").getInt();
    EXPECT_EQ(summary["totals"]["rows"], rows);
    EXPECT_LT(rows, 300'000);
    EXPECT_EQ(database.execAndGet("SELECT Successful FROM SourceFiles").getInt(), 0);
}

TEST_F(CliTest, aKilledImportLeavesASoundProjectWithAllButTheLastMoment) {
    makeChromeHistory(evidence / "Chrome" / "History", 300'000);
    CliProcess import({"import", project.string(), evidence.string()}, folder.path() / "home");
    const fs::path log = project.string() + "-wal";
    while (!fs::exists(log) || fs::file_size(log) < 5'000'000)
        ::usleep(10'000);
    ::usleep(300'000);
    import.signal(SIGKILL);
    EXPECT_EQ(import.finish().exit, 128 + SIGKILL);
    const CliResult count =
        cli({"query", project.string(), "SELECT count(*) AS n FROM URLs", "--format", "tsv"});
    ASSERT_EQ(count.exit, 0) << count.err;
    EXPECT_GT(std::stoi(count.out.substr(2)), 1000);
    SQLite::Database database(project.string());
    EXPECT_EQ(database.execAndGet("PRAGMA integrity_check").getString(), "ok");
}

} // namespace
} // namespace nv::test
