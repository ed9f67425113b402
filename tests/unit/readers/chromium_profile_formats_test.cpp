#include "base/Files.h"
#include "readers/Candidate.h"
#include "readers/Registry.h"
#include "support/TempFolder.h"
#include "support/builders/ChromiumBookmarks.h"
#include "support/builders/ChromiumProfile.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;

struct ChromiumProfileFormats : testing::Test {
    static std::string keyOf(const fs::path &file, bool verify = true) {
        const Evidence evidence({});
        Candidate candidate = candidateOf(file, evidence);
        const Bytes head = verify ? readHead(file, 65536) : Bytes();
        candidate.head = ByteView(head);
        candidate.verifySignatures = verify;
        const Reader *reader = recognise(candidate);
        return reader ? std::string(reader->key) : std::string();
    }
    std::string keyOfText(const std::string &name, const std::string &bytes, bool verify = true) {
        return keyOf(folder.write(name, bytes), verify);
    }
    test::TempFolder folder;
};

TEST_F(ChromiumProfileFormats, databasesAreKnownByTheirTablesInAnyFolder) {
    test::ChromiumCookies(folder.path() / "seized/Network/Cookies").close();
    test::ChromiumCookies(folder.path() / "seized/Extension Cookies").close();
    test::ChromiumWebData(folder.path() / "seized/Web Data").close();
    test::ChromiumLogins(folder.path() / "seized/Login Data For Account").close();
    test::SqliteFile(folder.path() / "seized/Account Web Data")
        .run("CREATE TABLE meta(key)")
        .run("CREATE TABLE credit_cards(guid)")
        .close();
    EXPECT_EQ(keyOf(folder.path() / "seized/Network/Cookies"), "chromium-cookies");
    EXPECT_EQ(keyOf(folder.path() / "seized/Extension Cookies"), "chromium-cookies");
    EXPECT_EQ(keyOf(folder.path() / "seized/Web Data"), "chromium-web-data");
    EXPECT_EQ(keyOf(folder.path() / "seized/Account Web Data"), "chromium-web-data");
    EXPECT_EQ(keyOf(folder.path() / "seized/Login Data For Account"), "chromium-logins");
}

TEST_F(ChromiumProfileFormats, theClassicRowTakesWhatItAlwaysTook) {
    test::ChromiumCookies(folder.path() / "Chrome/Cookies").close();
    EXPECT_EQ(keyOf(folder.path() / "Chrome/Cookies"), "chrome-cookies");
}

TEST_F(ChromiumProfileFormats, otherTablesAreOtherPrograms) {
    for (const char *name : {"Cookies", "Web Data", "Login Data"}) {
        const fs::path file = folder.path() / "other" / name;
        test::SqliteFile(file).run("CREATE TABLE songs(id)").close();
        EXPECT_EQ(keyOf(file), "") << name;
        EXPECT_NE(keyOf(file, false), "") << name;
    }
}

TEST_F(ChromiumProfileFormats, textsAreKnownByTheirMembers) {
    const std::string bookmarks = test::bookmarksFile({});
    for (const char *name : {"Bookmarks", "Bookmarks.bak", "AccountBookmarks", "bookmarks.msbak"})
        EXPECT_EQ(keyOfText(name, bookmarks), "chromium-bookmarks") << name;
    EXPECT_EQ(keyOfText("EncryptedBookmarks2", "v10..."), "chromium-bookmarks");
    EXPECT_EQ(keyOfText("Preferences", " {\"profile\": {}}"), "chromium-preferences");
    EXPECT_EQ(keyOfText("Secure Preferences", "{\"protection\": {}}"), "chromium-preferences");
    EXPECT_EQ(keyOfText("Local State", "\xEF\xBB\xBF{\"os_crypt\": {}}"), "chromium-local-state");
}

TEST_F(ChromiumProfileFormats, otherTextsAreOtherPrograms) {
    for (const char *name : {"Bookmarks", "Preferences", "Local State", "EncryptedBookmarks2"}) {
        EXPECT_EQ(keyOfText(name, "{\"colour\": \"blue\"}"), "") << name;
        EXPECT_EQ(keyOfText(name, "profile = \"profile\" \"roots\""), "") << name;
        EXPECT_NE(keyOfText(name, "", false), "") << name;
    }
    EXPECT_EQ(keyOfText("My Bookmarks", test::bookmarksFile({})), "");
}

TEST_F(ChromiumProfileFormats, areNoneOfTheClassicRules) {
    for (const char *key : {"chromium-cookies", "chromium-web-data", "chromium-logins",
                            "chromium-bookmarks", "chromium-preferences", "chromium-local-state"})
        EXPECT_TRUE(readerByKey(key)->isBeyondClassic) << key;
}

} // namespace
} // namespace nv
