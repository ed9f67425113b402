#include "db/hashes/HashSets.h"
#include "support/TestProject.h"
#include "views/limits/HashMatch.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <string>

namespace nv {
namespace {

constexpr const char *kMd5 = "900150983cd24fb0d6963f7d28e17f72";
constexpr const char *kSha1 = "a9993e364706816aba3e25717850c26c9cd0d89d";
constexpr const char *kSha256 = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

struct HashMatchTest : testing::Test {
    HashMatchTest() {
        project.connection().exec(
            "INSERT INTO URLs (URL_ID, URL, CacheFileExists) VALUES (1, 'a', 1), (2, 'b', 1), "
            "(3, 'c', 1), (4, 'd', 0)");
        project.connection().exec(
            fmt::format("INSERT INTO RecordFacts VALUES (1, 'content_md5', '{}', NULL), "
                        "(1, 'content_sha1', '{}', NULL), (1, 'content_sha256', '{}', NULL), "
                        "(2, 'content_md5', 'd41d8cd98f00b204e9800998ecf8427e', NULL), "
                        "(2, 'content_sha1', x'00FF', NULL), (2, 'etag', '{}', NULL), "
                        "(4, 'sha256', upper('{}'), NULL)",
                        kMd5, kSha1, kSha256, kMd5, kSha256));
    }
    void makeSet(const std::string &name, HashMeaning meaning, const std::string &list) {
        const auto file = project.folder.write(name + ".txt", list);
        test::MemoryTask quiet;
        ASSERT_TRUE(
            makeHashSet({sets, {name, meaning, "", {}}, {file}, project.folder.path()}, quiet));
    }
    HashMatch match(std::vector<std::string> names = {}) {
        auto open = openHashSets(sets, names);
        return matchHashSets(project.connection(), open,
                             names.empty() ? EarlierFindings::drop : EarlierFindings::keep, task);
    }
    std::string findings() {
        return project.text("SELECT ifnull(group_concat(URL_ID || Name || Value || RawValue), '') "
                            "FROM (SELECT * FROM RecordFacts WHERE Name LIKE 'hashset%' ORDER BY "
                            "URL_ID, Name, Value)");
    }

    test::TestProject project;
    std::filesystem::path sets = project.folder.path() / "sets";
    test::MemoryTask task;
};

TEST_F(HashMatchTest, storesWhatIsFoundByTheStrongestHash) {
    makeSet("bad", HashMeaning::notable, std::string(kMd5) + "\n" + kSha256);
    makeSet("good", HashMeaning::known, kSha1);
    const HashMatch found = match();
    EXPECT_EQ(found.rows, (std::vector<std::uint64_t>{2, 1}));
    EXPECT_EQ(found.rowsWithHash, 3U);
    EXPECT_EQ(found.bodiesWithoutHash, 1U);
    EXPECT_EQ(found.rowsOfProject, 4U);
    EXPECT_EQ(found.rowsFound, 2U);
    EXPECT_EQ(found.withoutContent, 0U);
    EXPECT_EQ(findings(), "1hashset_knowngoodSHA-1,1hashset_notablebadSHA-256,"
                          "4hashset_notablebadSHA-256");
}

TEST_F(HashMatchTest, takesThePlaceOfEarlierFindings) {
    makeSet("bad", HashMeaning::notable, kMd5);
    makeSet("good", HashMeaning::known, kMd5);
    match();
    match();
    EXPECT_EQ(findings(), "1hashset_knowngoodMD5,1hashset_notablebadMD5");
    makeSet("bad", HashMeaning::notable, "d41d8cd98f00b204e9800998ecf8427e");
    match({"bad"});
    EXPECT_EQ(findings(), "1hashset_knowngoodMD5,2hashset_notablebadMD5");
    std::filesystem::remove(hashSetPath(sets, "bad"));
    match({"good"});
    EXPECT_EQ(findings(), "1hashset_knowngoodMD5,2hashset_notablebadMD5");
    match();
    EXPECT_EQ(findings(), "1hashset_knowngoodMD5");
}

TEST_F(HashMatchTest, cancelledLeavesTheProjectAsItWas) {
    makeSet("bad", HashMeaning::notable, kMd5);
    auto open = openHashSets(sets);
    test::CancelAfter cancel(0);
    EXPECT_TRUE(matchHashSets(project.connection(), open, EarlierFindings::drop, cancel).cancelled);
    EXPECT_EQ(findings(), "");
}

} // namespace
} // namespace nv
