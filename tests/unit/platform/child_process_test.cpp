#include "platform/ChildProcess.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <stdexcept>
#include <unistd.h>

namespace nv {
namespace {

using namespace std::chrono_literals;
using End = ChildResult::End;

/// The shell stands for any program.
struct ChildProcessTest : testing::Test {
    ChildResult run(const std::string &script) {
        command.program = "/bin/sh";
        command.arguments = {"-c", script, "sh", "with blank", "$(no command)"};
        return runChild(
            command,
            [this](std::string_view line) {
                lines.emplace_back(line);
                return takes;
            },
            [this] { return goesOn; });
    }
    ChildCommand command;
    std::vector<std::string> lines;
    bool takes = true;
    bool goesOn = true;
};

TEST_F(ChildProcessTest, handsOnEachLine) {
    const ChildResult result = run("printf 'one\\n\\ntwo\\ncut'; echo said >&2; exit 3");
    EXPECT_EQ(lines, (std::vector<std::string>{"one", "", "two"}));
    EXPECT_EQ(result.end, End::exited);
    EXPECT_EQ(result.code, 3);
    EXPECT_EQ(result.errors, "said\n");
}

TEST_F(ChildProcessTest, givesArgumentsAsTheyStand) {
    run("for i; do echo \"$i\"; done");
    EXPECT_EQ(lines, (std::vector<std::string>{"with blank", "$(no command)"}));
}

TEST_F(ChildProcessTest, givesNoInputAndNoEnvironmentAndNoFiles) {
    const int open = ::dup(STDOUT_FILENO);
    run("read line || echo no input; echo \"$HOME$PWD_OF_EXAMINER\"; "
        "if [ -e /proc/$$/fd/" +
        std::to_string(open) + " ]; then echo open; fi");
    ::close(open);
    EXPECT_EQ(lines, (std::vector<std::string>{"no input", ""}));
}

TEST_F(ChildProcessTest, givesTheEnvironmentThatTheCommandNames) {
    command.environment = {"HOME=/a folder"};
    run("echo \"$HOME $LC_ALL\"");
    EXPECT_EQ(lines, (std::vector<std::string>{"/a folder C.UTF-8"}));
}

TEST_F(ChildProcessTest, takesWhatTheChildStartedAlong) {
    run("sleep 60 >/dev/null 2>&1 & echo $!");
    ASSERT_EQ(lines.size(), 1U);
    // It may be some time until the system has buried it.
    const pid_t grandchild = std::stoi(lines[0]);
    const auto isRunning = [grandchild] {
        std::ifstream file("/proc/" + std::to_string(grandchild) + "/stat");
        std::string pid;
        std::string name;
        std::string state;
        file >> pid >> name >> state;
        return !state.empty() && state != "Z";
    };
    const auto patience = std::chrono::steady_clock::now() + 10s;
    while (isRunning() && std::chrono::steady_clock::now() < patience)
        ::usleep(1000);
    EXPECT_FALSE(isRunning());
}

TEST_F(ChildProcessTest, tellsACrash) {
    const ChildResult result = run("echo one; kill -SEGV $$");
    EXPECT_EQ(result.end, End::crashed);
    EXPECT_EQ(result.code, SIGSEGV);
    EXPECT_EQ(lines.size(), 1U);
}

TEST_F(ChildProcessTest, tellsAMissingProgram) {
    command.program = "/nowhere/program";
    const ChildResult result = runChild(
        command, [](std::string_view) { return true; }, [] { return true; });
    EXPECT_EQ(result.end, End::notStarted);
    EXPECT_EQ(result.code, ENOENT);
}

TEST_F(ChildProcessTest, killsASilentChild) {
    command.longestSilence = 100ms;
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(run("echo one; exec sleep 60").end, End::silent);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 20s);
    EXPECT_EQ(lines.size(), 1U);
}

TEST_F(ChildProcessTest, killsAChildThatClosedItsOutputAndStays) {
    EXPECT_EQ(run("exec sleep 60 >&- 2>&-").end, End::crashed);
}

TEST_F(ChildProcessTest, stopsWhenLinesAreNoLongerTaken) {
    takes = false;
    EXPECT_EQ(run("while :; do echo line; done").end, End::stopped);
    EXPECT_EQ(lines.size(), 1U);
}

TEST_F(ChildProcessTest, stopsABusyChild) {
    goesOn = false;
    EXPECT_EQ(run("exec sleep 60").end, End::stopped);
}

TEST_F(ChildProcessTest, takesNoEndlessLineAndKeepsFewErrors) {
    command.longestLine = 100'000;
    const ChildResult result =
        run("while :; do printf 0123456789abcdef; printf 0123456789abcdef >&2; done");
    EXPECT_EQ(result.end, End::lineTooLong);
    EXPECT_LE(result.errors.size(), 4096U);
    EXPECT_TRUE(lines.empty());
}

TEST_F(ChildProcessTest, isGoneAfterAFailureOfTheCaller) {
    command.program = "/bin/sh";
    command.arguments = {"-c", "echo $$; exec sleep 60"};
    pid_t child = 0;
    const auto take = [&child](std::string_view line) -> bool {
        child = std::stoi(std::string(line));
        throw std::runtime_error("the project is full");
    };
    EXPECT_THROW(runChild(command, take, [] { return true; }), std::runtime_error);
    EXPECT_EQ(::kill(child, 0), -1);
}

TEST(CompanionProgram, isLookedForBesideThisOne) {
    const auto self = std::filesystem::read_symlink("/proc/self/exe");
    EXPECT_EQ(companionProgram(self.filename().string()), self);
    EXPECT_FALSE(companionProgram("no such program"));
}

TEST(CompanionProgram, isLookedForInTheNamedFolder) {
    const test::TempFolder folder;
    const auto program = folder.write("companion", "");
    ::setenv("NORVELANE_PROGRAMS", folder.path().c_str(), 1);
    EXPECT_EQ(companionProgram("companion"), program);
    EXPECT_FALSE(companionProgram("another"));
    ::unsetenv("NORVELANE_PROGRAMS");
    EXPECT_FALSE(companionProgram("companion"));
}

} // namespace
} // namespace nv
