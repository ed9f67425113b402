#include "cli/CliCase.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace nv::test {
namespace {

using nlohmann::json;
using testing::HasSubstr;

/// A cache of alice's and one record of it with facts.
class FactsCliTest : public CliCase {
  protected:
    FactsCliTest() {
        evidence = folder.path() / "evidence/Documents and Settings/alice/Local Settings/"
                                   "Temporary Internet Files/Content.IE5";
        IndexDat index;
        index.folder("ABCDEFGH");
        index.add({.url = "http://a.example/", .fileSize = 6, .folder = 0, .fileName = "a"});
        index.add({.url = "http://b.example/", .fileSize = 6, .folder = 0, .fileName = "b"});
        import(index);
        SQLite::Database(project, SQLite::OPEN_READWRITE)
            .exec("INSERT INTO RecordFacts VALUES (1, 'transition', 'typed', 33554433), "
                  "(1, 'count', 12, NULL), (2, 'count', 5, NULL)");
    }
    json only(const std::vector<std::string> &call) {
        const CliResult run = cli(call);
        EXPECT_EQ(run.exit, 0) << run.err;
        return json::parse(run.out);
    }
};

TEST_F(FactsCliTest, showListsThem) {
    const std::string people = cli({"show", project, "1"}).out;
    EXPECT_THAT(people, HasSubstr("transition              typed [33554433]\n"));
    EXPECT_THAT(people, HasSubstr("Person                  alice\n"));
    const json record = only({"show", project, "1", "--format", "jsonl"});
    EXPECT_EQ(record.at("facts"), json::parse(R"({"transition":"typed","count":12})"));
    EXPECT_EQ(record.at("facts_raw"), json::parse(R"({"transition":33554433})"));
    EXPECT_EQ(record.at("Browser"), "Internet Explorer");
}

TEST_F(FactsCliTest, queriesAskForThem) {
    const json row =
        only({"query", project, "SELECT URL_ID, Fact('count') FROM URLs WHERE Fact('count') > 5",
              "--format", "jsonl"});
    EXPECT_EQ(row, json::parse(R"({"URL_ID":1,"count":12})"));
    const CliResult wrong = cli({"query", project, "SELECT Fact('cuont') FROM URLs"});
    EXPECT_EQ(wrong.exit, 1);
    EXPECT_THAT(wrong.err, HasSubstr("the nearest is 'count'"));
}

TEST_F(FactsCliTest, exportsHoldThem) {
    const std::string file = (folder.path() / "rows.jsonl").string();
    ASSERT_EQ(cli({"export", project, file}).exit, 0);
    EXPECT_THAT(text(file), HasSubstr(R"("facts":{"transition":"typed","count":12})"));
}

TEST_F(FactsCliTest, listsShowAndChooseWhoseRecordsTheyAre) {
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("UPDATE URLs SET Person = 'bob' WHERE URL_ID = 2");
    const CliResult run = cli({"list", project, "--filter", "person=bob", "--columns",
                               "browser,person,url", "--format", "tsv"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_EQ(run.out, "browser\tperson\turl\n"
                       "Internet Explorer\tbob\thttp://b.example/\n");
    EXPECT_THAT(run.err, HasSubstr("filters hide 1 of 2 rows"));
    const CliResult wrong = cli({"list", project, "--filter", "colour=red"});
    EXPECT_EQ(wrong.exit, 1);
    EXPECT_THAT(wrong.err, HasSubstr("person=..."));
}

TEST_F(FactsCliTest, aProjectOfTheVersionBeforeIsListedAndUpgraded) {
    {
        SQLite::Database old(project, SQLite::OPEN_READWRITE);
        old.exec("PRAGMA legacy_alter_table = ON; DROP TABLE RecordFacts; "
                 "DROP INDEX IF EXISTS URLTimeIndex");
        for (const char *column : {"Browser", "Profile", "Person"})
            old.exec(std::string("ALTER TABLE URLs DROP COLUMN ") + column);
    }
    const CliResult list = cli({"list", project, "--format", "csv"});
    EXPECT_EQ(list.exit, 0) << list.err;
    EXPECT_THAT(list.out, HasSubstr("http://a.example/"));
    EXPECT_THAT(list.err, HasSubstr("upgrade"));
    EXPECT_EQ(cli({"show", project, "1"}).exit, 0);
    const CliResult refused = cli({"import", project, evidence.string()});
    EXPECT_EQ(refused.exit, 3);
    EXPECT_THAT(refused.err, HasSubstr("upgrade --fix"));
    ASSERT_EQ(cli({"upgrade", project, "--fix"}).exit, 0);
    EXPECT_EQ(cli({"import", project, evidence.string()}).exit, 0);
}

} // namespace
} // namespace nv::test
