#include "cli/DamagedProject.h"

#include <gmock/gmock.h>

namespace nv::test {
namespace {

using testing::HasSubstr;

/// Whatever goes over the whole table URLs, on a project one page of which is broken.
class DamagedPageCliTest : public DamagedProjectCase {};

TEST_F(DamagedPageCliTest, showNamesTheRowAndTheFile) {
    makeProject();
    const std::vector<int> broken = breakLeaf();
    for (const char *format : {"table", "jsonl"}) {
        const CliResult run = cli({"show", project, std::to_string(broken[0]), "--format", format});
        EXPECT_EQ(run.exit, 3) << format;
        EXPECT_THAT(run.err, HasSubstr(fmt::format("row {} can't be read: \"{}\" is damaged",
                                                   broken[0], project)));
    }
    EXPECT_EQ(cli({"show", project, std::to_string(broken[0] - 1)}).exit, 0);
}

TEST_F(DamagedPageCliTest, hostsCountTheRowsThatCanBeRead) {
    makeProject();
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("UPDATE URLs SET Host = 'OTHER', Visits = 2 WHERE URL_ID > 2000; "
              "UPDATE URLs SET Host = 'other' WHERE URL_ID > 2500");
    const std::vector<int> broken = breakLeaf();
    for (const bool indexed : {true, false}) {
        if (!indexed)
            SQLite::Database(project, SQLite::OPEN_READWRITE).exec("DROP INDEX URLDateIndex");
        const CliResult run = cli({"hosts", project, "--format", "csv"});
        EXPECT_EQ(run.exit, 2);
        EXPECT_THAT(run.err, HasSubstr(named(broken)));
        EXPECT_THAT(run.err, HasSubstr("no host counts them"));
        const auto lines = linesOf(run.out);
        ASSERT_EQ(lines.size(), 3u);
        EXPECT_EQ(lines[1], fmt::format("host,0,{}", 2000 - broken.size()));
        EXPECT_EQ(lines[2].substr(5), ",2000,1000");
    }
}

} // namespace
} // namespace nv::test
