#include "app/TempFolder.h"
#include "base/Files.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

TEST(EmptyTempFolder, removesEverythingInsideAndNothingOutside) {
    const test::TempFolder outside;
    const fs::path kept = outside.write("kept.txt", "x");
    const test::TempFolder temp;
    temp.write("a.txt", "x");
    temp.write("0000001.NVR/page.htm", "x");
    fs::create_directory_symlink(outside.path(), temp.path() / "link");
    test::MemoryTask task;
    EmptyTempFolder(temp.path(), task);
    EXPECT_TRUE(fs::is_empty(temp.path()));
    EXPECT_TRUE(fs::exists(kept));
    EXPECT_EQ(task.headings.at(0).title, "EMPTYING CONTENTS OF TEMP FOLDER");
    EXPECT_EQ(task.steps.at(2).topMessage, "Deleting 3 of 3...");
}

TEST(EmptyTempFolder, stopsWhenCancelledAndSaysWhatItCouldNotRead) {
    const test::TempFolder temp;
    temp.write("a.txt", "x");
    temp.write("b.txt", "x");
    test::CancelAfter task(1);
    EmptyTempFolder(temp.path(), task);
    EXPECT_EQ(std::distance(fs::directory_iterator(temp.path()), fs::directory_iterator()), 1);
    EXPECT_THROW(EmptyTempFolder(temp.path() / "none", task), fs::filesystem_error);
}

TEST(WriteScratchPages, writesThreePagesThatFetchNothing) {
    const test::TempFolder temp;
    const TempFileNames names = tempFileNames(temp.path());
    WriteScratchPages(names);
    WriteScratchPages(names);
    for (const fs::path &page : {names.badUrl, names.badReport, names.pleaseWait}) {
        const Bytes bytes = readWhole(page);
        const std::string_view text = ByteView(bytes).raw();
        EXPECT_TRUE(text.starts_with("<!DOCTYPE html>"));
        EXPECT_EQ(text.find("http"), std::string_view::npos);
    }
}

} // namespace
} // namespace nv
