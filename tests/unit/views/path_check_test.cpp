#include "support/TempFolder.h"
#include "views/rows/PathCheck.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace nv {
namespace {

using namespace std::string_literals;

class BadPath : public ::testing::Test {
  protected:
    BadPath() {
        folder.write("Users/ann/C5/page[1].htm", "x");
        folder.write("Users/ann/ff/_CACHE_MAP_", "x");
    }
    bool ie(std::string_view relative, std::string_view name = "page[1].htm") {
        return check.isBad({"IE Cache", root, relative, name, ""});
    }
    bool other(std::string_view type, std::string_view history) {
        return check.isBad({type, root, "", "", history});
    }

    test::TempFolder folder;
    std::string root = folder.path().string() + "/";
    PathCheck check;
};

TEST_F(BadPath, isAnIeCacheRowWithoutItsFile) {
    EXPECT_FALSE(ie("Users/ann/C5/page[1].htm"));
    EXPECT_TRUE(ie("Users/ann/C5/page[2].htm"));
    EXPECT_TRUE(ie("Users/bob/C5/page[1].htm"));
    EXPECT_TRUE(ie("Users/ann/C5")) << "a folder is no file";
    EXPECT_TRUE(ie("", "page[3].htm")) << "missing at the import already";
    EXPECT_FALSE(ie("", "")) << "a redirection names no file";
}

TEST_F(BadPath, findsPathsOfProjectsFromWindows) {
    EXPECT_FALSE(ie("Users\\ann\\C5\\page[1].htm"));
}

TEST_F(BadPath, isAnotherCacheWithoutItsIndexUnderTheBasePath) {
    EXPECT_FALSE(other("Firefox Cache", root + "Users/ann/ff/_CACHE_MAP_"));
    EXPECT_FALSE(other("FIREFOX CACHE", "E:\\Users\\ann\\ff\\_CACHE_MAP_"));
    EXPECT_FALSE(other("Chrome Cache", root + "Users/ann/ff")) << "a folder that is one cache";
    EXPECT_FALSE(other("Chrome Cache", "E:\\Users\\ann\\ff"));
    EXPECT_TRUE(other("Chrome Cache", root + "Users/ann/gone"));
    EXPECT_TRUE(other("Safari Cache", root + "Users/ann/Cache.db"));
    EXPECT_TRUE(other("Opera Cache", "/elsewhere/dcache4.url"));
    EXPECT_TRUE(other("Chrome Cache", ""));
}

TEST_F(BadPath, isNoOtherKindOfRow) {
    EXPECT_FALSE(other("IE History", "/nowhere"));
    EXPECT_FALSE(other("Chrome History", "/nowhere"));
    EXPECT_FALSE(other("", ""));
}

TEST_F(BadPath, survivesHostilePaths) {
    EXPECT_TRUE(ie("Users/ann/C5/page[1].htm\0.jpg"s));
    EXPECT_TRUE(ie(std::string(100'000, 'a')));
    EXPECT_TRUE(ie("\xFF\xFE"));
}

TEST_F(BadPath, asksTheFileSystemOnceUntilToldToForget) {
    const auto file = folder.path() / "Users/ann/C5/page[1].htm";
    EXPECT_FALSE(ie("Users/ann/C5/page[1].htm"));
    std::filesystem::remove(file);
    EXPECT_FALSE(ie("Users/ann/C5/page[1].htm"));
    check.forget();
    EXPECT_TRUE(ie("Users/ann/C5/page[1].htm"));
}

TEST(PathUnderBase, putsTheBaseBeforeForeignPaths) {
    EXPECT_EQ(pathUnderBase("/mnt/e/", "/mnt/e/a/b"), "/mnt/e/a/b");
    EXPECT_EQ(pathUnderBase("/mnt/e/", "/old/a/b"), "/mnt/e/old/a/b");
    EXPECT_EQ(pathUnderBase("/mnt/e", "C:\\a\\b"), "/mnt/e/a\\b");
    EXPECT_EQ(pathUnderBase("/", "/a/b"), "/a/b");
    EXPECT_EQ(pathUnderBase("", "/a/b"), "/a/b");
}

} // namespace
} // namespace nv
