#include "db/marks/RebuildAudit.h"
#include "support/WideText.h"
#include "unit/rebuild/RebuildFixture.h"

#include <functional>

namespace nv {
namespace {

class RebuildTest : public test::RebuildFixture {
  protected:
    /// Rebuilds the page, cancelling at a later step each time until it is rebuilt; `check` looks
    /// at what a cancelled one left. The number of those.
    int cancelAtEachStep(UrlId html, const std::function<void()> &check) {
        for (int calls = 0; calls < 100; ++calls) {
            test::CancelAfter cancelling(calls);
            UrlRecord record = get(html);
            const RebuildContext ctx{project.connection(), store,      evidence, temp,
                                     project.log,          cancelling, settings};
            if (rebuildWebPage(record, Batch::no, ctx, project.clock))
                return calls;
            check();
        }
        return 0;
    }
};

TEST_F(RebuildTest, putsPageAndPartsSideBySide) {
    const UrlId picture = add("http://host/images/logo.gif", "GIF89a...");
    const UrlId style = add("http://host/style/main.css", "body { color: red }");
    const UrlId html = add("http://host/page.html",
                           "<html><link href=\"/style/main.css\" >\r\n<body onload=\"x()\">\r\n"
                           "<img src=\"images/logo.gif\" ></body></html> ");
    ASSERT_TRUE(rebuild(html)) << project.log.entries.size();
    EXPECT_EQ(fileOf(html, "0000003.htm"),
              "<html><link href=\"0000002.css\" ><body void=\"x()\"><img src=\"0000001.gif\" >"
              "</body></html> \r\n");
    EXPECT_EQ(fileOf(html, "0000001.gif"), "GIF89a...");
    EXPECT_EQ(fileOf(html, "0000002.css"), "body { color: red }");
    EXPECT_EQ(page.IngredientIDs, "1|images/logo.gif|0000001.gif|\r\n"
                                  "2|/style/main.css|0000002.css|\r\n");
    EXPECT_EQ(number(picture) + number(style), 3);
    const UrlRecord stored = get(html);
    EXPECT_EQ(stored.RebuiltMethod, "Cache");
    EXPECT_EQ(stored.RebuiltDateTime, "15-06-2011 12:00:00");
    EXPECT_TRUE(stored.CacheFileRebuilt);
    EXPECT_EQ(stored.IngredientIDs, page.IngredientIDs);
    EXPECT_EQ(fileOf(html, "_TagIDs.txt"), page.IngredientIDs);
    EXPECT_TRUE(project.log.entries.empty());
}

/// Does something as soon as the references have been found.
class AfterTheSearch final : public TaskMonitor {
  public:
    explicit AfterTheSearch(std::function<void()> deed) : m_deed(std::move(deed)) {}
    void describe(const TaskHeading &) override {}
    bool advance(double) override { return true; }
    bool wantsStep() const override { return true; }
    void show(const TaskStep &step) override {
        if (step.bottomMessage == "Reconciling")
            m_deed();
    }

  private:
    std::function<void()> m_deed;
};

TEST_F(RebuildTest, fetchesItsPageOnce) {
    add("http://host/images/logo.gif", "GIF89a...");
    const UrlId html = add("http://host/page.html", "<img src=\"images/logo.gif\" > ");
    page = get(html);
    AfterTheSearch changing(
        [this] { writeWhole(evidenceFolder / "ABCDEFGH" / page.CacheFileName, "another page"); });
    const RebuildContext ctx{project.connection(), store,    evidence, temp,
                             project.log,          changing, settings};
    ASSERT_TRUE(rebuildWebPage(page, Batch::no, ctx, project.clock));
    EXPECT_EQ(fileOf(html, "0000002.htm"), "<img src=\"0000001.gif\" > \r\n");
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(RebuildTest, leavesAReferenceWithoutAPartAsItIs) {
    const UrlId html = add("http://host/page.html", "<img src=\"images/gone.gif\" > ");
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(fileOf(html, "0000001.htm"), "<img src=\"images/gone.gif\" > \r\n");
    EXPECT_EQ(page.IngredientIDs, "0|images/gone.gif|images/gone.gif|\r\n");
    EXPECT_EQ(tag("AccuracyScore", "1"), "0:0");
    EXPECT_EQ(tag("NewTag", "1"), "images/gone.gif");
}

TEST_F(RebuildTest, isNotDoneForAPageWithoutReferences) {
    const UrlId html = add("http://host/page.html", "<html>text</html>");
    EXPECT_FALSE(rebuild(html));
    EXPECT_FALSE(get(html).CacheFileRebuilt);
    EXPECT_EQ(fileOf(html, "0000001.htm"), "");
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(RebuildTest, isExactForAPageInUtf16UnlessTheClassicOneIsAskedFor) {
    add("http://host/logo.gif", "GIF89a...");
    for (const bool isBigEndian : {false, true}) {
        const UrlId html = add("http://host/page.html",
                               test::markedWideText("<html><img src=\"/logo.gif\">", isBigEndian));
        settings.method = MethodChoice::classic;
        EXPECT_FALSE(rebuild(html));
        settings.method = MethodChoice::automatic;
        ASSERT_TRUE(rebuild(html));
        EXPECT_EQ(get(html).RebuiltMethod, kExactMethod);
        const std::string written = fileOf(html, page.RunTimeRebuiltFilePath.filename().string());
        EXPECT_NE(written.find(test::wideText("\"0000001.gif\"", isBigEndian)), std::string::npos);
        EXPECT_EQ(fileOf(html, "0000001.gif"), "GIF89a...");
    }
}

TEST_F(RebuildTest, isNotDoneForAPageThatIsGone) {
    EXPECT_FALSE(rebuild(add("http://host/page.html", "")));
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(RebuildTest, doneTwiceGivesTheSameAndNoSecondRows) {
    add("http://host/a/logo.gif", "GIF89a");
    const UrlId html = add("http://host/page.html", "<img src=\"a/logo.gif\" > ");
    ASSERT_TRUE(rebuild(html));
    const std::string first = fileOf(html, "0000002.htm");
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(fileOf(html, "0000002.htm"), first);
    EXPECT_EQ(project.number("SELECT Count(*) FROM Tags"), 1);
    EXPECT_EQ(project.number("SELECT Count(*) FROM TagOptions"), 1);
}

TEST_F(RebuildTest, takesTheFirstOfSeveralCandidates) {
    add("http://host/a/logo.gif?x=1", "GIF89a one");
    add("http://host/a/logo.gif", "GIF89a two");
    add("http://host/b/a/logo.gif", "GIF89a three");
    const UrlId html = add("http://host/page.html", "<img src=\"a/logo.gif\" > ");
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(tag("AccuracyScore", "1"), "1:3");
    EXPECT_EQ(tag("TagURLID", "1"), "1");
    EXPECT_EQ(tag("NewTag", "1"), "../ABCDEFGH/file1.");
}

TEST_F(RebuildTest, namesPartsByUrlInOtherBrowsersCaches) {
    add("http://host/a/logo.gif", "GIF89a", "Opera Cache");
    const UrlId html = add("http://host/page.html", "<img src=\"a/logo.gif\" > ", "Opera Cache");
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(project.text("SELECT Option FROM TagOptions"), "http://host/a/logo.gif");
    EXPECT_EQ(tag("NewTag", "1"), "");
    EXPECT_EQ(page.IngredientIDs, "1|a/logo.gif|0000001.gif|\r\n");
    EXPECT_EQ(fileOf(html, "0000001.gif"), "GIF89a");
}

TEST_F(RebuildTest, looksOnOtherHostsOnlyWhenTheOwnHasNone) {
    add("http://other/a/logo.gif", "GIF89a other");
    const UrlId html = add("http://host/page.html", "<img src=\"a/logo.gif\" > ");
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(tag("TagURLID", "1"), "1");
    add("http://host/a/logo.gif", "GIF89a own");
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(tag("TagURLID", "1"), "3");
    EXPECT_EQ(tag("AccuracyScore", "1"), "1:1");
}

TEST_F(RebuildTest, neverMixesCaches) {
    add("http://host/a/logo.gif", "GIF89a", "Opera Cache");
    ASSERT_TRUE(rebuild(add("http://host/page.html", "<img src=\"a/logo.gif\" > ")));
    EXPECT_EQ(tag("AccuracyScore", "1"), "0:0");
}

TEST_F(RebuildTest, knowsTheSecondHostOfOneWebMail) {
    add("http://other/a/logo.gif", "GIF89a other");
    add("http://mail.yimg.com/a/logo.gif", "GIF89a mail");
    const UrlId html = add("http://us.mail.yahoo.com/page.html", "<img src=\"a/logo.gif\" > ");
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(tag("TagURLID", "1"), "2");
}

TEST_F(RebuildTest, givesNoOptionsToATextThatIsNoPattern) {
    add("http://host/a/l[ogo.gif", "GIF89a");
    ASSERT_TRUE(rebuild(add("http://host/page.html", "<img src=\"a/l[ogo.gif\" > ")));
    EXPECT_EQ(tag("AccuracyScore", "1"), "0:0");
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(RebuildTest, neverTakesAPagesTextForSql) {
    const std::string evil = "a'/**/OR/**/1=1--x.gif";
    add("http://host/" + evil, "GIF89a");
    ASSERT_TRUE(rebuild(add("http://host/page.html", "<img src=\"" + evil + "\" > ")));
    EXPECT_EQ(project.number("SELECT Count(*) FROM URLs"), 2);
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(RebuildTest, comesBackFromTheProjectAlone) {
    add("http://host/a/logo.gif", "GIF89a");
    const UrlId html = add("http://host/page.html", "<img src=\"a/logo.gif\" >caf\xE9 ");
    ASSERT_TRUE(rebuild(html));
    const std::string whole = fileOf(html, "0000002.htm");
    std::filesystem::remove_all(temp);
    std::filesystem::create_directories(temp);
    UrlRecord later = get(html);
    ASSERT_TRUE(unpackIngredients(later, context()));
    EXPECT_EQ(fileOf(html, "0000002.htm") + "\r\n", whole);
    EXPECT_EQ(fileOf(html, "0000001.gif"), "GIF89a");
    EXPECT_TRUE(std::filesystem::exists(later.RunTimeTempFilePath));
}

TEST_F(RebuildTest, tellsOfIdsThatEarlierVersionsCouldNotHold) {
    project.connection().exec("INSERT INTO sqlite_sequence(name, seq) VALUES('URLs', 40000)");
    add("http://host/a/logo.gif", "GIF89a");
    const UrlId html = add("http://host/page.html", "<img src=\"a/logo.gif\" > ");
    EXPECT_FALSE(rebuild(html));
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_EQ(project.log.entries[0].procedure, "MainForm.HarvestParts()");
    EXPECT_NE(project.log.entries[0].message.find("WideRecordIds"), std::string::npos);
    settings.wideRecordIds = true;
    EXPECT_TRUE(rebuild(html));
    EXPECT_EQ(fileOf(html, "0040001.gif"), "GIF89a");
}

TEST_F(RebuildTest, cancelledAnywhereNeverStandsAsRebuilt) {
    add("http://host/a/logo.gif", "GIF89a");
    const UrlId html = add("http://host/page.html", "<img src=\"a/logo.gif\" > ");
    EXPECT_GT(cancelAtEachStep(html,
                               [&] {
                                   EXPECT_FALSE(get(html).CacheFileRebuilt);
                                   EXPECT_EQ(get(html).IngredientIDs, "");
                               }),
              5);
    EXPECT_TRUE(get(html).CacheFileRebuilt);
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(RebuildTest, cancelledAnywhereLeavesTheRebuildThatThePageHad) {
    add("http://host/a/logo.gif", "GIF89a");
    const UrlId html = add("http://host/page.html", "<img src=\"a/logo.gif\" > ");
    ASSERT_TRUE(rebuild(html));
    project.connection().exec("UPDATE URLs SET RebuiltSourceCode = 'earlier', IngredientIDs = "
                              "'0|x|y|' WHERE URL_ID = 2");
    const auto earlier = RebuildAudit(project.connection()).notes(html);
    ASSERT_EQ(earlier.size(), 1u);
    cancelAtEachStep(html, [&] {
        EXPECT_EQ(get(html).RebuiltSourceCode, "earlier");
        EXPECT_EQ(get(html).IngredientIDs, "0|x|y|");
        EXPECT_EQ(RebuildAudit(project.connection()).notes(html).size(), 1u);
    });
    EXPECT_EQ(get(html).IngredientIDs, "1|a/logo.gif|0000001.gif|\r\n");
}

TEST_F(RebuildTest, bringsTheStyleSheetsPictures) {
    add("http://host/pics/back.gif", "GIF89a back");
    add("http://host/style/main.css", "a { background: url('../pics/back.gif') }\r\nb { }\r\n");
    const UrlId html = add("http://host/page.html", "<link href=\"/style/main.css\" > ");
    // The file name in the cache is that of the URL.
    project.connection().exec("UPDATE URLs SET CacheFileName = 'back[1].gif' WHERE URL_ID = 1");
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(fileOf(html, "0000002.css"),
              "a { background: url('_css0000001.gif') };\r\n"
              "a { background: url('_css0000001.gif') };\r\nb { }\r\n");
    EXPECT_EQ(fileOf(html, "_css0000001.gif"), "GIF89a back");
}

} // namespace
} // namespace nv
