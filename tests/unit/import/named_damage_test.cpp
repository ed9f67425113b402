// What the scan says of a file that a browser's profile names and that isn't what the name says.

#include "import/Scan.h"
#include "support/ImportOption.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace nv {
namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using Lines = std::vector<std::string>;

const std::string kBookmarks = R"({"roots":{"bookmark_bar":{"children":[]}}})";
const std::string kPreferences = R"({"profile":{"name":"Ada"}})";

class NamedDamage : public testing::Test {
  protected:
    NamedDamage() { job.startingDirectory = folder.path(); }

    ScanResult scanned() {
        Unwatched task;
        log.entries.clear();
        return scan(job, task, log);
    }
    ScanResult scannedAt(const fs::path &place) {
        Unwatched task;
        log.entries.clear();
        return scanPlaces(job, {place}, task, log);
    }
    Lines unreadable(const ScanResult &result) const {
        Lines paths;
        for (const UnreadPlace &place : result.gaps.unreadable)
            paths.push_back(place.path.lexically_relative(folder.path()).string());
        return paths;
    }
    Lines told() { return unreadable(scanned()); }
    /// Two files of a profile of Chromium, of which each is sound.
    void addSiblings(const std::string &profile) const {
        folder.write(profile + "/Bookmarks", kBookmarks);
        folder.write(profile + "/Preferences", kPreferences);
    }
    void makeDatabase(const fs::path &file, const std::string &sql) const {
        fs::create_directories(file.parent_path());
        SQLite::Database(file.string(), SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE).exec(sql);
    }

    test::TempFolder folder;
    test::MemoryLog log;
    ImportSettings job;
};

TEST_F(NamedDamage, namesAHistoryWithoutItsFirstByteAmongGoodFiles) {
    addSiblings("p");
    folder.write("p/History", "\0QLite format 3\0"s + std::string(5000, 'x'));
    const ScanResult result = scanned();
    ASSERT_EQ(unreadable(result), Lines{"p/History"});
    const std::string reason = result.gaps.unreadable.at(0).reason;
    EXPECT_NE(reason.find("p/History\""), std::string::npos) << reason;
    EXPECT_NE(reason.find("at offset 0 stands 00 51 4C 69"), std::string::npos) << reason;
    EXPECT_NE(reason.find("an SQLite database"), std::string::npos) << reason;
    EXPECT_EQ(log.entries.size(), 1U);
    EXPECT_EQ(result.historyFiles.count(), 2U);
}

TEST_F(NamedDamage, namesEveryFileOfAProfileThatIsEmptyOrZeros) {
    const Lines names = {"Account Web Data",
                         "Bookmarks",
                         "Cookies",
                         "DIPS",
                         "Favicons",
                         "History",
                         "Login Data",
                         "Login Data For Account",
                         "Network Action Predictor",
                         "Preferences",
                         "QuotaManager",
                         "Reporting and NEL",
                         "Secure Preferences",
                         "Shortcuts",
                         "Top Sites",
                         "Trust Tokens",
                         "Web Data"};
    for (const std::string &bytes : {std::string(), std::string(9000, '\0')}) {
        for (const std::string &name : names)
            folder.write("User Data/Profile 2/" + name, bytes);
        Lines expected;
        for (const std::string &name : names)
            expected.push_back("User Data/Profile 2/" + name);
        Lines paths = told();
        std::ranges::sort(paths);
        std::ranges::sort(expected);
        EXPECT_EQ(paths, expected);
    }
}

TEST_F(NamedDamage, namesFilesOfFirefoxThatAreEmptyOrZeros) {
    const Lines names = {"formhistory.sqlite",
                         "logins.json",
                         "permissions.sqlite",
                         "sessionstore-backups/previous.jsonlz4",
                         "storage/default/https+++a.example/idb/1.sqlite",
                         "webappsstore.sqlite"};
    for (const std::string &bytes : {std::string(), std::string(900, '\0')}) {
        Lines expected;
        for (const std::string &name : names) {
            folder.write("Profiles/x.default/" + name, bytes);
            expected.push_back("Profiles/x.default/" + name);
        }
        Lines paths = told();
        std::ranges::sort(paths);
        EXPECT_EQ(paths, expected);
    }
}

TEST_F(NamedDamage, knowsAProfileByItsPathAlone) {
    for (const char *place : {"User Data/Anna/History", "x/Default/History", "Profile 7/Cookies",
                              "home/ada/.config/chromium/Default/Network/Cookies",
                              "Default/Sessions/Session_13300000000000000"}) {
        const auto file = folder.write(place, "SNS");
        EXPECT_EQ(told(), Lines{place});
        fs::remove(file);
    }
}

TEST_F(NamedDamage, takesNoFileOfThatNameElsewhereForABrowsers) {
    folder.write("notes/History", "of the house");
    folder.write("notes/Cookies", "200 g flour");
    folder.write("notes/logins.json", "none");
    folder.write("Users/Default/Documents/History", "text");
    folder.write("Default/Extensions/abc/1.0_0/History", "text");
    folder.write("CURRENT", "of a river");
    const ScanResult result = scanned();
    EXPECT_EQ(unreadable(result), Lines{});
    EXPECT_EQ(result.historyFiles.count(), 0U);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(NamedDamage, knowsADatabaseByWhatIsLeftOfItWhereverItLies) {
    folder.write("any/History", "\0QLite format 3\0....CREATE TABLE urls(id)"s);
    folder.write("any/webappsstore.sqlite", std::string(512, '\0'));
    folder.write("any/text/History", "CREATE TABLE urls(id) is a statement");
    EXPECT_EQ(told(), (Lines{"any/History", "any/webappsstore.sqlite"}));
}

TEST_F(NamedDamage, knowsTheFileAboveAllProfiles) {
    folder.write("Browser/Default/any", "");
    folder.write("Browser/Local State", "");
    folder.write("Browser/History", "text");
    EXPECT_EQ(told(), Lines{"Browser/Local State"});
}

TEST_F(NamedDamage, namesAFileThatTheExaminerNamedWhereverItLies) {
    const auto file = folder.write("any/History", "");
    EXPECT_EQ(unreadable(scannedAt(file)), Lines{"any/History"});
    EXPECT_EQ(unreadable(scannedAt(file.parent_path())), Lines{});
}

TEST_F(NamedDamage, isSilentAboutWhatBrowsersLeaveAsAMatterOfCourse) {
    addSiblings("Default");
    for (const char *name : {"History-journal", "LOCK", "LOG", "Affiliation Database",
                             "Web Data-journal", "notificationstore.json"})
        folder.write("Default/"s + name, "");
    folder.write("Default/Secure Preferences", "{}");
    folder.write("Default/Preferences.bak", "");
    makeDatabase(folder.path() / "Default" / "QuotaManager", "CREATE TABLE HostQuotaTable(host)");
    makeDatabase(folder.path() / "Default" / "Network Action Predictor",
                 "CREATE TABLE lcp_critical_path_predictor(host)");
    EXPECT_EQ(told(), Lines{});
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(NamedDamage, namesAHistoryWhoseTablesAreOthers) {
    addSiblings("p");
    makeDatabase(folder.path() / "p" / "History", "CREATE TABLE meta(key, value)");
    const ScanResult result = scanned();
    ASSERT_EQ(unreadable(result), Lines{"p/History"});
    EXPECT_NE(result.gaps.unreadable.at(0).reason.find("its tables"), std::string::npos);
}

TEST_F(NamedDamage, namesSettingsThatAreCutOrZeroedBehindTheirBeginning) {
    addSiblings("Default");
    for (const std::string &bytes :
         {R"({"spell":{"a":1)"s, "{\"spell\":"s + std::string(90, '\0')}) {
        folder.write("Default/Secure Preferences", bytes);
        EXPECT_EQ(told(), Lines{"Default/Secure Preferences"});
    }
}

TEST_F(NamedDamage, saysNothingOfFormatsThatAreNotAskedFor) {
    folder.write("Default/History", "");
    setWanted(job, test::importOption("chkHistoryChrome"), false);
    EXPECT_EQ(told(), Lines{});
}

TEST_F(NamedDamage, findsAStoreOfLevelDBWithoutItsFirstFile) {
    const std::string store = "Default/Local Storage/leveldb/";
    folder.write(store + "LOCK", "");
    folder.write(store + "MANIFEST-000001", "list");
    const auto found = [this] {
        Lines lines;
        for (const HistoryFile &file : scanned().historyFiles)
            lines.push_back(file.fullPath.lexically_relative(folder.path()).string());
        return lines;
    };
    EXPECT_EQ(found(), Lines{"Default/Local Storage/leveldb"});
    EXPECT_EQ(told(), Lines{});
    folder.write(store + "CURRENT", std::string(16, '\0'));
    EXPECT_EQ(found(), Lines{"Default/Local Storage/leveldb"});
    EXPECT_EQ(told(), Lines{store + "CURRENT"});
    folder.write(store + "CURRENT", "MANIFEST-000001\n");
    EXPECT_EQ(found(), Lines{"Default/Local Storage/leveldb"});
    EXPECT_EQ(told(), Lines{});
    fs::remove(folder.path() / store / "CURRENT");
    fs::remove(folder.path() / store / "MANIFEST-000001");
    EXPECT_EQ(found(), Lines{});
    folder.write(store + "000005.ldb", "blocks\x57\xFB\x80\x8B\x24\x75\x47\xDB");
    folder.write("access/locked.ldb", "who has the file open");
    EXPECT_EQ(found(), Lines{"Default/Local Storage/leveldb"});
}

TEST_F(NamedDamage, namesALinkInThePlaceOfAnArtefactOrABrowsersFolder) {
    addSiblings("Default");
    folder.write("elsewhere/file", "");
    const fs::path profile = folder.path() / "Default";
    fs::create_symlink("../elsewhere/file", profile / "History");
    fs::create_symlink("../elsewhere/file", profile / "Login Data-wal");
    fs::create_directories(folder.path() / ".config");
    fs::create_directory_symlink("../elsewhere", folder.path() / ".config" / "chromium");
    const ScanResult result = scanned();
    EXPECT_EQ(unreadable(result),
              (Lines{".config/chromium", "Default/History", "Default/Login Data-wal"}));
    EXPECT_NE(result.gaps.unreadable.at(1).reason.find("../elsewhere/file"), std::string::npos);
    EXPECT_EQ(result.gaps.linksNotFollowed, 3U);
    EXPECT_EQ(log.entries.size(), 3U);
}

TEST_F(NamedDamage, isSilentAboutLinksThatBrowsersAndSystemsMake) {
    addSiblings("Default");
    folder.write("elsewhere/file", "");
    fs::create_symlink("127.0.1.1:+1234", folder.path() / "Default" / "lock");
    fs::create_symlink("host-1234", folder.path() / "Default" / "SingletonLock");
    fs::create_symlink("elsewhere/file", folder.path() / "History");
    fs::create_directory_symlink("elsewhere", folder.path() / "current");
    const ScanResult result = scanned();
    EXPECT_EQ(unreadable(result), Lines{});
    EXPECT_EQ(result.gaps.linksNotFollowed, 4U);
}

} // namespace
} // namespace nv
