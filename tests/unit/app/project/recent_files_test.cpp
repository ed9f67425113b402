#include "app/project/RecentFiles.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

struct RecentFilesTest : testing::Test {
    std::vector<std::string> shown() const {
        std::vector<std::string> texts;
        for (const RecentFile &file : configLastFilesOpened(settings))
            texts.push_back(file.shownText);
        return texts;
    }
    test::TempFolder folder;
    test::MemoryLog log;
    IniFile settings{folder.path() / "Norvelane.ini", log};
};

TEST_F(RecentFilesTest, aFifthProjectPushesTheOldestOut) {
    for (const char *name : {"/1.nvp", "/2.nvp", "/3.nvp", "/4.nvp", "/5.nvp"})
        storeFilenameINI(settings, name);
    EXPECT_EQ(shown(), (std::vector<std::string>{"/5.nvp", "/4.nvp", "/3.nvp", "/2.nvp"}));
}

TEST_F(RecentFilesTest, aKnownProjectMovesToTheFront) {
    for (const char *name : {"/1.nvp", "/2.nvp", "/3.nvp", "/1.nvp"})
        storeFilenameINI(settings, name);
    EXPECT_EQ(shown(), (std::vector<std::string>{"/1.nvp", "/3.nvp", "/2.nvp"}));
}

TEST_F(RecentFilesTest, keysFiveAndSixAreOnlyRead) {
    ASSERT_TRUE(settings.writeIniValue("FILES", "File6", "/6.nvp"));
    storeFilenameINI(settings, "/1.nvp");
    EXPECT_EQ(shown(), (std::vector<std::string>{"/1.nvp", "/6.nvp"}));
}

TEST_F(RecentFilesTest, aForgottenProjectLeavesTheListAndTheOthersMoveUp) {
    ASSERT_TRUE(settings.writeIniValue("FILES", "File6", "/6.nvp"));
    for (const char *name : {"/1.nvp", "/2.nvp", "/3.nvp"})
        storeFilenameINI(settings, name);
    forgetFilenameINI(settings, "/2.nvp");
    EXPECT_EQ(shown(), (std::vector<std::string>{"/3.nvp", "/1.nvp", "/6.nvp"}));
    forgetFilenameINI(settings, "/6.nvp");
    forgetFilenameINI(settings, "/never there.nvp");
    EXPECT_EQ(shown(), (std::vector<std::string>{"/3.nvp", "/1.nvp"}));
    EXPECT_EQ(settings.readIniValue("FILES", "File6", "none"), "none") << "it is empty";
}

TEST_F(RecentFilesTest, aLongPathIsShortenedInItsMiddle) {
    const std::string path = "/cases/" + std::string(80, 'x') + "/case.nvp";
    storeFilenameINI(settings, path);
    const std::string text = shown().front();
    EXPECT_EQ(text.size(), 60u);
    EXPECT_TRUE(text.starts_with("/cases/xxx"));
    EXPECT_TRUE(text.ends_with(".../case.nvp"));
    EXPECT_EQ(configLastFilesOpened(settings).front().path, path);
}

} // namespace
} // namespace nv
