#include "import/ZoneHints.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <gtest/gtest.h>

#include <fstream>

namespace nv {
namespace {

namespace fs = std::filesystem;

struct ZoneHintsTest : testing::Test {
    std::vector<ZoneHint> hints(const fs::path &start) { return zoneHints(start, {}, log); }
    fs::path seized() { return folder.path() / "seized"; }

    test::TempFolder folder;
    test::MemoryLog log;
    fs::path profile = [this] {
        fs::create_directories(seized() / "home" / "bob" / ".config");
        return seized() / "home" / "bob" / ".config";
    }();
};

TEST_F(ZoneHintsTest, aSystemAboveTheProfileNamesItsZone) {
    folder.write("seized/etc/timezone", "America/Sao_Paulo\nrest");
    ASSERT_EQ(hints(profile).size(), 1U);
    EXPECT_EQ(hints(profile).front().zone, "America/Sao_Paulo");
    EXPECT_EQ(hints(profile).front().file, seized() / "etc" / "timezone");
    EXPECT_EQ(hints(seized()).size(), 1U) << "the disk itself";
}

TEST_F(ZoneHintsTest, theLinkGoesBeforeTheTextAndIsntFollowed) {
    folder.write("seized/etc/timezone", "Etc/UTC");
    fs::create_symlink("/no/such/zoneinfo/Europe/Berlin", seized() / "etc" / "localtime");
    ASSERT_EQ(hints(profile).size(), 2U);
    EXPECT_EQ(hints(profile)[0].zone, "Europe/Berlin");
    EXPECT_EQ(hints(profile)[1].zone, "Etc/UTC");
    fs::remove(seized() / "etc" / "localtime");
    fs::create_symlink("../usr/share/zoneinfo/Etc/UTC", seized() / "etc" / "localtime");
    EXPECT_EQ(hints(profile).size(), 1U) << "a zone once";
}

TEST_F(ZoneHintsTest, aMacKeepsItBelowPrivate) {
    fs::create_directories(seized() / "private" / "etc");
    fs::create_symlink("/var/db/timezone/zoneinfo/Asia/Kolkata",
                       seized() / "private" / "etc" / "localtime");
    ASSERT_EQ(hints(profile).size(), 1U);
    EXPECT_EQ(hints(profile).front().zone, "Asia/Kolkata");
}

TEST_F(ZoneHintsTest, linksOfTheEvidenceLeadNowhere) {
    const fs::path other = folder.path() / "other";
    folder.write("other/timezone", "Europe/Berlin");
    fs::create_symlink(other, seized() / "etc");
    EXPECT_TRUE(hints(profile).empty());
    fs::remove(seized() / "etc");
    fs::create_directories(seized() / "etc");
    fs::create_symlink(other / "timezone", seized() / "etc" / "timezone");
    EXPECT_TRUE(hints(profile).empty());
}

TEST_F(ZoneHintsTest, aFileThatCantBeReadCostsNothing) {
    const fs::path file = folder.write("seized/etc/timezone", "Europe/Berlin");
    fs::permissions(file, fs::perms::none);
    if (std::ifstream(file))
        GTEST_SKIP() << "as root everything can be read";
    EXPECT_TRUE(hints(profile).empty());
    EXPECT_EQ(log.entries.size(), 1U);
}

TEST_F(ZoneHintsTest, whatIsNoNameIsNoHint) {
    for (const std::string &text :
         {std::string(), std::string("\n"), std::string("../../etc/passwd"),
          std::string("Europe/M\xC3\xBCnchen"), std::string("a\0b", 3), std::string(5000, 'x')}) {
        folder.write("seized/etc/timezone", text);
        EXPECT_TRUE(hints(profile).empty()) << text.substr(0, 20);
    }
    EXPECT_TRUE(hints("/").empty());
    EXPECT_TRUE(hints("").empty());
    EXPECT_TRUE(hints("/no/such/folder").empty());
}

} // namespace
} // namespace nv
