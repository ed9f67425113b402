#include "readers/Limits.h"
#include "readers/chrome/profile/Bookmarks.h"
#include "support/FactText.h"
#include "support/FileReading.h"
#include "support/builders/ChromeHistory.h"
#include "support/builders/ChromiumBookmarks.h"
#include "time/DateFormat.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using test::chromeTime;
using test::fact;

constexpr std::int64_t kNow = 1308139200;

const test::ChromiumBookmark kPier = {"Pier", "https://pier.example/", "g1", chromeTime(kNow, 5),
                                      chromeTime(kNow + 60)};
const test::ChromiumBookmark kBoats = {
    .name = "Boats", .guid = "g2", .children = {{"Oar", "http://oar.example/", "g3", 0, 0}}};

struct ChromiumBookmarks : testing::Test {
    const std::vector<UrlRecord> &read(const std::string &bytes,
                                       const std::string &name = "Bookmarks") {
        return reading.read(parseChromiumBookmarks, folder.write(name, bytes));
    }
    test::TempFolder folder;
    test::FileReading reading;
};

TEST_F(ChromiumBookmarks, eachIsARowWithItsFolders) {
    const auto &rows = read(test::bookmarksFile({kPier, kBoats}));
    ASSERT_EQ(rows.size(), 2U);
    const UrlRecord &r = rows[0];
    EXPECT_EQ(r.cacheType, "Chrome Bookmark");
    EXPECT_EQ(r.Action, "Bookmarked");
    EXPECT_EQ(r.Status, "Bookmark");
    EXPECT_TRUE(r.IsBookmark);
    EXPECT_FALSE(r.IsHistory);
    EXPECT_EQ(r.URL, "https://pier.example/");
    EXPECT_EQ(r.host, "pier.example");
    EXPECT_EQ(r.WebpageTitle, "Pier");
    EXPECT_EQ(r.Visits, -1);
    EXPECT_EQ(isoUtc(r.ActionDateUTC), "2011-06-15T12:00:00Z");
    EXPECT_EQ(isoUtc(r.OtherDate), "2011-06-15T12:01:00Z");
    EXPECT_EQ(fact(r, "folder"), "Bookmarks bar");
    EXPECT_EQ(fact(r, "guid"), "g1");
    EXPECT_EQ(fact(r, "created"), "2011-06-15 12:00:00.000005 [12952612800000005]");
    EXPECT_EQ(fact(rows[1], "folder"), "Bookmarks bar/Boats");
    EXPECT_FALSE(rows[1].ActionDateUTC.has());
    EXPECT_EQ(reading.result.state, ReadState::complete);
    EXPECT_EQ(reading.result.passedOver,
              (std::map<std::string, std::uint64_t>{{"folders, which their bookmarks name", 1}}));
}

TEST_F(ChromiumBookmarks, theirPlaceInTheFileIsTold) {
    const std::string file = test::bookmarksFile({kPier});
    const auto &rows = read(file);
    const auto at = static_cast<std::size_t>(rows.at(0).MapFileOffset);
    EXPECT_EQ(file.substr(at, test::bookmarkJson(kPier).size()), test::bookmarkJson(kPier));
    EXPECT_EQ(fact(rows[0], "source_offset"), std::to_string(at));
}

TEST_F(ChromiumBookmarks, relativesHaveFoldersOfTheirOwnAmongTheRoots) {
    const auto &rows =
        read("{\"roots\": {\"custom_root\": {\"trash\": " +
             test::bookmarkJson({.name = "Trash", .children = {kPier}}) +
             ", \"unsorted\": {\"children\": [" + test::bookmarkJson(kPier) + "]}}}}");
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(fact(rows[0], "folder"), "custom_root/Trash");
    EXPECT_EQ(fact(rows[1], "folder"), "custom_root/unsorted");
}

TEST_F(ChromiumBookmarks, aLastUseMayStandAmongOtherNotes) {
    const auto &rows = read(R"({"roots": {"other": {"children": [{"url": "http://a.example/",
        "meta_info": {"last_visited_desktop": "12952612800000000", "url": "http://no.example/"},
        "date_added": 12952612800000000, "id": "12"}]}}})");
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].URL, "http://a.example/");
    EXPECT_EQ(isoUtc(rows[0].ActionDateUTC), "2011-06-15T12:00:00Z") << "a number, not a text";
    EXPECT_EQ(isoUtc(rows[0].OtherDate), "2011-06-15T12:00:00Z");
    EXPECT_EQ(fact(rows[0], "guid"), "12");
}

TEST_F(ChromiumBookmarks, aCopyGivesWhatTheFileBesideItHasNot) {
    folder.write("Bookmarks", test::bookmarksFile({kPier}));
    test::ChromiumBookmark renamed = kPier;
    renamed.name = "Old pier";
    const test::ChromiumBookmark gone = {"Gone", "http://gone.example/", "g9", chromeTime(kNow)};
    for (const char *copy : {"Bookmarks.bak", "bookmarks.msbak"}) {
        const auto &rows = read(test::bookmarksFile({kPier, renamed, gone}), copy);
        ASSERT_EQ(rows.size(), 2U) << copy;
        EXPECT_EQ(rows[0].WebpageTitle, "Old pier");
        EXPECT_EQ(rows[1].URL, "http://gone.example/");
        EXPECT_EQ(reading.result.passedOver.at(
                      "bookmarks that the file itself, beside this copy, has too"),
                  1U);
    }
    EXPECT_EQ(read(test::bookmarksFile({kPier}), "AccountBookmarks.bak").size(), 1U)
        << "a copy of another file";
}

TEST_F(ChromiumBookmarks, anEncryptedCopyIsToldAsSuch) {
    read("v20" + std::string(64, 'x'), "EncryptedBookmarks2");
    EXPECT_EQ(reading.result.state, ReadState::notReadYet);
    EXPECT_EQ(reading.result.reason, "bookmarks, encrypted, v20, 67 bytes");
}

TEST_F(ChromiumBookmarks, whatStandsBeforeDamageIsKept) {
    const std::string file = test::bookmarksFile({kPier, kBoats});
    const auto &rows = read(file.substr(0, file.find("oar.example")));
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].WebpageTitle, "Pier");
    EXPECT_EQ(fact(rows[0], "folder"), "bookmark_bar") << "its name was to come yet";
    EXPECT_EQ(rows[1].WebpageTitle + rows[1].URL, "Oar") << "it ends amid its address";
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_NE(reading.result.reason.find("Bookmarks: what stands before byte"), std::string::npos);
    EXPECT_EQ(reading.log.entries.size(), 1U);
}

TEST_F(ChromiumBookmarks, anyCutIsToldOfAndSurvived) {
    const std::string file = test::bookmarksFile({kPier, kBoats}, {kPier});
    const std::size_t end = file.rfind('}');
    for (std::size_t length = 0; length <= end; ++length) {
        read(file.substr(0, length));
        EXPECT_TRUE(reading.result.state == ReadState::cutShort ||
                    reading.result.state == ReadState::failed)
            << length;
        EXPECT_FALSE(reading.result.reason.empty());
    }
}

TEST_F(ChromiumBookmarks, wrongTypesAreReadAsWhatTheyCanBe) {
    const auto &rows = read(R"({"roots": {"bookmark_bar": [1], "other": {"children": {"a": 1},
        "name": 7}, "synced": {"children": [1, null, [], {"type": "url", "url": true, "name": null,
        "date_added": {"x": 1}}, {"type": "url", "url": "http://b.example/", "date_added": "soon",
        "date_last_used": -1, "name": [], "guid": 3}]}}, "version": []})");
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[1].URL, "http://b.example/");
    EXPECT_EQ(fact(rows[1], "guid"), "3");
    EXPECT_FALSE(rows[1].ActionDateUTC.has() || rows[1].OtherDate.has());
    EXPECT_EQ(reading.result.state, ReadState::complete);
}

TEST_F(ChromiumBookmarks, foldersWithinEachOtherEndSomewhere) {
    test::ChromiumBookmark deep = kPier;
    for (std::size_t i = 0; i < limits::kJsonDepth; ++i)
        deep = {.name = std::string(100, 'f'), .children = {kPier, deep}};
    const auto &rows = read(test::bookmarksFile({deep}));
    EXPECT_EQ(reading.result.state, ReadState::cutShort);
    EXPECT_GT(reading.result.notReached, 0U);
    ASSERT_GT(rows.size(), 100U);
    EXPECT_LE(fact(rows.back(), "folder").size(), limits::kFolderPathBytes + 3);
}

TEST_F(ChromiumBookmarks, textThatIsNoUtf8IsToldOf) {
    const auto &rows =
        read("{\"roots\": {\"other\": {\"children\": [{\"url\": \"http://a.example/\", \"name\": "
             "\"gr\xFC"
             "n\"}]}}}");
    EXPECT_EQ(rows.at(0).WebpageTitle, "gr?n");
    EXPECT_EQ(reading.result.noted.at("byte that is no UTF-8, shown as \"?\""), 1U);
}

TEST_F(ChromiumBookmarks, aCancelEndsTheReading) {
    test::CancelAfter task(2);
    reading.read(parseChromiumBookmarks,
                 folder.write("Bookmarks", test::bookmarksFile({kPier, kPier, kPier, kPier})),
                 task);
    EXPECT_EQ(reading.result.state, ReadState::cancelled);
    EXPECT_LT(reading.sink.records.size(), 4U);
}

} // namespace
} // namespace nv
