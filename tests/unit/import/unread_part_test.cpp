// A file of ten thousand that can't be read: the others of its cache are found and imported.

#include "base/Md5.h"
#include "import/Scan.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/Unprivileged.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nv {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using Lines = std::vector<std::string>;

const std::string kEntry = "\x30\x5C\x72\xA7\x1B\x6D\xFB\xFC"s + std::string(40, 'e');

class UnreadPart : public testing::Test {
  protected:
    UnreadPart() {
        job.startingDirectory = folder.path();
        for (const char *name : {"1111111111111111_0", "2222222222222222_0", "3333333333333333_0"})
            folder.write("Cache/"s + name, kEntry);
        folder.write("Cache/index", kEntry);
        folder.write("Cache/index-dir/the-real-index", "list");
    }
    void forbid(const fs::path &name) const { fs::permissions(path(name), fs::perms::none); }
    fs::path path(const fs::path &name) const { return folder.path() / "Cache" / name; }
    ScanResult scanned() {
        const test::Unprivileged nobody(folder.path());
        Unwatched task;
        return scan(job, task, log);
    }
    /// One artefact, the cache's folder, and that one place that can't be read.
    void expectCacheWithout(const fs::path &unread, const ScanResult &result) {
        ASSERT_EQ(result.historyFiles.count(), 1U) << unread;
        EXPECT_EQ(result.historyFiles.item(1).fullPath, folder.path() / "Cache");
        ASSERT_EQ(result.gaps.unreadable.size(), 1U) << unread;
        EXPECT_EQ(result.gaps.unreadable.at(0).path, path(unread));
        EXPECT_NE(result.gaps.unreadable.at(0).reason.find(unread.string()), std::string::npos);
        EXPECT_EQ(log.entries.size(), 1U) << unread;
    }

    test::TempFolder folder;
    test::MemoryLog log;
    ImportSettings job;
};

TEST_F(UnreadPart, losesTheFirstFileOfACacheAlone) {
    forbid("1111111111111111_0");
    expectCacheWithout("1111111111111111_0", scanned());
}

TEST_F(UnreadPart, losesOneFileOfACacheAlone) {
    forbid("3333333333333333_0");
    const ScanResult result = scanned();
    expectCacheWithout("3333333333333333_0", result);
    const std::string entry = md5Hex(kEntry);
    EXPECT_EQ(result.historyFiles.item(1).md5Hash,
              md5Hex(fmt::format("{0}  1111111111111111_0\n{0}  2222222222222222_0\n"
                                 "-  3333333333333333_0\n{0}  index\n{1}  "
                                 "index-dir/the-real-index\n",
                                 entry, md5Hex("list"))));
    EXPECT_EQ(result.historyFiles.item(1).fileSize, 3 * kEntry.size() + 4);
}

TEST_F(UnreadPart, losesTheIndexAlone) {
    forbid("index");
    expectCacheWithout("index", scanned());
}

TEST_F(UnreadPart, losesAFolderWithinTheCacheAlone) {
    forbid("index-dir");
    expectCacheWithout("index-dir", scanned());
    fs::permissions(path("index-dir"), fs::perms::owner_all);
}

} // namespace
} // namespace nv
