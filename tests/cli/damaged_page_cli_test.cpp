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

} // namespace
} // namespace nv::test
