#include "MadeProject.h"
#include "views/limits/MovedEvidence.h"

namespace nv {
namespace {

struct MovedEvidenceTest : testing::Test, test::MadeProject {
    std::optional<std::int64_t> mend(std::string_view root) {
        return mendRootPath(db(), log, root, task);
    }
    std::int64_t addRow(const std::string &root, const std::string &index) {
        return add(
            {{"RootPath", root}, {"CacheFileRelativePath", "a/b.htm"}, {"HistoryFilePath", index}});
    }
    Unwatched task;
};

TEST_F(MovedEvidenceTest, rowsFollowTheBaseFolderWithTheirPaths) {
    const auto id = addRow("/old/case/", "/old/case/a/index.dat");
    EXPECT_EQ(mend("/new"), 1);
    EXPECT_EQ(fieldOf(id, "RootPath"), "/new/");
    EXPECT_EQ(fieldOf(id, "HistoryFilePath"), "/new/a/index.dat");
    EXPECT_EQ(fieldOf(id, "CacheFileRelativePath"), "a/b.htm");
    EXPECT_EQ(mend("/new"), 0);
}

TEST_F(MovedEvidenceTest, filesOutsideOfTheBaseFolderStayWhereTheyAre) {
    const auto id = addRow("/", "/elsewhere/index.dat");
    EXPECT_EQ(mend("/new"), 0);
    EXPECT_EQ(fieldOf(id, "RootPath"), "/");
    EXPECT_EQ(fieldOf(id, "HistoryFilePath"), "/elsewhere/index.dat");
}

TEST_F(MovedEvidenceTest, noBaseFolderMendsNothing) {
    const auto id = addRow("/old/", "/old/index.dat");
    EXPECT_EQ(mend(""), 0);
    EXPECT_EQ(mend("/"), 0);
    EXPECT_EQ(fieldOf(id, "RootPath"), "/old/");
}

TEST_F(MovedEvidenceTest, rowsOfALaterImportAreSeenToo) {
    addRow("/old/", "/old/index.dat");
    EXPECT_EQ(mend("/new"), 1);
    const auto later = addRow("/third/", "/third/index.dat");
    EXPECT_EQ(mend("/new"), 1);
    EXPECT_EQ(fieldOf(later, "RootPath"), "/new/");
    EXPECT_EQ(mend("/old"), 2) << "and back again";
}

TEST_F(MovedEvidenceTest, foldersThatDifferInCaseAreTwo) {
    const auto id = addRow("/Case/", "/Case/index.dat");
    EXPECT_EQ(mend("/case"), 1);
    EXPECT_EQ(fieldOf(id, "HistoryFilePath"), "/case/index.dat");
}

} // namespace
} // namespace nv
