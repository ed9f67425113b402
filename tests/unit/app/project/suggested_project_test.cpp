#include "app/project/SuggestedProject.h"
#include "app/settings/Settings.h"
#include "base/Files.h"
#include "unit/app/ProgramFixture.h"

namespace nv::test {
namespace {

namespace fs = std::filesystem;

struct SuggestedProjectTest : ProgramFixture {
    SuggestedProjectTest() {
        start();
        fs::create_directories(cases / "ada");
        fs::create_directories(cases / "bob");
        rememberText(program->settings, "Project", textOf(folder.path() / "home"));
    }
    std::string suggested(const std::vector<fs::path> &evidence) const {
        return textOf(suggestedProject(*program, evidence).lexically_relative(folder.path()));
    }

    const fs::path cases = folder.path() / "cases";
};

TEST_F(SuggestedProjectTest, itLiesBesideTheEvidenceAndIsCalledAfterItAndTheDay) {
    EXPECT_EQ(suggested({cases / "ada"}), "cases/ada 2011-06-15.nvp");
    folder.write("cases/ada/History", "x");
    EXPECT_EQ(suggested({cases / "ada" / "History"}), "cases/ada 2011-06-15.nvp");
    clock.offset = std::chrono::hours(13);
    EXPECT_EQ(suggested({cases / "ada"}), "cases/ada 2011-06-16.nvp") << "the examiner's day";
}

TEST_F(SuggestedProjectTest, itIsNoneThatIsThere) {
    folder.write("cases/ada 2011-06-15.nvp", "x");
    folder.write("cases/ada 2011-06-15 (2).nvp", "x");
    EXPECT_EQ(suggested({cases / "ada"}), "cases/ada 2011-06-15 (3).nvp");
}

TEST_F(SuggestedProjectTest, ofSeveralItLiesOutsideOfWhatTheyHaveInCommon) {
    EXPECT_EQ(suggested({cases / "ada", cases / "bob"}), "ada and 1 more 2011-06-15.nvp");
    EXPECT_EQ(suggested({cases / "ada", folder.path() / "home"}),
              "../ada and 1 more 2011-06-15.nvp")
        << "that folder can be written too";
}

TEST_F(SuggestedProjectTest, itNeverLiesInTheEvidence) {
    for (const std::vector<fs::path> &evidence : std::vector<std::vector<fs::path>>{
             {cases}, {cases / "ada"}, {cases / "ada", cases}, {folder.path() / "home"}}) {
        const fs::path project = suggestedProject(*program, evidence);
        ASSERT_FALSE(project.empty());
        for (const fs::path &place : evidence)
            EXPECT_EQ(*project.lexically_relative(place).begin(), "..")
                << project << " lies in " << place;
    }
}

/// A machine that is examined by itself has the program's own folders among its evidence.
TEST_F(SuggestedProjectTest, aWholeMachineHasNothingBesideIt) {
    EXPECT_EQ(suggested({"/"}), "home/Evidence 2011-06-15.nvp");
}

TEST_F(SuggestedProjectTest, withoutEvidenceThereIsNoName) {
    EXPECT_TRUE(suggestedProject(*program, {}).empty());
    EXPECT_TRUE(suggestedProject(*program, {cases / "gone"}).empty());
}

/// A mounted disk is to stay as it is.
TEST_F(SuggestedProjectTest, anotherDiskIsLeftAlone) {
    if (!fs::exists("/proc/self/fd"))
        GTEST_SKIP() << "no other file system is mounted";
    EXPECT_EQ(suggested({"/proc/self/fd"}), "home/fd 2011-06-15.nvp");
}

TEST_F(SuggestedProjectTest, namesOfEvidenceBecomePlainOnes) {
    const auto called = [this](const std::string &name) {
        fs::create_directories(cases / name);
        return textOf(suggestedProject(*program, {cases / name}).filename());
    };
    EXPECT_EQ(called(".mozilla"), "mozilla 2011-06-15.nvp");
    EXPECT_EQ(called("a\nb\x1B"), "a\u240Ab\u241B 2011-06-15.nvp");
    EXPECT_EQ(called("a\"<b>"), "a__b_ 2011-06-15.nvp");
    EXPECT_EQ(called("..."), "Evidence 2011-06-15.nvp");
    EXPECT_EQ(called("\u00FCber"), "\u00FCber 2011-06-15.nvp");
    const std::string longest(250, 'x');
    EXPECT_EQ(called(longest), std::string(40, 'x') + " 2011-06-15.nvp");
}

} // namespace
} // namespace nv::test
