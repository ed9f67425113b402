#include "app/project/DroppedPaths.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using Paths = std::vector<fs::path>;

struct DroppedPathsTest : testing::Test {
    /// What was refused and why.
    static std::vector<std::pair<std::string, std::string>> refused(const DroppedPaths &dropped) {
        std::vector<std::pair<std::string, std::string>> all;
        for (const NotTaken &thing : dropped.notTaken)
            all.emplace_back(fs::path(thing.what).filename().string(), thing.why);
        return all;
    }
    test::TempFolder folder;
    fs::path disk = folder.write("disk/index.dat", "x").parent_path();
    fs::path file = folder.write("loose.dat", "x");
};

TEST_F(DroppedPathsTest, foldersAndFilesAreEvidenceEachOnce) {
    const DroppedPaths dropped = sortDropped({disk, file, disk / "..", disk / ".", file});
    EXPECT_EQ(dropped.evidence,
              (Paths{fs::canonical(disk), fs::canonical(file), fs::canonical(folder.path())}));
    EXPECT_FALSE(dropped.project);
    EXPECT_TRUE(dropped.notTaken.empty());
}

TEST_F(DroppedPathsTest, aProjectIsToBeOpenedAndOnlyOne) {
    const fs::path first = folder.write("a.nvp", "x");
    const fs::path second = folder.write("b.NVP", "x");
    const DroppedPaths dropped = sortDropped({first, disk, second, first});
    EXPECT_EQ(dropped.project, fs::canonical(first));
    EXPECT_EQ(dropped.evidence, Paths{fs::canonical(disk)});
    EXPECT_EQ(refused(dropped), (std::vector<std::pair<std::string, std::string>>{
                                    {"b.NVP", "is another project: one is opened at a time"}}));
}

TEST_F(DroppedPathsTest, whatIsGoneOrCannotBeReadIsRefusedWithItsReason) {
    const fs::path pipe = folder.path() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    fs::create_symlink("nowhere", folder.path() / "broken");
    fs::create_directory_symlink(disk, folder.path() / "link");
    fs::create_symlink("loop", folder.path() / "loop");
    const DroppedPaths dropped =
        sortDropped({folder.path() / "gone", pipe, folder.path() / "broken", folder.path() / "link",
                     folder.path() / "loop"});
    EXPECT_EQ(dropped.evidence, Paths{fs::canonical(disk)});
    ASSERT_EQ(dropped.notTaken.size(), 4u);
    EXPECT_EQ(refused(dropped)[0].second, "is no longer there");
    EXPECT_EQ(refused(dropped)[1].second, "is no plain file and no folder");
    EXPECT_EQ(refused(dropped)[2].second, "is no longer there");
    EXPECT_THAT(refused(dropped)[3].second, HasSubstr("can't be looked at: "));
}

TEST_F(DroppedPathsTest, aThousandRefusalsAreToldInAFewLines) {
    std::vector<NotTaken> things(1000, {"a\nb", "is no longer there"});
    const std::string text = notTakenText(things);
    EXPECT_EQ(std::ranges::count(text, '\n'), 9);
    EXPECT_THAT(text, HasSubstr("and 992 more"));
    EXPECT_EQ(notTakenText({}), "");
}

} // namespace
} // namespace nv
