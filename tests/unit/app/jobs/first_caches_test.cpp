#include "db/marks/RebuiltParts.h"
#include "rebuild/exact/ExactRebuild.h"
#include "support/ImportedSite.h"
#include "support/builders/site/SiteCaches.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

namespace nv {
namespace {

using test::ImportedSite;
using test::MadeSite;
using test::SiteAnswer;
using test::SiteCache;

/// The site's pages rebuilt exactly out of each of the first browsers' caches.
class FirstCaches : public testing::TestWithParam<SiteCache> {
  protected:
    /// Whose headers are kept, and with them where something has moved to.
    static bool keepsRedirects() {
        return GetParam() == SiteCache::firefox || GetParam() == SiteCache::chrome;
    }
    static bool isKept(const SiteAnswer &answer) {
        return answer.isKept &&
               (answer.status == 200 || (keepsRedirects() && !answer.location.empty()));
    }
};

std::string plain(std::string_view url) {
    return replaceAll(url, "https://", "http://");
}

TEST_P(FirstCaches, everyPartThatTheyHaveIsFoundByItsAddress) {
    const MadeSite made = test::madeSite();
    ImportedSite imported(asWebSite(made), GetParam());
    std::set<std::string> kept;
    for (const SiteAnswer &answer : made)
        if (isKept(answer))
            kept.insert(plain(answer.url));
    int pages = 0;
    std::size_t found = 0;
    for (const SiteAnswer &page : made) {
        if (page.group.empty())
            continue;
        const UrlId id = imported.idOf(plain(page.url));
        ASSERT_NE(id, UrlId::none) << page.url;
        ASSERT_TRUE(imported.with(id, [&](UrlRecord &record, const RebuildContext &ctx) {
            return rebuildExactly(record, Batch::no, ctx, imported.project.clock);
        })) << page.url;
        ++pages;
        for (const PartNote &note : RebuiltParts(imported.project.connection()).notes(id)) {
            if (!kept.contains(note.address.substr(0, note.address.find('#'))))
                continue;
            ++found;
            EXPECT_NE(note.part, UrlId::none) << page.url << ": " << note.address;
            EXPECT_NE(note.rule, partrule::kDecoded) << page.url << ": " << note.address;
        }
    }
    EXPECT_GT(pages, 40);
    EXPECT_GT(found, 200U);
}

INSTANTIATE_TEST_SUITE_P(OfTheFirstBrowsers, FirstCaches,
                         testing::Values(SiteCache::internetExplorer, SiteCache::firefox,
                                         SiteCache::chrome, SiteCache::safari, SiteCache::opera),
                         [](const auto &instance) {
                             switch (instance.param) {
                             case SiteCache::internetExplorer:
                                 return "InternetExplorer";
                             case SiteCache::firefox:
                                 return "Firefox";
                             case SiteCache::chrome:
                                 return "Chrome";
                             case SiteCache::safari:
                                 return "Safari";
                             case SiteCache::opera:
                                 return "Opera";
                             }
                             return "";
                         });

} // namespace
} // namespace nv
