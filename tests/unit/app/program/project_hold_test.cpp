#include "app/program/ProjectHold.h"
#include "base/Files.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <gmock/gmock.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

struct ProjectHoldTest : testing::Test {
    std::unique_ptr<ProjectHold> hold(Front front) const {
        return std::make_unique<ProjectHold>(project, front, clock);
    }
    test::TempFolder folder;
    test::FixedClock clock;
    fs::path project = folder.path() / "case.nvp";
    fs::path beside = folder.path() / "case.nvp-open";
};

TEST_F(ProjectHoldTest, aWindowKeepsEverybodyElseOutUntilItGoes) {
    auto window = hold(Front::window);
    EXPECT_TRUE(fs::exists(beside));
    EXPECT_TRUE(holderOf(project, Front::window));
    EXPECT_TRUE(holderOf(project, Front::headless));
    EXPECT_THROW(hold(Front::window), StorageFailure);
    EXPECT_THROW(hold(Front::headless), StorageFailure);
    window.reset();
    EXPECT_FALSE(holderOf(project, Front::window));
    EXPECT_FALSE(fs::exists(beside)) << "nothing stays beside a closed project";
}

TEST_F(ProjectHoldTest, commandLinesHoldItTogether) {
    auto first = hold(Front::headless);
    auto second = hold(Front::headless);
    EXPECT_TRUE(holderOf(project, Front::window));
    EXPECT_FALSE(holderOf(project, Front::headless));
    first.reset();
    EXPECT_TRUE(fs::exists(beside)) << "the second one is still there";
    EXPECT_THROW(hold(Front::window), StorageFailure);
    second.reset();
    EXPECT_FALSE(fs::exists(beside));
}

TEST_F(ProjectHoldTest, tellsWhoHasItSinceWhen) {
    const auto window = hold(Front::window);
    const std::string who = holderOf(project, Front::headless).value_or("");
    EXPECT_THAT(who, HasSubstr("in a window (process " + std::to_string(::getpid()) + ")"));
    EXPECT_THAT(who, testing::ContainsRegex(", since [0-9]{4}-[0-9]{2}-[0-9]{2} [0-9:]{8}"));
    try {
        hold(Front::window);
        FAIL();
    } catch (const StorageFailure &failure) {
        EXPECT_THAT(failure.what(), HasSubstr(who));
        EXPECT_THAT(failure.what(), HasSubstr("case.nvp"));
    }
}

TEST_F(ProjectHoldTest, whatAKilledProcessLeftHoldsNothing) {
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const auto window = hold(Front::window);
        (void)!::write(ready[1], "x", 1);
        ::pause();
        ::_exit(0);
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_TRUE(holderOf(project, Front::window));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    EXPECT_TRUE(fs::exists(beside));
    EXPECT_FALSE(holderOf(project, Front::window));
    hold(Front::window).reset();
    EXPECT_FALSE(fs::exists(beside));
    ::close(ready[0]);
    ::close(ready[1]);
}

TEST_F(ProjectHoldTest, theSameFileByAnotherPathIsTheSameProject) {
    folder.write("case.nvp", "x");
    fs::create_symlink(project, folder.path() / "link.nvp");
    const auto window = hold(Front::window);
    EXPECT_TRUE(holderOf(folder.path() / "link.nvp", Front::window));
    EXPECT_TRUE(holderOf(folder.path() / "." / "case.nvp", Front::window));
}

TEST_F(ProjectHoldTest, whereNothingCanBeMadeNobodyIsKeptOut) {
    const ProjectHold none(folder.path() / "none" / "case.nvp", Front::window, clock);
    EXPECT_FALSE(holderOf(folder.path() / "none" / "case.nvp", Front::window));
}

} // namespace
} // namespace nv
