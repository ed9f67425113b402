#include "rebuild/TagChoice.h"
#include "unit/rebuild/RebuildFixture.h"

namespace nv {
namespace {

namespace fs = std::filesystem;

class HarvestTest : public test::RebuildFixture {
  protected:
    bool harvest(const std::string &substitutions) {
        page.IngredientIDs = substitutions;
        return harvestParts(page, folder(), Batch::no, context());
    }
    fs::path folder() { return rebuildFolderOf(page.URLID, context()); }
    std::size_t filesThere() {
        return static_cast<std::size_t>(
            std::distance(fs::directory_iterator(folder()), fs::directory_iterator()));
    }
    void use(UrlId id) {
        page = get(id);
        page.RebuiltSourceCode = "<html>rebuilt</html>";
    }
};

TEST_F(HarvestTest, ofNoLinesGivesOnlyThePage) {
    use(add("http://host/page.html", "page"));
    EXPECT_TRUE(harvest(""));
    EXPECT_EQ(filesThere(), 1u);
    EXPECT_EQ(fileOf(page.URLID, "0000001.htm"), "<html>rebuilt</html>");
}

TEST_F(HarvestTest, passesOverReferencesWithoutAPart) {
    add("http://host/a/logo.gif", "GIF89a");
    use(add("http://host/page.html", "page"));
    EXPECT_TRUE(harvest("0|a/gone.gif|a/gone.gif|\r\n|a|b|\r\n\r\n1|a/logo.gif|0000001.gif|\r\n"));
    EXPECT_EQ(fileOf(page.URLID, "_TagIDs.txt"), "1|a/logo.gif|0000001.gif|\r\n");
    EXPECT_EQ(filesThere(), 3u);
}

TEST_F(HarvestTest, listsAPartThatIsGoneAndGoesOn) {
    add("http://host/a/gone.gif", "");
    add("http://host/a/logo.gif", "GIF89a");
    use(add("http://host/page.html", "page"));
    EXPECT_TRUE(harvest("1|a/gone.gif|0000001.gif|\r\n9|x|y|\r\n2|a/logo.gif|0000002.gif|\r\n"));
    EXPECT_EQ(fileOf(page.URLID, "_TagIDs.txt"),
              "1|a/gone.gif|0000001.gif|\r\n2|a/logo.gif|0000002.gif|\r\n");
    EXPECT_FALSE(fs::exists(folder() / "0000001.gif"));
    EXPECT_EQ(fileOf(page.URLID, "0000002.gif"), "GIF89a");
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(HarvestTest, beginsWithAnEmptyFolder) {
    use(add("http://host/page.html", "page"));
    fs::create_directories(folder());
    writeWhole(folder() / "0000007.gif", "of an earlier harvest");
    writeWhole(folder() / "0000001.htm", "the page");
    EXPECT_TRUE(harvest(""));
    EXPECT_EQ(filesThere(), 1u);
    EXPECT_EQ(fileOf(page.URLID, "0000001.htm"), "the page");
}

TEST_F(HarvestTest, takesNothingForOtherKindsOfRecords) {
    add("http://host/a/logo.gif", "GIF89a");
    use(add("http://host/page.html", "page"));
    page.cacheType = "Simple HTML";
    EXPECT_TRUE(harvest("1|a/logo.gif|0000001.gif|\r\n"));
    EXPECT_EQ(filesThere(), 1u);
}

TEST_F(HarvestTest, ofAPageThatNamesItselfTakesItAsAPart) {
    const UrlId id = add("http://host/page.html", "<img src=\"/page.html\" > ");
    ASSERT_TRUE(rebuild(id));
    EXPECT_EQ(page.IngredientIDs, "1|/page.html|0000001.html|\r\n");
    EXPECT_EQ(fileOf(id, "0000001.html"), "<img src=\"/page.html\" > ");
    EXPECT_EQ(fileOf(id, "0000001.htm"), "<img src=\"0000001.html\" > \r\n");
}

TEST_F(HarvestTest, ofAPageThatIsItsOwnPartUnderItsOwnNameKeepsItRebuilt) {
    const UrlId id =
        add("http://host/page.html", "<body onload=\"x()\"><img src=\"/page.html\" > ");
    // Internet Explorer's file has another extension than the URL, and so the page's own name.
    project.connection().exec("UPDATE URLs SET CacheFileName = 'page[1].htm'");
    ASSERT_TRUE(rebuild(id));
    EXPECT_EQ(page.IngredientIDs, "1|/page.html|0000001.htm|\r\n");
    const std::string rebuilt = "<body void=\"x()\"><img src=\"0000001.htm\" > ";
    EXPECT_EQ(fileOf(id, "0000001.htm"), rebuilt + "\r\n");
    fs::remove_all(folder());
    UrlRecord later = get(id);
    ASSERT_TRUE(unpackIngredients(later, context()));
    EXPECT_EQ(fileOf(id, "0000001.htm"), rebuilt);
}

TEST_F(HarvestTest, neverTakesThePageForItsStyleSheet) {
    add("http://host/pics/back.gif", "GIF89a back");
    const UrlId id = add("http://host/page.htm?skin/main.css",
                         "<link href=\"skin/main.css\" ><b style='url(back.gif)'> ");
    project.connection().exec("UPDATE URLs SET URLFileExt = 'htm' WHERE URL_ID = 2;"
                              "UPDATE URLs SET CacheFileName = 'back[1].gif' WHERE URL_ID = 1;"
                              "UPDATE URLs SET CacheFileName = 'page[1].htm' WHERE URL_ID = 2");
    ASSERT_TRUE(rebuild(id));
    EXPECT_EQ(fileOf(id, "0000002.htm"),
              "<link href=\"0000002.htm\" ><b style='url(back.gif)'> \r\n");
}

TEST_F(HarvestTest, givesAPartWithALongExtensionNone) {
    add("http://host/a/run.class", "bytes", "Opera Cache");
    const UrlId id = add("http://host/page.html", "<applet src=\"a/run.class\" > ", "Opera Cache");
    ASSERT_TRUE(rebuild(id));
    EXPECT_EQ(page.IngredientIDs, "1|a/run.class|0000001|\r\n");
    EXPECT_EQ(fileOf(id, "0000001"), "bytes");
}

TEST_F(HarvestTest, storesItsListAsTheLogWhenThereIsNone) {
    use(add("http://host/page.html", "page"));
    EXPECT_FALSE(storeIngredientIDs(page, context()));
    fs::create_directories(folder());
    writeWhole(folder() / "_TagIDs.txt", "1|caf\xE9|0000001.gif|\r\n");
    EXPECT_TRUE(storeIngredientIDs(page, context()));
    EXPECT_EQ(get(page.URLID).IngredientIDs, "1|caf\xC3\xA9|0000001.gif|\r\n");
}

TEST_F(HarvestTest, isNotBegunForAPageOfABatchThatIsCancelled) {
    UrlRecord record = get(add("http://host/page.html", "<img src=\"a/logo.gif\" > "));
    test::CancelAfter cancelled(0);
    const RebuildContext ctx{project.connection(), store,     evidence, temp,
                             project.log,          cancelled, settings};
    EXPECT_FALSE(rebuildWebPage(record, Batch::yes, ctx, project.clock));
    EXPECT_FALSE(fs::exists(rebuildFolderOf(record.URLID, context())));
}

TEST_F(HarvestTest, dateOfTheRebuildIsTheMachinesOwn) {
    project.clock.offset = std::chrono::minutes(90);
    ASSERT_TRUE(rebuild(add("http://host/page.html", "<img src=\"a/logo.gif\" > ")));
    EXPECT_EQ(page.RebuiltDateTime, "15-06-2011 13:30:00");
}

class TagChoiceTest : public test::RebuildFixture {
  protected:
    /// A tag of the page with two options; returns its key.
    std::int64_t tagWithTwo(UrlId of, const std::string &text, const std::string &option) {
        SQLite::Statement insert(
            project.connection(),
            "INSERT INTO Tags (URL_ID, OriginalTag, TagSansParentPaths) VALUES (?, ?, ?)");
        insert.bind(1, number(of));
        insert.bind(2, text);
        insert.bind(3, text);
        insert.exec();
        const std::int64_t id = project.connection().getLastInsertRowid();
        for (const int url : {7, 8}) {
            SQLite::Statement row(project.connection(),
                                  "INSERT INTO TagOptions (Tag_ID, Option, TagURLID) "
                                  "VALUES (?, ?, ?)");
            row.bind(1, id);
            row.bind(2, option);
            row.bind(3, url);
            row.exec();
        }
        return id;
    }
};

TEST_F(TagChoiceTest, notesFolderAndFileOfThePickAndLeavesThePagesRecord) {
    const UrlId id = add("http://host/page.html", "page");
    EXPECT_TRUE(pickIETagOption(tagWithTwo(id, "a/b.gif", "../QRSTUVWX/b[1].gif "), context()));
    EXPECT_EQ(get(id).CacheFolderName, "ABCDEFGH");
    EXPECT_EQ(get(id).CacheFileName, "file1.html");
    EXPECT_EQ(tag("CacheFolderName", "1"), "QRSTUVWX");
    EXPECT_EQ(tag("CacheFileName", "1"), "b[1].gif ");
    EXPECT_EQ(tag("NewTag", "1"), "../QRSTUVWX/b[1].gif ");
    EXPECT_EQ(tag("TagURLID", "1"), "7");
    EXPECT_EQ(tag("TagOption_ID", "1"), "1");
    EXPECT_EQ(tag("AccuracyScore", "1"), "1:2");
}

TEST_F(TagChoiceTest, notesNothingForAShortPick) {
    const UrlId id = add("http://host/page.html", "page");
    EXPECT_TRUE(pickIETagOption(tagWithTwo(id, "a/b.gif", "../QRSTUVWX/"), context()));
    EXPECT_EQ(tag("coalesce(CacheFolderName, '')", "1"), "");
}

TEST_F(TagChoiceTest, ofABatchLeavesEveryRecordAsTheArtefactHadIt) {
    add("http://host/a/logo.gif", "GIF89a");
    const UrlId frame = add("http://host/frame.html", "<img src=\"a/logo.gif\" > ");
    const UrlId html = add("http://host/page.html", "<iframe src=\"/frame.html\" > ");
    const std::string sql = "SELECT group_concat(CacheFolderName || '/' || CacheFileName || ' ' || "
                            "coalesce(CacheFileSize, 0)) FROM URLs";
    const std::string before = project.text(sql);
    ASSERT_TRUE(rebuild(frame));
    EXPECT_EQ(project.text(sql), before);
    // The frame's own cached file is found, although it was rebuilt before.
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(tag("NewTag", "URL_ID = 3"), "../ABCDEFGH/file2.html");
    EXPECT_EQ(project.text(sql), before);
}

TEST_F(TagChoiceTest, ofOtherBrowsersWritesNoNewTag) {
    const UrlId id = add("http://host/page.html", "page", "Opera Cache");
    EXPECT_TRUE(pickNonIETagOption("a/b.gif", tagWithTwo(id, "a/b.gif", "http://x"), context()));
    EXPECT_EQ(tag("coalesce(NewTag, '')", "1"), "");
    EXPECT_EQ(tag("TagURLID", "1"), "7");
    EXPECT_EQ(tag("AccuracyScore", "1"), "1:2");
}

TEST_F(TagChoiceTest, ofAPageWithoutUrlKeepsTheFirstTextAndNoRecord) {
    const UrlId id = add("http://host/page.html", "page", "Opera Cache");
    project.connection().exec("UPDATE URLs SET URL = ''");
    EXPECT_TRUE(pickNonIETagOption("a/b.gif", tagWithTwo(id, "a/b.gif", " http://x "), context()));
    EXPECT_EQ(tag("NewTag", "1"), "http://x");
    EXPECT_EQ(tag("coalesce(TagURLID, 0)", "1"), "0");
    EXPECT_EQ(tag("AccuracyScore", "1"), "1:2");
}

TEST_F(TagChoiceTest, ofATagThatIsGoneIsDone) {
    EXPECT_TRUE(pickIETagOption(99, context()));
    EXPECT_TRUE(pickNonIETagOption("x", 99, context()));
}

TEST_F(TagChoiceTest, ofAHostThatMakesNoPatternHasNoOptions) {
    add("http://ho[st/a/logo.gif", "GIF89a");
    const UrlId id = add("http://ho[st/page.html", "<img src=\"a/logo.gif\" > ");
    project.connection().exec("UPDATE URLs SET Host = 'ho[st'");
    ASSERT_TRUE(rebuild(id));
    EXPECT_EQ(tag("AccuracyScore", "1"), "0:0");
}

} // namespace
} // namespace nv
