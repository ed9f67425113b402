#include "cli/CliCase.h"
#include "db/sql/ReadOnlyConnection.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>

namespace nv::test {
namespace {

using testing::HasSubstr;
using testing::Not;

struct ZonesCliTest : CliCase {
    ZonesCliTest() {
        IndexDat index;
        index.add({.url = "Visited: mara@http://a.example/",
                   .firstDate = fileTime(2011, 3, 1, 12),
                   .secondDate = fileTime(2011, 3, 1, 12)});
        folder.write("evidence/index.dat", index.bytes());
    }
    CliResult importWith(std::vector<std::string> more) {
        std::vector<std::string> words = {"import", project, evidence.string()};
        words.insert(words.end(), more.begin(), more.end());
        return cli(words);
    }
    /// Seconds between the stored dates of the row.
    double storedOffset() {
        const auto database = openReadOnly(project);
        return database
            ->execAndGet("SELECT round((ActionDateLocal - ActionDateUTC) * 86400) FROM URLs")
            .getDouble();
    }
};

TEST_F(ZonesCliTest, anImportTakesAnExactZoneByName) {
    ASSERT_EQ(importWith({"--zone", "Asia/Kathmandu"}).exit, 0);
    EXPECT_EQ(storedOffset(), 20700);
    const CliResult rows =
        cli({"list", project, "--format", "csv", "--columns", "action_date_local"});
    EXPECT_THAT(rows.out, HasSubstr("+05:45"));
    EXPECT_THAT(cli({"show", project, "1"}).out, HasSubstr("[+0545 +0545]"));
    EXPECT_THAT(cli({"trail", project, "--format", "tsv"}).out,
                HasSubstr("Asia/Kathmandu, zoneinfo 20"));
}

TEST_F(ZonesCliTest, aLaterImportInAnotherExactZoneMovesAllRows) {
    ASSERT_EQ(importWith({"--zone", "Asia/Kathmandu"}).exit, 0);
    ASSERT_EQ(importWith({"--zone", "Etc/GMT+5"}).exit, 0);
    EXPECT_EQ(storedOffset(), -18000);
}

TEST_F(ZonesCliTest, aZoneThatIsNotKnownIsRefusedBeforeAnythingIsMade) {
    const CliResult mistyped = importWith({"--zone", "Europe/Berln"});
    EXPECT_EQ(mistyped.exit, 1);
    EXPECT_THAT(mistyped.err, HasSubstr("Europe/Berlin"));
    for (const char *name : {"../../etc/passwd", "M\xC3\xBCnchen", "\xFF", "9999", "-1"})
        EXPECT_EQ(importWith({std::string("--zone=") + name}).exit, 1) << name;
    EXPECT_FALSE(std::filesystem::exists(project));
}

TEST_F(ZonesCliTest, theExactZonesAreListed) {
    const CliResult zones = cli({"zones", "--exact", "--format", "csv"});
    EXPECT_EQ(zones.exit, 0) << zones.err;
    EXPECT_THAT(zones.out, HasSubstr("\nAsia/Kolkata,+0530,IST,20"));
    EXPECT_THAT(zones.out, Not(HasSubstr("posix/")));
    EXPECT_THAT(cli({"zones"}).out, Not(HasSubstr("Asia/Kolkata")));
}

TEST_F(ZonesCliTest, whatTheEvidenceNamesIsTold) {
    folder.write("evidence/etc/timezone", "America/Sao_Paulo\n");
    EXPECT_THAT(importWith({}).err, HasSubstr("America/Sao_Paulo"));
    EXPECT_THAT(importWith({"--zone", "America/Sao_Paulo"}).err,
                Not(HasSubstr("the evidence names")));
    EXPECT_THAT(importWith({}).err, Not(HasSubstr("the evidence names"))) << "the project has it";
}

} // namespace
} // namespace nv::test
