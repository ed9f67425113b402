#include "cli/CliCase.h"
#include "support/SmallFiles.h"

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

    const std::string kPage = "<html><title>T</title><img src=\"a.gif\" >" +
                              std::string(std::size_t{300} << 10, 'x') + "</html>";
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

TEST_F(OutputCliTest, contentThatDoesntFitTheDiskLeavesWhatWasThere) {
    const fs::path place = folder.path() / "pages" / "page.htm";
    fs::create_directories(place.parent_path());
    const auto extract = [&] {
        const SmallFiles full(std::size_t{200} << 10);
        const CliResult run = cli({"extract", project, "1", place.string(), "--overwrite"});
        EXPECT_EQ(run.exit, 3);
        EXPECT_THAT(run.err, HasSubstr("on the disk \""));
    };
    extract();
    EXPECT_TRUE(fs::is_empty(place.parent_path()));
    writeWhole(place, "of before");
    extract();
    EXPECT_EQ(text(place), "of before");
    EXPECT_EQ(cli({"extract", project, "1", place.string(), "--overwrite"}).exit, 0);
    EXPECT_EQ(text(place), kPage);
}

TEST_F(OutputCliTest, aFolderOfTheExaminersIsNoLeftover) {
    const fs::path pages = folder.path() / "pages";
    folder.write("pages/0000001.NVR.~new/notes.txt", "mine");
    const CliResult run = cli({"rebuild", project, "1", "--out", pages.string()});
    EXPECT_EQ(run.exit, 0) << run.out << run.err;
    EXPECT_EQ(text(pages / "0000001.NVR.~new" / "notes.txt"), "mine");
    EXPECT_TRUE(fs::exists(pages / "0000001.NVR" / "0000001.htm"));
    EXPECT_FALSE(fs::exists(pages / "0000001.NVR.~new2"));
}

TEST_F(OutputCliTest, aDumpOfACacheAsAHistoryIsWarnedOf) {
    const std::string index = (evidence / "index.dat").string();
    const CliResult wrong = cli({"dump", index, "--as", "ie-history"});
    EXPECT_THAT(wrong.err, HasSubstr("read as a history, but it lists cache folders"));
    EXPECT_EQ(cli({"dump", index, "--as", "ie-cache"}).err, "");
}

} // namespace
} // namespace nv::test
