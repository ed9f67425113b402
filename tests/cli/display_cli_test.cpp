#include "cli/CliCase.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

/// What commands show of the same record, and how they compare it.
class DisplayCliTest : public CliCase {
  protected:
    DisplayCliTest() {
        IndexDat index;
        index.add({.url = "Visited: mara@http://a.example/photo%E2%80%AEgnp.exe",
                   .secondDate = fileTime(2011, 3, 1, 12)});
        artefact = folder.write("evidence/History.IE5/index.dat", index.bytes());
        const CliResult run = cli({"import", project, evidence.string()});
        EXPECT_EQ(run.exit, 0) << run.err;
    }
    void change(const std::string &sql) {
        SQLite::Database(project, SQLite::OPEN_READWRITE).exec(sql);
    }
    std::string csv(const std::string &sql) {
        return cli({"query", project, sql, "--format", "csv"}).out;
    }

    fs::path artefact;
};

TEST_F(DisplayCliTest, marksOfDirectionAreShownTheSameByEveryCommand) {
    const std::vector<std::vector<std::string>> calls = {
        {"list", project},
        {"show", project, "1"},
        {"query", project, "SELECT URL FROM URLs"},
        {"dump", artefact.string(), "--as", "ie-history"}};
    for (const auto &call : calls) {
        const CliResult run = cli(call);
        EXPECT_EQ(run.exit, 0) << call.front() << run.err;
        EXPECT_THAT(run.out, AllOf(HasSubstr("photo<U+202E>gnp.exe"), Not(HasSubstr("\u202E"))))
            << call.front();
    }
    EXPECT_THAT(csv("SELECT URL FROM URLs"), HasSubstr("photo\u202Egnp.exe"))
        << "what programs read stays as it is stored";
}

TEST_F(DisplayCliTest, visitsThatNobodyCountedAreBlankEverywhere) {
    EXPECT_THAT(csv("SELECT Visits FROM URLs"), Not(HasSubstr("\n\r\n")));
    change("UPDATE URLs SET Visits = -1");
    EXPECT_EQ(csv("SELECT URL_ID, Visits AS Seen FROM URLs"), "URL_ID,Seen\r\n1,\r\n");
    EXPECT_EQ(csv("SELECT URL_ID FROM URLs WHERE Visits = -1"), "URL_ID\r\n1\r\n");
    EXPECT_EQ(cli({"list", project, "--format", "csv", "--columns", "id,visit_count"}).out,
              "id,visit_count\r\n1,\r\n");
    EXPECT_EQ(
        cli({"list", project, "--format", "csv", "--dates-as-shown", "--columns", "id,visit_count"})
            .out,
        "id,visit_count\r\n1,\r\n");
    EXPECT_THAT(cli({"show", project, "1"}).out, HasSubstr("\nVisits                  \n"));
    EXPECT_THAT(cli({"show", project, "1", "--format", "jsonl"}).out, HasSubstr("\"Visits\":null"));
    EXPECT_EQ(cli({"export", project, "-", "--format", "csv", "--columns", "id,visit_count"}).out,
              "id,visit_count\r\n1,\r\n");
}

TEST_F(DisplayCliTest, columnsOfEqualNamesStayApart) {
    EXPECT_THAT(
        cli({"query", project, "SELECT URL_ID AS a, Host AS a FROM URLs", "--format", "jsonl"}).out,
        HasSubstr("{\"a\":1,\"a (2)\":\"a.example\"}"));
}

TEST_F(DisplayCliTest, systemObjectsOfOlderProjectsAreNoQueries) {
    change("INSERT INTO StoredQueries (Name, SQLText, Ordinal) VALUES "
           "('~sq_f', 'SELECT 1', 900), ('Mine', 'SELECT 1', 901)");
    const CliResult run = cli({"queries", project});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out, AllOf(HasSubstr("Mine"), Not(HasSubstr("~sq_f"))));
}

TEST_F(DisplayCliTest, equalFoldsLettersAsLikeDoesAndTheFileStaysInOrder) {
    change("UPDATE URLs SET Host = 'M\u00DCLLER_1'");
    EXPECT_EQ(csv("SELECT URL_ID FROM URLs WHERE Host = 'm\u00FCller_1'"), "URL_ID\r\n1\r\n");
    EXPECT_EQ(csv("SELECT URL_ID FROM URLs WHERE 'm\u00FCller_1' = Host"), "URL_ID\r\n1\r\n");
    EXPECT_EQ(csv("SELECT URL_ID FROM URLs WHERE Host <> 'm\u00FCller_1'"), "URL_ID\r\n");
    EXPECT_EQ(csv("SELECT URL_ID FROM URLs WHERE Host = 'm\u00FCllerx1'"), "URL_ID\r\n");
    EXPECT_EQ(
        cli({"queries", "save", project, "Q", "SELECT * FROM URLs WHERE Host = 'M\u00DCLLER_1'"})
            .exit,
        0);
    EXPECT_THAT(cli({"queries", "show", project, "Q"}).out, HasSubstr("Host = 'M\u00DCLLER_1'"));
    SQLite::Database plain(project, SQLite::OPEN_READONLY);
    EXPECT_EQ(plain.execAndGet("PRAGMA integrity_check").getString(), "ok");
    EXPECT_NO_THROW(plain.execAndGet("SELECT count(*) FROM Q"));
}

TEST_F(DisplayCliTest, aDateIsNotComparedWithAText) {
    for (const char *condition : {"ActionDateUTC > '2011-01-01'", "ActionDateUTC > Date()",
                                  "strftime('%Y', 'now') > ActionDateUTC"}) {
        const CliResult query =
            cli({"query", project, std::string("SELECT URL FROM URLs WHERE ") + condition});
        EXPECT_EQ(query.exit, 1) << condition;
        EXPECT_THAT(query.err, HasSubstr("#2011-03-01#")) << condition;
        EXPECT_EQ(cli({"tag", project, "--where", condition}).exit, 1) << condition;
    }
    EXPECT_EQ(csv("SELECT URL_ID FROM URLs WHERE ActionDateUTC > #2011-01-01#"), "URL_ID\r\n1\r\n");
}

} // namespace
} // namespace nv::test
