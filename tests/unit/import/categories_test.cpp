#include "base/Files.h"
#include "db/records/RecordNames.h"
#include "import/Categories.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

class CategoriesTest : public testing::Test {
  protected:
    /// A record whose content lies in the test's folder.
    UrlRecord cached(const std::string &name, const std::string &bytes) {
        const auto file = folder.write(name, bytes);
        UrlRecord record;
        record.cacheType = "IE Cache";
        record.URL = "http://host/" + name;
        record.CacheFileExists = true;
        record.RootPath = evidence.rootOf(file);
        record.CacheFileRelativePath = evidence.relativeOf(file);
        orderNames(record);
        return record;
    }

    std::string categoryOf(UrlRecord record, Signatures signatures = Signatures::verify) {
        const Extraction extraction{evidence, folder.path(), log};
        SavedContent saved(record, extraction, content);
        Categories(signatures, log).verdictOn(record, saved).applyTo(record);
        return record.Category;
    }

    test::TempFolder folder;
    test::MemoryLog log;
    Evidence evidence{folder.path()};
    ContentProbe content;
};

TEST(CategoryOfExtension, followsItsTableInOrder) {
    const std::pair<const char *, const char *> expected[] = {
        {"JPG", "Pictures"},          {"ico", "Pictures"},     {"htm", "HTML"},
        {"aspx", "Scripts, HTML"},    {"xml", "XML"},          {"pdf", "Adobe"},
        {"js", "Javascripts"},        {"css", "Stylesheets"},  {"rar", "Archive, Compressed"},
        {"mdb", "Office Documents"},  {"log", "ASCII Files"},  {"dll", "Binary, Executables"},
        {"mov", "Movies, Animation"}, {"mp3", "Music, Audio"},
    };
    for (const auto &[extension, category] : expected)
        EXPECT_EQ(categoryOfExtension(extension), category) << extension;
    EXPECT_EQ(categoryOfExtension("tif"), "");
    EXPECT_EQ(categoryOfExtension(""), "");
    EXPECT_EQ(categoryOfExtension("jpg jpe"), "");
}

TEST(CategoryOfExtension, countsSoundOfWavAmongTheMovies) {
    EXPECT_EQ(categoryOfExtension("wav"), "Movies, Animation");
}

TEST_F(CategoriesTest, goByContentBeforeTheName) {
    const UrlRecord page = cached("picture.gif", "  <!-- --><HTML>");
    EXPECT_EQ(categoryOf(page), "HTML");
    EXPECT_EQ(categoryOf(page, Signatures::trustNames), "Pictures");
    EXPECT_EQ(categoryOf(cached("notes.txt", "GIF89a...")), "Pictures");
}

TEST_F(CategoriesTest, examineAFileWithoutExtensionAlways) {
    EXPECT_EQ(categoryOf(cached("noname", "%PDF-1.4"), Signatures::trustNames), "Adobe");
}

TEST_F(CategoriesTest, findPagesByTheirTags) {
    EXPECT_EQ(categoryOf(cached("a.bin", "..<BODY>")), "HTML");
    EXPECT_EQ(categoryOf(cached("b.bin", "..<table>")), "HTML");
    EXPECT_EQ(categoryOf(cached("c.bin", "..<?xml?>")), "XML");
    EXPECT_EQ(categoryOf(cached("d.bin", "..<?xml?><html>")), "HTML");
}

TEST_F(CategoriesTest, takeXhtmlOfFirefoxForAPageAndNoOtherXml) {
    const std::string xhtml = "<?xml version=\"1.0\"?>\n<!DOCTYPE html>\n<html>";
    UrlRecord page = cached("page", xhtml);
    EXPECT_EQ(categoryOf(page), "XML");
    // Firefox's bodies lie in block files: this one is fetched already.
    page.cacheType = "Firefox Cache";
    page.RunTimeTempFilePath = folder.write("~body", xhtml);
    EXPECT_EQ(categoryOf(page), "HTML");
    content.forget();
    page.RunTimeTempFilePath = folder.write("~body", "<?xml version=\"1.0\"?><feed>");
    EXPECT_EQ(categoryOf(page), "XML");
    content.forget();
    page.RunTimeTempFilePath = folder.write("~body", "%PDF-1.4 <html><body>");
    EXPECT_EQ(categoryOf(page), "Adobe");
}

TEST_F(CategoriesTest, fallBackOnTheName) {
    EXPECT_EQ(categoryOf(cached("styles.css", "body {}")), "Stylesheets");
    EXPECT_EQ(categoryOf(cached("picture.gif", "G")), "Pictures"); // too short for any signature
    EXPECT_EQ(categoryOf(cached("empty.png", "")), "Pictures");
}

TEST_F(CategoriesTest, neverOpenAHistoryRecord) {
    UrlRecord record = cached("picture.gif", "<html>");
    record.IsHistory = true;
    EXPECT_EQ(categoryOf(record), "Pictures");
    record.CacheFileExt = record.URLFileExt = "";
    record.Category = "URL";
    EXPECT_EQ(categoryOf(record), "URL");
}

TEST_F(CategoriesTest, dontLookForAFileThatIsntThere) {
    UrlRecord record = cached("picture.gif", "<html>");
    record.CacheFileExists = false;
    EXPECT_EQ(categoryOf(record), "Pictures");
    record.CacheFileExists = true;
    record.CacheFileRelativePath = "gone.gif";
    EXPECT_EQ(categoryOf(record), "Pictures");
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(CategoriesTest, keepTheReadersWordWhenTheExtensionSaysNothing) {
    UrlRecord record = cached("unknown.xyz", "...");
    record.Category = "IE Resource";
    EXPECT_EQ(categoryOf(record), "IE Resource");
    record.URLFileExt = "txt";
    EXPECT_EQ(categoryOf(record), "ASCII Files");
}

TEST_F(CategoriesTest, takeACookieForNothingElse) {
    for (const char *name : {"user@host[1].txt", "noname", "page.php", "picture.gif"}) {
        UrlRecord record = cached(name, "<html><body>");
        record.IsCookie = true;
        EXPECT_EQ(categoryOf(record), "") << name; // its file is gone
        record.Category = "Cookies";
        EXPECT_EQ(categoryOf(record), "Cookies") << name;
        EXPECT_EQ(categoryOf(record, Signatures::trustNames), "Cookies") << name;
    }
}

TEST_F(CategoriesTest, writeTheCacheTypeInCapitalsAndTheExtensionIntoTheRecord) {
    UrlRecord record = cached("page.gif", "<html>");
    const Extraction extraction{evidence, folder.path(), log};
    SavedContent saved(record, extraction, content);
    const Verdict verdict = Categories(Signatures::verify, log).verdictOn(record, saved);
    EXPECT_EQ(record.cacheType, "IE Cache");
    verdict.applyTo(record);
    EXPECT_EQ(record.cacheType, "IE CACHE");
    EXPECT_EQ(record.CacheFileExt, "html");
}

TEST_F(CategoriesTest, takeExtractedContentFromItsScratchFile) {
    UrlRecord record = cached("picture.gif", "GIF89a");
    record.cacheType = "Chrome Cache";
    EXPECT_EQ(categoryOf(record), "Pictures"); // by name: nothing was extracted
    record.RunTimeTempFilePath = folder.write("~tmp", "<html>");
    EXPECT_EQ(categoryOf(record), "HTML");
}

TEST_F(CategoriesTest, stayInsideTheEvidence) {
    folder.write("outside.gif", "<html>");
    UrlRecord record = cached("in/picture.gif", "GIF89a");
    record.RootPath = (folder.path() / "in").native() + "/";
    record.CacheFileRelativePath = "../outside.gif";
    EXPECT_EQ(categoryOf(record), "Pictures");
}

TEST_F(CategoriesTest, dontFollowALinkNamedByTheEvidence) {
    const auto page = folder.write("page", "<html>");
    UrlRecord record = cached("gone.gif", "GIF89a");
    std::filesystem::remove(folder.path() / "gone.gif");
    std::filesystem::create_symlink(page, folder.path() / "gone.gif");
    EXPECT_EQ(categoryOf(record), "Pictures");
}

} // namespace
} // namespace nv
