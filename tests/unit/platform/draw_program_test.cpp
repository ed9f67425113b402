#include "base/Files.h"
#include "platform/posix/DrawLines.h"
#include "platform/posix/DrawProgram.h"
#include "support/TempFolder.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

/// A script stands for the program. "$1" is the job file; draw JOB... writes the lines of jobs.
struct DrawProgramTest : testing::Test {
    void draw(const std::string &script, std::size_t count, std::chrono::seconds timeout = 60s) {
        const fs::path program =
            folder.write("program", "#!/bin/sh\n"
                                    "ready() { echo '{\"ready\":true}'; }\n"
                                    "draw() { for i; do echo "
                                    "\"{\\\"job\\\":$i,\\\"done\\\":true}\"; done; }\n"
                                    "mkdir -p '" +
                                        folder.path().native() + "/seen'\n" + script);
        fs::permissions(program, fs::perms::owner_all);
        drawWith(program, count, timeout);
    }
    void drawWith(std::optional<fs::path> program, std::size_t count,
                  std::chrono::seconds timeout) {
        std::vector<DrawJob> jobs(count);
        for (std::size_t i = 0; i < count; ++i)
            jobs[i] = {DrawJob::Kind::picture, "/source" + std::to_string(i), target, 10, 10};
        fs::create_directories(scratch);
        DrawProgram drawing(program, scratch);
        drawing.longestStart = 2s;
        drawing.draw(
            jobs, timeout,
            [this](std::size_t job, const Drawn &drawn) {
                EXPECT_EQ(job, ends.size());
                ends.push_back(drawn.done ? "done" : drawn.failure);
                return ends.size() < takes;
            },
            [this] { return goesOn; });
    }
    std::string seen(const fs::path &name) {
        const Bytes bytes = readWhole(folder.path() / "seen" / name);
        return {bytes.begin(), bytes.end()};
    }

    test::TempFolder folder;
    fs::path scratch = folder.path() / "scratch";
    fs::path target = "/target";
    std::vector<std::string> ends;
    std::size_t takes = 1'000'000;
    bool goesOn = true;
};

TEST_F(DrawProgramTest, aMissingProgramFailsEachJob) {
    drawWith(std::nullopt, 2, 60s);
    ASSERT_EQ(ends.size(), 2U);
    EXPECT_EQ(ends[1], "The program norvelane-draw is missing: nothing can be drawn.");
}

TEST_F(DrawProgramTest, aProgramThatCannotStartFailsEachJob) {
    drawWith(fs::path("/nowhere/program"), 3, 60s);
    ASSERT_EQ(ends.size(), 3U);
    EXPECT_EQ(ends[2], "The program norvelane-draw can't be started (error 2).");
}

TEST_F(DrawProgramTest, aProgramThatFailsAtTheStartIsNotStartedForEachJob) {
    draw("echo x >> " + folder.path().native() + "/seen/starts; echo no library >&2; exit 127\n",
         400);
    ASSERT_EQ(ends.size(), 400U);
    EXPECT_EQ(ends[0], "The program norvelane-draw ended before it drew anything. no library");
    EXPECT_EQ(seen("starts"), "x\n");
}

/// The drawing program can't tell a full disk from a picture that has no form as a file.
TEST_F(DrawProgramTest, aTargetThatCannotBeWrittenIsAFailureOfStorageOnlyOnAFullDisk) {
    // A here-document: the text holds an apostrophe.
    const std::string unwritten = "ready; cat <<'LINE'\n{\"job\":0,\"done\":false,\"failure\":\"" +
                                  std::string(kTargetNotWritten) + "\"}\nLINE\n";
    target = folder.path() / "target";
    draw(unwritten, 1);
    EXPECT_EQ(ends, std::vector<std::string>{std::string(kTargetNotWritten)});
    EXPECT_FALSE(fs::exists(target));
    target = "/dev/full";
    EXPECT_THROW(draw(unwritten, 1), StorageFailure);
}

TEST_F(DrawProgramTest, jobsGoToTheProgramAndWhatItDrewComesBack) {
    draw("cp \"$1\" " + folder.path().native() +
             "/seen/jobs; ready\n"
             "echo '{\"job\":0,\"done\":false,\"failure\":\"no picture\",\"refused\":3}'\n"
             "draw 1; echo '{\"end\":true}'\n",
         2, 7s);
    EXPECT_EQ(ends, (std::vector<std::string>{"no picture", "done"}));
    const std::string lines = seen("jobs");
    const auto second = timedJobOf(std::string_view(lines).substr(lines.find('\n') + 1));
    ASSERT_TRUE(second);
    EXPECT_EQ(second->job.source, "/source1");
    EXPECT_EQ(second->timeout, 7s);
}

TEST_F(DrawProgramTest, manyJobsAreSharedAmongProcesses) {
    draw("echo x >> " + folder.path().native() +
             "/seen/starts; ready\n"
             "i=0; while read -r line; do draw $i; i=$((i+1)); done < \"$1\"; echo "
             "'{\"end\":true}'\n",
         700);
    EXPECT_EQ(ends, std::vector<std::string>(700, "done"));
    EXPECT_EQ(seen("starts"), "x\nx\nx\n");
}

TEST_F(DrawProgramTest, aCrashCostsTheJobThatCrashesAnewProcessToo) {
    draw("ready; n=0\n"
         "while read -r line; do case \"$line\" in *source2*) kill -SEGV $$;; esac\n"
         "draw $n; n=$((n+1)); done < \"$1\"\n",
         5);
    EXPECT_EQ(ends, (std::vector<std::string>{"done", "done", "The drawing crashed (signal 11).",
                                              "done", "done"}));
}

TEST_F(DrawProgramTest, aCrashThatDoesNotComeAgainCostsNothing) {
    const std::string once = folder.path().native() + "/seen/once";
    draw("ready; draw 0; [ -e " + once + " ] || { touch " + once + "; kill -SEGV $$; }\ndraw 1 2\n",
         3);
    EXPECT_EQ(ends, std::vector<std::string>(3, "done"));
}

TEST_F(DrawProgramTest, aJobThatHangsIsStoppedWithinTimeoutAndStart) {
    draw("ready; case \"$(cat \"$1\")\" in *source0*) exec sleep 100;; esac; draw 0\n", 2, 1s);
    EXPECT_EQ(ends, (std::vector<std::string>{"The drawing got stuck and was stopped.", "done"}));
}

TEST_F(DrawProgramTest, linesOfAProgramGoneWrongArePassedOver) {
    draw("ready; echo words; echo '[1]'; echo '{\"job\":7,\"done\":true}'\n"
         "echo '{\"job\":-1,\"done\":true}'; echo '{\"job\":\"0\",\"done\":true}'; draw 0\n",
         1);
    EXPECT_EQ(ends, std::vector<std::string>{"done"});
}

TEST_F(DrawProgramTest, stopsWhenDrawingsAreNoLongerTakenOrWanted) {
    takes = 1;
    draw("ready; draw 0; exec sleep 100\n", 3);
    EXPECT_EQ(ends.size(), 1U);
    goesOn = false;
    draw("ready; exec sleep 100\n", 3);
    EXPECT_EQ(ends.size(), 1U);
}

TEST_F(DrawProgramTest, theProgramHasAFolderOfItsOwnThatIsGoneAfterwards) {
    draw("stat -c %a \"$HOME\" > " + folder.path().native() +
             "/seen/mode; echo \"$HOME $XDG_RUNTIME_DIR\" > " + folder.path().native() +
             "/seen/folders; touch \"$TMPDIR/left\"; ready; draw 0\n",
         1);
    EXPECT_EQ(seen("mode"), "700\n");
    EXPECT_EQ(seen("folders").find(scratch.native()), 0U);
    EXPECT_TRUE(fs::is_empty(scratch));
}

TEST(DrawLines, pathsOfAnyBytesComeThrough) {
    const fs::path path(std::string("/a\xFF\xC3\xA9\n\"\\\x80"));
    const auto job = timedJobOf(lineOf(TimedJob{{DrawJob::Kind::page, path, "/t", 320, 240}, 5s}));
    ASSERT_TRUE(job);
    EXPECT_EQ(job->job.source.native(), path.native());
    EXPECT_EQ(job->job.kind, DrawJob::Kind::page);
    EXPECT_EQ(job->job.height, 240);
}

TEST(DrawLines, whatWasDrawnComesThrough) {
    const auto drawn = drawnJobOf(lineOf(DrawnJob{4, {true, "caf\xC3\xA9", 640, 480, 9}}));
    ASSERT_TRUE(drawn);
    EXPECT_EQ(drawn->job, 4U);
    EXPECT_TRUE(drawn->drawn.done);
    EXPECT_EQ(drawn->drawn.failure, "caf\xC3\xA9");
    EXPECT_EQ(drawn->drawn.pictureWidth, 640);
    EXPECT_EQ(drawn->drawn.refusedRequests, 9U);
}

TEST(DrawLines, aLineThatIsNoJobIsNone) {
    for (const char *line : {"", "{}", "[]", "{\"kind\":\"page\"}", "\xFF",
                             "{\"kind\":\"film\",\"source\":\"/a\",\"target\":\"/b\",\"width\":1,"
                             "\"height\":1,\"timeout\":1}",
                             "{\"kind\":\"page\",\"source\":\"/a\",\"target\":\"/b\",\"width\":0,"
                             "\"height\":1,\"timeout\":1}"})
        EXPECT_FALSE(timedJobOf(line)) << line;
}

} // namespace
} // namespace nv
