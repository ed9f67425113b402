#include "support/ImportedSite.h"

#include <gtest/gtest.h>

#include <string>

namespace nv {
namespace {

using test::Files;
using test::ImportedSite;
using test::SiteCache;

constexpr const char *kPage = "http://www.harbour-news.example/news/index.html";

// What stands in the page for each reference, whatever browser kept it.
constexpr const char *kRebuilt =
    "<html><head><title>Harbour News</title>"
    "<link rel=\"stylesheet\" href=\"{http://www.harbour-news.example/style/main.css}\" >"
    "<script src=\"{http://www.harbour-news.example/script/menu.js}\" ></script>"
    "<script>commonCss.setAttribute(\"href\", \"/style/extra.css\" );</script>"
    "<style>a { background:url(/pics/one.gif) }"
    "b { background: url({http://www.harbour-news.example/pics/two.gif}) }"
    "c { list-style: url({http://www.harbour-news.example/pics/three.gif}) }"
    "d { background-image:url(/pics/four.gif) }</style></head>"
    "<body background=\"{http://www.harbour-news.example/pics/paper.gif}\" void=\"start()\" >"
    "<iframe src=\"{http://www.harbour-news.example/frame.html}\" ></iframe>"
    "<img src=\"{http://www.harbour-news.example/pics/logo.gif}\" alt=\"x\" >"
    "<IMG src='{http://www.harbour-news.example/pics/logo.gif}' >"
    "<img src={http://www.harbour-news.example/pics/logo.gif} >"
    "<img src=\"{http://cdn.tidewater.example/far/away.gif}\" >"
    "<img src=\"{http://www.harbour-news.example/pics/chart.php?tide=5}\" >"
    "<img src=\"{http://www.harbour-news.example/pics/caf\xC3\xA9.gif}\" >"
    "<img src=\"{http://www.harbour-news.example/pics/cleared.gif}\" >"
    "<img src=\"/pics/never.gif\" >"
    "<object><param value=\"{http://www.harbour-news.example/pics/button.gif}\" ></object>"
    "</body></html>";

class RebuiltSite : public testing::TestWithParam<SiteCache> {};

TEST_P(RebuiltSite, showsThePartsThatTheCacheHolds) {
    ImportedSite site(test::exampleSite(), GetParam());
    const UrlId page = site.idOf(kPage);
    ASSERT_NE(page, UrlId::none);
    ASSERT_TRUE(site.rebuild(page));
    EXPECT_EQ(site.textOfPage(page), kRebuilt);
    EXPECT_TRUE(site.project.log.entries.empty());
}

TEST_P(RebuiltSite, bringsTheBytesThatTheServerSent) {
    ImportedSite site(test::exampleSite(), GetParam());
    const UrlId page = site.idOf(kPage);
    ASSERT_TRUE(site.rebuild(page));
    const Files parts = site.parts(page);
    EXPECT_EQ(parts.size(), 14u);
    for (const test::SiteItem &item : test::exampleSite()) {
        const auto part = parts.find(fromAnsi(item.url));
        const bool isSheet = item.url.ends_with("main.css");
        if (part != parts.end() && !isSheet) {
            EXPECT_EQ(part->second, item.body) << item.url;
        }
        EXPECT_FALSE(item.isCleared && part != parts.end());
    }
}

TEST_P(RebuiltSite, hasEveryPartUnderTheNameThatThePageSays) {
    ImportedSite site(test::exampleSite(), GetParam());
    const UrlId page = site.idOf(kPage);
    ASSERT_TRUE(site.rebuild(page));
    const Files files = site.files(page);
    for (const Substitution &part : site.substitutions(page)) {
        const bool isGone =
            part.tagURLID == 0 || site.urlOf(part.tagURLID).ends_with("cleared.gif");
        EXPECT_NE(files.contains(part.newTag), isGone) << part.newTag;
    }
}

TEST_P(RebuiltSite, bringsTheStyleSheetWithWhatItsCacheNamesByFile) {
    ImportedSite site(test::exampleSite(), GetParam());
    const UrlId page = site.idOf(kPage);
    ASSERT_TRUE(site.rebuild(page));
    const std::string css = site.parts(page)["http://www.harbour-news.example/style/main.css"];
    // Records of Safari and Opera don't know their pictures by a file name.
    const bool isNamed = GetParam() != SiteCache::safari && GetParam() != SiteCache::opera;
    EXPECT_EQ(css.find("_css0000001.gif") != std::string::npos, isNamed) << css;
    EXPECT_EQ(site.files(page).contains("_css0000001.gif"), isNamed);
}

TEST_P(RebuiltSite, comesBackFromTheProjectInALaterSession) {
    ImportedSite site(test::exampleSite(), GetParam());
    const UrlId page = site.idOf(kPage);
    ASSERT_TRUE(site.rebuild(page));
    Files before = site.files(page);
    ASSERT_TRUE(site.harvestLater(page));
    Files after = site.files(page);
    before[sidOf(page) + ".htm"].resize(before[sidOf(page) + ".htm"].size() - 2); // its last break
    EXPECT_EQ(after, before);
    EXPECT_TRUE(site.project.log.entries.empty());
}

TEST_P(RebuiltSite, rebuildsItsFrameLikewise) {
    ImportedSite site(test::exampleSite(), GetParam());
    const UrlId frame = site.idOf("http://www.harbour-news.example/frame.html");
    ASSERT_TRUE(site.rebuild(frame));
    EXPECT_EQ(site.textOfPage(frame),
              "<html><img src=\"{http://www.harbour-news.example/pics/logo.gif}\" >"
              "<p>Tides</p></html>");
}

std::string nameOf(const testing::TestParamInfo<SiteCache> &info) {
    constexpr const char *kNames[] = {"InternetExplorer", "Firefox", "Chrome", "Safari", "Opera"};
    return kNames[static_cast<std::size_t>(info.param)];
}

INSTANTIATE_TEST_SUITE_P(EveryCache, RebuiltSite,
                         testing::Values(SiteCache::internetExplorer, SiteCache::firefox,
                                         SiteCache::chrome, SiteCache::safari, SiteCache::opera),
                         nameOf);

} // namespace
} // namespace nv
