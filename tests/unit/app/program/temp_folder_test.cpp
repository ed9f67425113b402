#include "app/program/ScratchFolder.h"
#include "app/program/TempFolder.h"
#include "base/Files.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

constexpr Front kWindow = Front::window;
constexpr Front kCommandLine = Front::headless;

/// A folder whose process is gone, with a file in it.
fs::path givenUp(const fs::path &temp, Front owner) {
    const ScratchFolder folder(temp, owner);
    fs::create_directories(folder.path() / "0000001.NVR");
    writeWhole(folder.path() / "0000001.NVR" / "page.htm", "x");
    return folder.path();
}

TEST(EmptyTempFolder, removesWhatEndedProcessesLeftAndNothingElse) {
    const test::TempFolder outside;
    const fs::path kept = outside.write("kept.txt", "x");
    const test::TempFolder temp;
    const fs::path own = temp.write("a.txt", "x");
    fs::create_directory_symlink(outside.path(), temp.path() / "norvelane-window-linked");
    const fs::path window = givenUp(temp.path(), kWindow);
    const fs::path commandLine = givenUp(temp.path(), kCommandLine);
    fs::create_directory_symlink(outside.path(), window / "link");
    const ScratchFolder living(temp.path(), kWindow);
    test::MemoryTask task;
    emptyTempFolder(temp.path(), kWindow, task);
    EXPECT_FALSE(fs::exists(window));
    EXPECT_FALSE(fs::exists(commandLine));
    EXPECT_TRUE(fs::exists(living.path()));
    EXPECT_TRUE(fs::exists(own));
    EXPECT_TRUE(fs::exists(kept));
    EXPECT_EQ(task.headings.at(0).title, "EMPTYING CONTENTS OF TEMP FOLDER");
    EXPECT_EQ(task.steps.at(1).topMessage, "Deleting 2 of 2...");
}

TEST(EmptyTempFolder, aCommandLineLeavesWhatWindowsLeft) {
    const test::TempFolder temp;
    const fs::path window = givenUp(temp.path(), kWindow);
    const fs::path commandLine = givenUp(temp.path(), kCommandLine);
    test::MemoryTask task;
    emptyTempFolder(temp.path(), kCommandLine, task);
    EXPECT_TRUE(fs::exists(window));
    EXPECT_FALSE(fs::exists(commandLine));
}

TEST(EmptyTempFolder, aFolderWithoutTheMarkIsNobodysToRemove) {
    const test::TempFolder temp;
    const fs::path unmarked = givenUp(temp.path(), kWindow);
    fs::remove(unmarked / ".norvelane-scratch");
    const fs::path otherMark = givenUp(temp.path(), kWindow);
    writeWhole(otherMark / ".norvelane-scratch", "mine");
    test::MemoryTask task;
    emptyTempFolder(temp.path(), kWindow, task);
    EXPECT_TRUE(fs::exists(unmarked));
    EXPECT_TRUE(fs::exists(otherMark));
}

TEST(EmptyTempFolder, aStartThatWasKilledBeforeItsLockIsGivenUpAfterAMinute) {
    const test::TempFolder temp;
    const auto early = [&temp](const char *name, std::chrono::seconds age) {
        const fs::path folder = temp.path() / name;
        fs::create_directories(folder);
        const fs::path mark = folder / ".norvelane-scratch-new";
        writeWhole(mark, "");
        fs::last_write_time(mark, fs::file_time_type::clock::now() - age);
        return folder;
    };
    const fs::path killed = early("norvelane-cli-killed", std::chrono::minutes(2));
    const fs::path starting = early("norvelane-cli-starting", std::chrono::seconds(1));
    const fs::path living = early("norvelane-cli-living", std::chrono::minutes(2));
    const FileHold lock(living / ".norvelane-scratch-new", FileHold::Kind::alone,
                        FileHold::Make::no);
    test::MemoryTask task;
    emptyTempFolder(temp.path(), kCommandLine, task);
    EXPECT_FALSE(fs::exists(killed));
    EXPECT_TRUE(fs::exists(starting));
    EXPECT_TRUE(fs::exists(living));
}

TEST(EmptyTempFolder, stopsWhenCancelledAndSaysWhatItCouldNotRead) {
    const test::TempFolder temp;
    givenUp(temp.path(), kWindow);
    givenUp(temp.path(), kWindow);
    test::CancelAfter task(1);
    emptyTempFolder(temp.path(), kWindow, task);
    EXPECT_EQ(std::distance(fs::directory_iterator(temp.path()), fs::directory_iterator()), 1);
    EXPECT_THROW(emptyTempFolder(temp.path() / "none", kWindow, task), fs::filesystem_error);
}

/// Real processes: one that lives and one that was killed.
TEST(ScratchFolder, isKeptWhileItsProcessLivesAndGivenUpWhenThatIsKilled) {
    const test::TempFolder temp;
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t child = ::fork();
    if (child == 0) {
        const ScratchFolder folder(temp.path(), kCommandLine);
        writeWhole(folder.path() / "~blob", "in use");
        (void)!::write(ready[1], "x", 1);
        ::pause();
        ::_exit(0);
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    test::MemoryTask task;
    emptyTempFolder(temp.path(), kWindow, task);
    EXPECT_FALSE(fs::is_empty(temp.path())) << "its process lives";
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    emptyTempFolder(temp.path(), kWindow, task);
    EXPECT_TRUE(fs::is_empty(temp.path()));
    ::close(ready[0]);
    ::close(ready[1]);
}

TEST(ScratchFolder, aTempFolderThatIsNotThereIsNamed) {
    const test::TempFolder temp;
    try {
        const ScratchFolder folder(temp.path() / "none", kWindow);
        FAIL();
    } catch (const StorageFailure &failure) {
        EXPECT_NE(std::string(failure.what()).find("none"), std::string::npos);
    }
}

TEST(WriteScratchPages, writesThreePagesThatFetchNothing) {
    const test::TempFolder temp;
    const TempFileNames names = tempFileNames(temp.path());
    writeScratchPages(names);
    writeScratchPages(names);
    for (const fs::path &page : {names.badUrl, names.badReport, names.pleaseWait}) {
        const Bytes bytes = readWhole(page);
        const std::string_view text = ByteView(bytes).raw();
        EXPECT_TRUE(text.starts_with("<!DOCTYPE html>"));
        EXPECT_EQ(text.find("http"), std::string_view::npos);
    }
}

} // namespace
} // namespace nv
