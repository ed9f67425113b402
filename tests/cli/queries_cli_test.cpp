#include "cli/CliCase.h"

#include <gmock/gmock.h>

namespace nv::test {
namespace {

using testing::HasSubstr;
using testing::Not;

/// A project of one imported row, and the commands that change its stored queries.
class QueriesCliTest : public CliCase {
  protected:
    QueriesCliTest() {
        IndexDat index;
        index.add({.url = "http://host.example/"});
        const auto file = folder.write("evidence/index.dat", index.bytes());
        EXPECT_EQ(cli({"import", project, file.string()}).exit, 0);
    }
    CliResult save(const std::string &name, const std::string &sql) {
        return cli({"queries", "save", project, name, sql});
    }
};

TEST_F(QueriesCliTest, aQueryIsSavedShownRunAndDeleted) {
    const CliResult saved = save("Mine", "SELECT *\r\nFROM URLs WHERE Host = 'host.example'");
    ASSERT_EQ(saved.exit, 0) << saved.err;
    EXPECT_EQ(saved.out, "\"Mine\" saved\n");
    EXPECT_EQ(cli({"queries", "show", project, "mine"}).out,
              "SELECT * FROM URLs WHERE Host = 'host.example'\n");
    EXPECT_THAT(cli({"queries", project, "--format", "tsv"}).out, HasSubstr("Mine\tSELECT"));
    EXPECT_THAT(cli({"list", project, "--query", "Mine"}).out, HasSubstr("host.example"));
    EXPECT_EQ(cli({"queries", "delete", project, "Mine"}).out, "\"Mine\" deleted\n");
    EXPECT_THAT(cli({"queries", project}).out, Not(HasSubstr("Mine")));
    const CliResult gone = cli({"queries", "show", project, "Mine"});
    EXPECT_EQ(gone.exit, 1);
    EXPECT_THAT(gone.err, HasSubstr("no stored query \"Mine\""));
    EXPECT_EQ(cli({"queries", "delete", project, "Mine"}).exit, 1);
}

TEST_F(QueriesCliTest, aQueryWhoseRowsCantBeListedSaysWhy) {
    ASSERT_EQ(save("Hosts", "SELECT Host FROM URLs").exit, 0);
    const CliResult listed = cli({"list", project, "--query", "Hosts"});
    EXPECT_EQ(listed.exit, 3);
    EXPECT_EQ(listed.out, "");
    EXPECT_THAT(listed.err, HasSubstr("Error Loading Cache: no such column: URL_ID"));
}

TEST_F(QueriesCliTest, aNameThatIsTakenNeedsOverwrite) {
    ASSERT_EQ(save("Mine", "SELECT * FROM URLs").exit, 0);
    const CliResult again = save("MINE", "SELECT * FROM URLs WHERE Visits > 3");
    EXPECT_EQ(again.exit, 1);
    EXPECT_THAT(again.err, HasSubstr("--overwrite"));
    EXPECT_EQ(cli({"queries", "show", project, "Mine"}).out, "SELECT * FROM URLs\n");
    EXPECT_EQ(cli({"queries", "save", "--overwrite", project, "Mine",
                   "SELECT * FROM URLs WHERE Visits > 3"})
                  .exit,
              0);
    EXPECT_THAT(cli({"queries", "show", project, "Mine"}).out, HasSubstr("Visits"));
}

TEST_F(QueriesCliTest, reservedNamesAndBadStatementsAreRefused) {
    const CliResult reserved = save("_default", "SELECT * FROM URLs");
    EXPECT_EQ(reserved.exit, 1);
    EXPECT_THAT(reserved.err, HasSubstr("This is a reserved query"));
    EXPECT_EQ(cli({"queries", "delete", project, "_Tagged Items"}).exit, 1);
    for (const char *sql :
         {"DELETE FROM URLs", "SELECT colour FROM URLs", "", "SELECT 1; SELECT 2"}) {
        const CliResult bad = save("Mine", sql);
        EXPECT_EQ(bad.exit, 1) << sql;
        EXPECT_THAT(bad.err, HasSubstr("The current query statement is invalid.")) << sql;
    }
    EXPECT_EQ(save("URLs", "SELECT * FROM SourceFiles").exit, 1);
    EXPECT_EQ(save(" ", "SELECT * FROM URLs").exit, 1);
    EXPECT_THAT(cli({"list", project}).out, HasSubstr("host.example"));
}

TEST_F(QueriesCliTest, wordsThatAreMissingAreTold) {
    EXPECT_EQ(cli({"queries"}).exit, 1);
    EXPECT_EQ(cli({"queries", "save", project, "Mine"}).exit, 1);
    EXPECT_EQ(cli({"queries", "show", project}).exit, 1);
    EXPECT_EQ(cli({"queries", "show", (folder.path() / "none.nvp").string(), "x"}).exit, 3);
    EXPECT_THAT(cli({"queries", "--help"}).out, HasSubstr("save"));
}

} // namespace
} // namespace nv::test
