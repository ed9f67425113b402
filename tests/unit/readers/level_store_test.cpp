#include "base/Files.h"
#include "readers/chrome/cache/ScriptAddresses.h"
#include "readers/leveldb/LevelStore.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/builders/LevelFiles.h"

#include <gtest/gtest.h>

#include <string>

namespace nv {
namespace {

using test::LevelRow;
using Each = std::string (*)(ByteView, const TakeLevelEntry &);

/// "key=value@sequence;" of each, and what is wrong.
std::string readBy(Each each, const std::string &bytes) {
    std::string text;
    const std::string problem = each(viewOf(bytes), [&text](const LevelEntry &entry) {
        text += std::string(entry.key) + (entry.isDeletion ? "-" : "=") +
                std::string(entry.value.substr(0, 20)) + "@" + std::to_string(entry.sequence) + ";";
    });
    return text + "|" + problem;
}

const std::vector<LevelRow> kRows = {
    {"key1", "one"}, {"key2", {}}, {"key33", ""}, {"key34", "four"}, {"last", "five"}};
const std::string kRead = "key1=one@7;key2-@8;key33=@9;key34=four@10;last=five@11;|";

TEST(LevelLog, hasAllWritings) {
    EXPECT_EQ(readBy(eachOfLevelLog, test::levelLog(kRows, 7)), kRead);
    EXPECT_EQ(readBy(eachOfLevelLog, test::levelLog(kRows, 7) + test::levelLog({{"x", "y"}}, 12)),
              "key1=one@7;key2-@8;key33=@9;key34=four@10;last=five@11;x=y@12;|");
    EXPECT_EQ(readBy(eachOfLevelLog, ""), "|");
    EXPECT_EQ(readBy(eachOfLevelLog, std::string(1000, '\0')), "|");
    const std::string large(100'000, 'v');
    EXPECT_EQ(readBy(eachOfLevelLog, test::levelLog({{"large", large}, {"end", "e"}})),
              "large=" + large.substr(0, 20) + "@1;end=e@2;|");
}

TEST(LevelLog, tellsWhatIsDamaged) {
    const std::string sound = test::levelLog({{"a", "b"}}) + test::levelLog({{"c", "d"}}, 2);
    std::string damaged = sound;
    damaged[10] ^= 1;
    EXPECT_EQ(readBy(eachOfLevelLog, damaged),
              "c=d@2;|a piece that isn't as its checksum says at 0");
    for (std::size_t size = 0; size < sound.size(); ++size)
        static_cast<void>(readBy(eachOfLevelLog, sound.substr(0, size)));
    EXPECT_EQ(readBy(eachOfLevelLog, sound.substr(0, sound.size() - 1)),
              "a=b@1;|a piece that goes on behind its block at 24");
}

TEST(LevelTable, hasAllWritings) {
    EXPECT_EQ(readBy(eachOfLevelTable, test::levelTable(kRows, false, 7)), kRead);
    EXPECT_EQ(readBy(eachOfLevelTable, test::levelTable(kRows, true, 7)), kRead);
}

TEST(LevelTable, tellsWhatIsDamaged) {
    const std::string sound = test::levelTable(kRows, true, 7);
    EXPECT_EQ(readBy(eachOfLevelTable, ""), "|it has no foot of a table");
    EXPECT_NE(readBy(eachOfLevelTable, sound.substr(1)).find("|a block"), std::string::npos);
    for (std::size_t at = 0; at < sound.size(); ++at) {
        std::string damaged = sound;
        damaged[at] = static_cast<char>(damaged[at] ^ 0x55);
        const std::string read = readBy(eachOfLevelTable, damaged);
        EXPECT_LE(read.find('|'), kRead.size()) << at;
    }
    std::string damaged = sound;
    damaged[3] ^= 1;
    EXPECT_EQ(readBy(eachOfLevelTable, damaged),
              "key34=four@10;last=five@11;|a block that isn't as its checksum says at 0");
}

struct ScriptAddressesTest : testing::Test {
    ScriptAddresses read(const char *cache = "Service Worker/ScriptCache") {
        folder.write(std::string(cache) + "/index", "");
        return scriptAddressesBeside(Evidence(folder.path()), folder.path() / cache, log);
    }
    test::TempFolder folder;
    test::MemoryLog log;
};

TEST_F(ScriptAddressesTest, standInTheStoreBesideTheCache) {
    folder.write("Service Worker/Database/000005.ldb",
                 test::levelTable({test::scriptRow(0, 0, "https://a.example/old.js"),
                                   test::scriptRow(0, 1, "https://a.example/sw.js")},
                                  true));
    folder.write("Service Worker/Database/000006.log",
                 test::levelLog({test::scriptRow(1, 0, "https://a.example/new.js"),
                                 {test::scriptRow(0, 1, "").key, {}},
                                 {"RES:0", "x"},
                                 {std::string("RES:3\0"
                                              "4",
                                              7),
                                  "no message"}},
                                10));
    folder.write("Service Worker/Database/CURRENT", "MANIFEST-000004\n");
    const ScriptAddresses addresses = read();
    using Map = std::map<std::string, std::string, std::less<>>;
    EXPECT_EQ(addresses.byKey,
              (Map{{"0", "https://a.example/new.js"}, {"1", "https://a.example/sw.js"}}));
    EXPECT_FALSE(addresses.isDamaged);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(ScriptAddressesTest, damageIsToldAndCostsNoMore) {
    folder.write("Service Worker/Database/000005.ldb", "no table");
    folder.write("Service Worker/Database/000006.log",
                 test::levelLog({test::scriptRow(1, 0, "https://a.example/new.js")}));
    const ScriptAddresses addresses = read();
    EXPECT_EQ(addresses.byKey.size(), 1U);
    EXPECT_TRUE(addresses.isDamaged);
    ASSERT_EQ(log.entries.size(), 1U);
    EXPECT_NE(log.entries[0].message.find("000005.ldb: it has no foot of a table"),
              std::string::npos);
}

TEST_F(ScriptAddressesTest, areThoseOfScriptCachesAlone) {
    folder.write("Database/000006.log",
                 test::levelLog({test::scriptRow(1, 0, "https://a.example/")}));
    EXPECT_TRUE(read("Cache_Data").byKey.empty());
    folder.write("lone/ScriptCache/index", "");
    EXPECT_TRUE(read("lone/ScriptCache").byKey.empty());
    EXPECT_TRUE(log.entries.empty());
}

} // namespace
} // namespace nv
