#include "readers/BrowserOf.h"
#include "readers/Registry.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

class BrowserOfTest : public testing::Test {
  protected:
    void write(const std::string &name, const std::string &text) {
        fs::create_directories((folder.path() / name).parent_path());
        folder.write(name, text);
    }
    Origin of(const std::string &name, Engine engine) {
        return BrowserOf(evidence)(folder.path() / name, engine);
    }
    test::TempFolder folder;
    Evidence evidence{folder.path()};
};

TEST_F(BrowserOfTest, aRenamedFolderIsKnownByWhereItsBrowserIsInstalled) {
    const std::pair<const char *, const char *> cases[] = {
        {R"({"path":"C:\\Program Files\\Google\\Chrome\\Application\\1\\resources\\pdf"})",
         "Google Chrome"},
        {R"({"path":"C:\\Program Files (x86)\\Microsoft\\Edge\\Application\\1\\x"})",
         "Microsoft Edge"},
        {R"({"path":"/usr/lib/chromium/resources/pdf"})", "Chromium"},
        {R"({"path":"/opt/brave.com/brave/resources/pdf"})", "Brave"},
        {R"({"path":"/Applications/Vivaldi.app/Contents/x"})", "Vivaldi"},
        {R"({"path":"/somewhere/else"})", "Chromium family"},
        {"\xFF\xFE no json at all", "Chromium family"},
    };
    for (const auto &[settings, browser] : cases) {
        write("box 7/mine/Preferences", settings);
        write("box 7/Local State", "{}");
        write("box 7/Last Version", "156.0.8078.79\n");
        for (const char *file : {"box 7/mine/History", "box 7/mine/Network/Cookies",
                                 "box 7/mine/Cache/Cache_Data/index"}) {
            const Origin origin = of(file, Engine::chromium);
            EXPECT_EQ(origin.browser, browser) << file;
            EXPECT_EQ(origin.profile, "mine") << file;
            EXPECT_EQ(origin.browserVersion, "156.0.8078.79") << file;
        }
    }
}

TEST_F(BrowserOfTest, filesAboveTheProfilesAreOfTheBrowserOfTheFirst) {
    write("box 7/Default/Preferences", R"({"path":"/usr/lib/chromium/resources/pdf"})");
    write("box 7/Local State", "{}");
    EXPECT_EQ(of("box 7/Local State", Engine::chromium).browser, "Chromium");
}

TEST_F(BrowserOfTest, thePlaceSpeaksBeforeWhatLiesThere) {
    const std::string place = "Users/a/AppData/Local/Microsoft/Edge/User Data/";
    write(place + "Default/Preferences", R"({"path":"/usr/lib/chromium/resources/pdf"})");
    EXPECT_EQ(of(place + "Default/History", Engine::chromium).browser, "Microsoft Edge");
}

TEST_F(BrowserOfTest, aProgramWithItsProfileInItsOwnFolderIsNoBrowser) {
    write("Ledger/Preferences", "{}");
    write("Ledger/Local State", "{}");
    const Origin origin = of("Ledger/Cookies", Engine::chromium);
    EXPECT_EQ(origin.browser, "Ledger (Electron)");
    EXPECT_EQ(origin.profile, "");
}

TEST_F(BrowserOfTest, aLoneFileIsOfTheFamilyOfItsFormat) {
    EXPECT_EQ(of("History", Engine::chromium).browser, "Chromium family");
    EXPECT_EQ(of("places.sqlite", Engine::gecko).browser, "Firefox family");
    EXPECT_EQ(of("index.dat", Engine::internetExplorer).browser, "Internet Explorer");
    EXPECT_EQ(of("results.nvd", Engine::unknown), Origin());
    EXPECT_EQ(of("ephy-history.db", Engine::unknown).browser, "Epiphany");
}

TEST_F(BrowserOfTest, firefoxNotesVersionAndPlaceBesideItsHistory) {
    write("kept/p1/compatibility.ini", "[Compatibility]\r\nLastVersion=153.0_20260714/20260714\r\n"
                                       "LastPlatformDir=C:\\Program Files\\LibreWolf\r\n");
    const Origin origin = of("kept/p1/cache2/entries/0A", Engine::gecko);
    EXPECT_EQ(origin.browser, "LibreWolf");
    EXPECT_EQ(origin.browserVersion, "153.0");
    EXPECT_EQ(origin.profile, "p1");
}

TEST_F(BrowserOfTest, aVersionThatIsNoneIsNotTaken) {
    write("u/d/Preferences", "{}");
    for (const char *text : {"", "<script>", "1 OR 1", "\n156",
                             "11111111111111111111111111111111111"
                             "1111111111"}) {
        write("u/Local State", "{}");
        write("u/Last Version", text);
        EXPECT_EQ(of("u/d/History", Engine::chromium).browserVersion, "") << text;
    }
}

TEST_F(BrowserOfTest, whatLiesInTheWorkingFolderTellsNothing) {
    const fs::path before = fs::current_path();
    write("here/Preferences", R"({"path":"/usr/lib/chromium/resources/pdf"})");
    fs::current_path(folder.path() / "here");
    EXPECT_EQ(of("there/History", Engine::chromium).browser, "Chromium family");
    fs::current_path(before);
}

TEST_F(BrowserOfTest, aFolderInPlaceOfSettingsIsPassedOver) {
    fs::create_directories(folder.path() / "u/d/Preferences");
    fs::create_directories(folder.path() / "u/Local State");
    EXPECT_EQ(of("u/d/History", Engine::chromium).browser, "Chromium family");
}

TEST_F(BrowserOfTest, filesOfAFolderAreAskedForOnce) {
    BrowserOf browserOf(evidence);
    write("u/d/Preferences", R"({"path":"/usr/lib/chromium/resources/pdf"})");
    EXPECT_EQ(browserOf(folder.path() / "u/d/History", Engine::chromium).browser, "Chromium");
    fs::remove(folder.path() / "u/d/Preferences");
    EXPECT_EQ(browserOf(folder.path() / "u/d/Cookies", Engine::chromium).browser, "Chromium");
}

TEST(EngineOf, formatsOfBrowsersTellTheEngine) {
    EXPECT_EQ(engineOf(readerFor(HistoryFileType::chromeHistory)), Engine::chromium);
    EXPECT_EQ(engineOf(readerFor(HistoryFileType::firefoxCookies)), Engine::gecko);
    EXPECT_EQ(engineOf(readerFor(HistoryFileType::ieDaily)), Engine::internetExplorer);
    EXPECT_EQ(engineOf(readerFor(HistoryFileType::macIECache)), Engine::macIE);
    EXPECT_EQ(engineOf(readerFor(HistoryFileType::operaCookies)), Engine::opera);
    EXPECT_EQ(engineOf(readerFor(HistoryFileType::safariCache)), Engine::safari);
    for (const HistoryFileType type : {HistoryFileType::histEx, HistoryFileType::simpleHTML,
                                       HistoryFileType::netAnalysis, HistoryFileType::norvelaneNVD})
        EXPECT_EQ(engineOf(readerFor(type)), Engine::unknown);
}

} // namespace
} // namespace nv
