#include "LinkProject.h"
#include "views/links/LinkList.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv::test {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class LinkListTest : public testing::Test, protected LinkProject {
  protected:
    LinkList list(std::int64_t id, RecordIds ids = RecordIds::narrow) {
        return loadLinks(db(), UrlId{id}, ids, project.log);
    }
};

TEST_F(LinkListTest, bothEndsOfAPairAreListedByUrl) {
    const auto before = record("http://before/");
    const auto page = record("http://page/");
    const auto visit = record("http://Z/", true);
    link(before, "http://page/");
    link(page, "http://Z/");
    run();
    const LinkList links = list(page);
    ASSERT_EQ(links.rows.size(), 2U);
    EXPECT_EQ(links.failure, "");
    EXPECT_EQ(links.rows[0].other, UrlId{before});
    EXPECT_EQ(links.rows[0].end, LinkEnd::parent);
    EXPECT_EQ(links.rows[0].kind, "Cache");
    EXPECT_EQ(links.rows[0].url, "http://page/");
    EXPECT_EQ(links.rows[0].hashedURL, hashOfUrl("http://page/"));
    EXPECT_EQ(links.rows[1].other, UrlId{visit});
    EXPECT_EQ(links.rows[1].end, LinkEnd::child);
    EXPECT_EQ(links.rows[1].kind, "History");
}

TEST_F(LinkListTest, visitsAreCountedByRowAndToldByTheRecord) {
    const auto page = record("http://page/");
    const auto visit = record("http://b/", true);
    link(page, "http://b/");
    run();
    EXPECT_EQ(list(page).rows.at(0).visitCount, 1);
    EXPECT_EQ(list(page).rows.at(0).visits, 7);
    db().exec(fmt::format("UPDATE URLs SET Visits = {} WHERE URL_ID = {}", kVisitsUnknown, visit));
    EXPECT_EQ(list(page).rows.at(0).visitCount, 1);
    EXPECT_EQ(list(page).rows.at(0).visits, std::nullopt);
    db().exec("UPDATE URLs SET Visits = NULL");
    EXPECT_EQ(list(page).rows.at(0).visitCount, 0);
}

TEST_F(LinkListTest, theKindOfCookiesAndBookmarksIsNamed) {
    const auto page = record("http://page/");
    const auto cookie = record("http://b/");
    link(page, "http://b/");
    run();
    db().exec(fmt::format("UPDATE URLs SET IsCookie = 1 WHERE URL_ID = {}", cookie));
    EXPECT_EQ(list(page).rows.at(0).kind, "Cookie");
    db().exec("UPDATE URLs SET IsCookie = 0, IsBookmark = 1");
    EXPECT_EQ(list(page).rows.at(0).kind, "Bookmark");
    db().exec("UPDATE URLs SET IsBookmark = 0, CacheType = 'Simple HTML'");
    EXPECT_EQ(list(page).rows.at(0).kind, "Simple HTML");
    db().exec("UPDATE URLs SET CacheType = 'IE CACHE '");
    EXPECT_EQ(list(page).rows.at(0).kind, "Cache");
}

TEST_F(LinkListTest, anIdBeyond16BitsIsRefusedAndTheSwitchNamed) {
    record("http://page/");
    link(1, "http://b/");
    db().exec("INSERT INTO URLs (URL_ID, URL, HashedURL) VALUES (32767, 'x', ''), (32768, "
              "'http://b/', '" +
              hashOfUrl("http://b/") + "')");
    run();
    EXPECT_EQ(list(32767).failure, "");
    const LinkList refused = list(32768);
    EXPECT_THAT(refused.rows, IsEmpty());
    EXPECT_THAT(refused.failure, testing::StartsWith("Error Loading Links: "));
    EXPECT_THAT(refused.failure, HasSubstr("32768"));
    EXPECT_THAT(refused.failure, HasSubstr("WideRecordIds in the section [BEYOND]"));
    ASSERT_EQ(project.log.entries.size(), 1U);
    EXPECT_EQ(project.log.entries[0].procedure, "MainForm.LoadLinks()");
    EXPECT_EQ(project.log.entries[0].severity, Severity::Warning);
    ASSERT_EQ(list(32768, RecordIds::wide).rows.size(), 1U);
    EXPECT_EQ(list(32768, RecordIds::wide).rows[0].other, UrlId{1});
    // The limit is that of the record that is listed: others may lie beyond it.
    EXPECT_EQ(list(1).rows.at(0).other, UrlId{32768});
}

TEST_F(LinkListTest, whetherThereIsAnAnalysisIsKnown) {
    const auto page = record("http://page/");
    record("http://b/", true);
    link(page, "http://b/");
    EXPECT_FALSE(hasLinkAnalysis(db()));
    EXPECT_THAT(list(page).rows, IsEmpty());
    run();
    EXPECT_TRUE(hasLinkAnalysis(db()));
}

} // namespace
} // namespace nv::test
