#include "cli/CliCase.h"

#include <gmock/gmock.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

/// Files that commands write, where something may be lost. The cache holds one page, row 1.
class OutputCliTest : public CliCase {
  protected:
    OutputCliTest() {
        IndexDat index;
        index.folder("ABCDEFGH");
        addCached(index, "http://host/page.htm", "page[1].htm", kPage);
        import(index);
    }

    const std::string kPage =
        "<html><title>T</title>" + std::string(std::size_t{300} << 10, 'x') + "</html>";
};

TEST_F(OutputCliTest, nothingIsWrittenOverAProject) {
    fs::create_hard_link(project, folder.path() / "linked.htm");
    const std::string before = text(project);
    const std::string other = folder.write("other.NVP", "of another case").string();
    const std::string log = folder.write("case.nvp-wal", "").string();
    for (const std::string &target :
         {project, other, log, (folder.path() / "linked.htm").string()}) {
        const CliResult run = cli({"extract", project, "1", target, "--overwrite"});
        EXPECT_EQ(run.exit, 1) << target;
        EXPECT_THAT(run.err, HasSubstr("nothing is written over it"));
    }
    const std::string sheet = (folder.path() / "linked.html").string();
    fs::create_hard_link(project, sheet);
    EXPECT_EQ(cli({"gallery", project, "--out", sheet, "--overwrite"}).exit, 1);
    EXPECT_EQ(text(project), before);
    EXPECT_TRUE(fs::equivalent(sheet, project));
    EXPECT_EQ(text(other), "of another case");
}

} // namespace
} // namespace nv::test
