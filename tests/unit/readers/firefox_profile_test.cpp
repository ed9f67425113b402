#include "base/Files.h"
#include "readers/Candidate.h"
#include "readers/Registry.h"
#include "readers/firefox/profile/DownloadsFile.h"
#include "readers/firefox/profile/Favicons.h"
#include "readers/firefox/profile/FormHistory.h"
#include "readers/firefox/profile/Logins.h"
#include "readers/firefox/profile/Permissions.h"
#include "support/SqliteHistoryReading.h"
#include "support/builders/FirefoxProfile.h"
#include "support/builders/Places.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::firefoxTime;

constexpr std::int64_t kStamp = 1784016000; // 2026-07-14 08:00
constexpr std::int64_t kMilliseconds = kStamp * 1000;

class FirefoxProfile : public testing::Test {
  protected:
    using ReadFunction = test::SqliteHistoryReading::ReadFunction;

    fs::path file(const char *name) const { return folder.path() / "profile" / name; }
    test::SqliteHistoryReading &read(ReadFunction reader, test::SqliteFile &made) {
        made.close();
        return reading.read(reader, made.path());
    }
    /// Nothing for a fact that isn't there.
    static std::string fact(const UrlRecord &record, std::string_view name) {
        for (const RecordFact &each : record.facts)
            if (each.name == name && std::holds_alternative<std::string>(each.value))
                return std::get<std::string>(each.value);
        return {};
    }
    std::string keyOf(const fs::path &path) const {
        const Evidence evidence(folder.path());
        Candidate candidate = candidateOf(path, evidence);
        const Bytes head = evidence.head(path, 65536);
        candidate.head = ByteView(head);
        const Reader *reader = recognise(candidate);
        return reader ? std::string(reader->key) : std::string();
    }
    /// What holds for a file whatever is in it.
    void expectTold(const test::SqliteHistoryReading &each) const {
        const bool isSound = each.result.state == ReadState::complete;
        EXPECT_EQ(isSound, each.result.reason.empty());
        EXPECT_TRUE(isSound || !each.log.entries.empty());
        EXPECT_TRUE(fs::is_empty(each.scratch.path()));
    }

    test::TempFolder folder;
    test::SqliteHistoryReading reading;
};

TEST_F(FirefoxProfile, aFormValueFillsItsFields) {
    test::FirefoxForms forms(file("formhistory.sqlite"));
    forms.add("email", "ada@example.com", firefoxTime(kStamp, 500'000));
    forms.add("searchbar-history", "tides", firefoxTime(kStamp));
    const auto &records = read(parseFirefoxFormsFile, forms).records();
    ASSERT_EQ(records.size(), 2U);
    EXPECT_EQ(records[0].cacheType, "Firefox Form Value");
    EXPECT_EQ(records[0].Action, "Typed");
    EXPECT_EQ(records[0].URLFileName, "email");
    EXPECT_EQ(records[0].MetaData, "ada@example.com");
    EXPECT_EQ(records[0].Visits, -1);
    EXPECT_EQ(isoUtc(records[0].ActionDateUTC), "2026-07-14T08:00:00Z");
    EXPECT_FALSE(records[0].IsHistory || records[0].IsBookmark || records[0].IsCookie);
    EXPECT_EQ(fact(records[0], "last_used"), "2026-07-14 08:00:00.500000");
    EXPECT_EQ(records[1].Action, "Searched");
    EXPECT_EQ(fact(records[1], "search_term"), "tides");
}

TEST_F(FirefoxProfile, aRemovedFormValueIsARowThatSaysWhen) {
    test::FirefoxForms forms(file("formhistory.sqlite"));
    forms.run("INSERT INTO moz_deleted_formhistory VALUES(1,1784016000000000,'guid')");
    const auto &records = read(parseFirefoxFormsFile, forms).records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].Status, "Deleted");
    EXPECT_EQ(isoUtc(records[0].ActionDateUTC), "2026-07-14T08:00:00Z");
}

TEST_F(FirefoxProfile, aPermissionSaysWhatAndForWhom) {
    test::FirefoxPermissions permissions(file("permissions.sqlite"));
    permissions.add("https://a.example^userContextId=4", "geo", 2, kMilliseconds);
    const auto &records = read(parseFirefoxPermissionsFile, permissions).records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].URL, "https://a.example");
    EXPECT_EQ(records[0].host, "a.example");
    EXPECT_EQ(records[0].Status, "blocked");
    EXPECT_EQ(isoUtc(records[0].ActionDateUTC), "2026-07-14T08:00:00Z");
    EXPECT_EQ(fact(records[0], "permission"), "geo");
    EXPECT_EQ(fact(records[0], "container"), "container 4");
}

TEST_F(FirefoxProfile, aLoginTellsNoNameAndNoPassword) {
    const fs::path path =
        folder.write("profile/logins.json",
                     test::firefoxLogins({{"https://mail.example", "c2VjcmV0", kMilliseconds}}));
    const auto &records = reading.read(parseFirefoxLoginsFile, path).records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].URL, "https://mail.example");
    EXPECT_EQ(records[0].Action, "Saved");
    EXPECT_EQ(isoUtc(records[0].ActionDateUTC), "2026-07-14T08:00:00Z");
    EXPECT_EQ(fact(records[0], "encrypted"), "encrypted, 6 bytes");
    for (const RecordFact &each : records[0].facts)
        EXPECT_NE(each.value, FactValue(std::string("c2VjcmV0"))) << each.name;
}

TEST_F(FirefoxProfile, loginsThatAreNoListFailWithAReason) {
    for (const char *text : {"", "{", "[]", R"({"logins":{}})", "\xFF\xFE", R"({"logins":7})"}) {
        const fs::path path = folder.write("profile/logins.json", text);
        test::SqliteHistoryReading each;
        each.read(parseFirefoxLoginsFile, path);
        EXPECT_EQ(each.result.state, ReadState::failed) << text;
        expectTold(each);
    }
    const std::string deep(100'000, '[');
    const fs::path path = folder.write("profile/logins.json", R"({"logins":)" + deep);
    reading.read(parseFirefoxLoginsFile, path);
    EXPECT_EQ(reading.result.state, ReadState::failed);
}

TEST_F(FirefoxProfile, anIconIsARowWhereTheHistoryDoesNotListItsPage) {
    test::Places places(file("places.sqlite"));
    places.add({.id = 1, .url = "http://listed.example/"}).close();
    test::FirefoxFavicons icons(file("favicons.sqlite"));
    icons.add("http://listed.example/", "http://listed.example/i.png");
    icons.add("http://gone.example/", "http://gone.example/i.png");
    const auto &records = read(parseFirefoxFaviconsFile, icons).records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].URL, "http://gone.example/");
    EXPECT_EQ(fact(records[0], "icon_url"), "http://gone.example/i.png");
    EXPECT_EQ(reading.result.noted.begin()->second, 1U);
}

TEST_F(FirefoxProfile, withoutAHistoryEachPageOfAnIconIsARow) {
    for (const char *history : {"", "no database"}) {
        if (*history)
            folder.write("profile/places.sqlite", history);
        test::FirefoxFavicons icons(file("favicons.sqlite"));
        icons.add("http://a.example/", "http://a.example/i.png");
        icons.close();
        test::SqliteHistoryReading each;
        each.read(parseFirefoxFaviconsFile, icons.path());
        EXPECT_EQ(each.records().size(), 1U);
        EXPECT_EQ(each.result.state, *history ? ReadState::cutShort : ReadState::complete);
        expectTold(each);
    }
}

TEST_F(FirefoxProfile, aDownloadOfTheOldFileFillsItsFields) {
    test::FirefoxDownloads downloads(file("downloads.sqlite"));
    downloads.add("http://f.example/x.zip", "file:///C:/x%20y.zip", firefoxTime(kStamp), 2);
    const auto &records = read(parseFirefoxDownloadsFile, downloads).records();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_EQ(records[0].cacheType, "Firefox Download");
    EXPECT_EQ(records[0].Status, "failed");
    EXPECT_TRUE(records[0].IsHistory);
    EXPECT_EQ(fact(records[0], "target_path"), "C:/x y.zip");
}

TEST_F(FirefoxProfile, filesAreKnownByTheirTables) {
    test::FirefoxForms(file("formhistory.sqlite")).close();
    test::FirefoxPermissions(file("permissions.sqlite")).close();
    test::FirefoxFavicons(file("favicons.sqlite")).close();
    test::FirefoxDownloads(file("downloads.sqlite")).close();
    folder.write("profile/logins.json", test::firefoxLogins({}));
    EXPECT_EQ(keyOf(file("formhistory.sqlite")), "firefox-forms");
    EXPECT_EQ(keyOf(file("permissions.sqlite")), "firefox-permissions");
    EXPECT_EQ(keyOf(file("favicons.sqlite")), "firefox-favicons");
    EXPECT_EQ(keyOf(file("downloads.sqlite")), "firefox-downloads");
    EXPECT_EQ(keyOf(file("logins.json")), "firefox-logins");
    fs::copy_file(file("formhistory.sqlite"), file("old permissions.sqlite"));
    EXPECT_EQ(keyOf(file("old permissions.sqlite")), "") << "another program's";
    folder.write("profile/logins-of-mine.json", "{}");
    EXPECT_EQ(keyOf(file("logins-of-mine.json")), "");
}

TEST_F(FirefoxProfile, cancellingEndsEachReading) {
    test::FirefoxForms forms(file("formhistory.sqlite"));
    test::FirefoxPermissions permissions(file("permissions.sqlite"));
    test::FirefoxDownloads downloads(file("downloads.sqlite"));
    test::FirefoxFavicons icons(file("favicons.sqlite"));
    for (int i = 0; i < 3; ++i) {
        forms.add("f", std::to_string(i), 1);
        permissions.add("http://" + std::to_string(i), "geo", 1, 1);
        downloads.add("http://" + std::to_string(i), "", 1, 1);
        icons.add("http://" + std::to_string(i), "i");
    }
    const fs::path logins =
        folder.write("profile/logins.json", test::firefoxLogins({{"http://a"}, {"http://b"}}));
    const auto expectCancelled = [&](ReadFunction reader, const fs::path &path) {
        for (int calls = 0;; ++calls) {
            test::CancelAfter cancel(calls);
            test::SqliteHistoryReading each;
            each.read(reader, path, cancel);
            if (each.result.state == ReadState::complete)
                break;
            EXPECT_EQ(each.result.state, ReadState::cancelled) << path;
            EXPECT_TRUE(each.log.entries.empty()) << path;
            ASSERT_LT(calls, 50);
        }
    };
    for (test::SqliteFile *made :
         std::initializer_list<test::SqliteFile *>{&forms, &permissions, &downloads, &icons})
        made->close();
    expectCancelled(parseFirefoxFormsFile, forms.path());
    expectCancelled(parseFirefoxPermissionsFile, permissions.path());
    expectCancelled(parseFirefoxDownloadsFile, downloads.path());
    expectCancelled(parseFirefoxFaviconsFile, icons.path());
    expectCancelled(parseFirefoxLoginsFile, logins);
}

TEST_F(FirefoxProfile, aFileWithoutItsTableFails) {
    for (const ReadFunction reader : {parseFirefoxFormsFile, parseFirefoxPermissionsFile,
                                      parseFirefoxFaviconsFile, parseFirefoxDownloadsFile}) {
        test::SqliteFile other(file("other.sqlite"));
        other.run("CREATE TABLE something(id)").close();
        test::SqliteHistoryReading each;
        each.read(reader, other.path());
        EXPECT_EQ(each.result.state, ReadState::failed);
        EXPECT_TRUE(each.records().empty());
        expectTold(each);
    }
}

} // namespace
} // namespace nv
