#include "base/Files.h"
#include "base/Replace.h"
#include "base/Storage.h"
#include "base/Trap.h"
#include "support/SmallFiles.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace nv {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr rlim_t kLimit = 100'000;
const std::string kTooMuch(kLimit + 1, 'x');

struct StorageTest : testing::Test {
    /// What the StorageFailure says that `body` ends with in a trap; empty when there is none.
    std::string failureIn(const std::function<void()> &body) {
        try {
            trapped(log, Severity::Warning, "Test()", "", [&] { body(); });
        } catch (const StorageFailure &failure) {
            return failure.what();
        }
        return {};
    }

    test::TempFolder folder;
    test::MemoryLog log;
    fs::path target = folder.path() / "target";
};

TEST_F(StorageTest, everyWayToWriteFailsAsStorageOnAFullDisk) {
    const fs::path source = folder.write("source", kTooMuch);
    const test::SmallFiles limit(kLimit);
    for (const std::function<void()> &way : std::initializer_list<std::function<void()>>{
             [&] { writeWhole(target, kTooMuch); }, [&] { copyToScratch(source, target); },
             [&] { copyRange(FileReader(source), 0, kTooMuch.size(), target); }}) {
        const std::string failure = failureIn(way);
        EXPECT_THAT(failure, HasSubstr(target.native()));
        EXPECT_THAT(failure, HasSubstr("on the disk \"" + diskOf(target).native() + "\""));
    }
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(StorageTest, namesTheDisk) {
    EXPECT_EQ(diskOf("/"), "/");
    EXPECT_EQ(diskOf(folder.path() / "none" / "at" / "all"), diskOf(folder.path()));
    EXPECT_EQ(failureIn([] { writeWhole("/dev/full", "x"); }),
              "cannot write \"/dev/full\" on the disk \"" + diskOf("/dev/full").native() +
                  "\": No space left on device");
}

TEST_F(StorageTest, aPlaceThatCantBeWrittenIsAFailureOfStorage) {
    const fs::path file = folder.write("file", "");
    EXPECT_NE(failureIn([&] { writeWhole(file / "below", "x"); }), "");
    EXPECT_NE(failureIn([&] { makeFolder(file / "below"); }), "");
    EXPECT_NE(failureIn([&] { makeEmptyFolder(file / "below"); }), "");
    EXPECT_NE(failureIn([&] { moveFile(folder.path() / "none", target); }), "");
    EXPECT_NE(failureIn([&] { cutFile(folder.path() / "none", 1); }), "");
    EXPECT_NE(failureIn([&] { replaceDurably(folder.path() / "none", target); }), "");
}

TEST_F(StorageTest, aBadNameCostsItsFileOnly) {
    const fs::path name = folder.path() / std::string(300, 'n');
    EXPECT_THROW(writeWhole(name, "x"), FileFailure);
    EXPECT_EQ(failureIn([&] { writeWhole(name, "x"); }), "");
    EXPECT_EQ(log.entries.size(), 1U);
}

TEST_F(StorageTest, whatCantBeReadIsNoFailureOfStorage) {
    EXPECT_EQ(failureIn([&] { copyToScratch(folder.path() / "none", target); }), "");
    EXPECT_THAT(log.entries.at(0).message, HasSubstr("none"));
}

TEST_F(StorageTest, aNewFileReplacesALink) {
    const fs::path other = folder.write("other", "kept");
    fs::create_symlink(other, target);
    FileWriter(target).write("new");
    EXPECT_EQ(ByteView(readWhole(other)).raw(), "kept");
    EXPECT_EQ(ByteView(readWhole(target)).raw(), "new");
}

} // namespace
} // namespace nv
