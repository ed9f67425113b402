#include "base/Files.h"
#include "readers/ie/Index.h"
#include "support/builders/IndexDat.h"
#include "support/builders/IndexReading.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/time.h>

namespace nv {
namespace {

namespace fs = std::filesystem;
using test::IndexReading;
using testing::IsEmpty;
using testing::SizeIs;

const fs::path kCache = "Temporary Internet Files/Content.IE5";

/// A cache with one folder, on a disk of its own.
struct IECachedFile : testing::Test {
    test::TempFolder disk;
    test::IndexDat index;
    IndexReading reading{HistoryFileType::ieCache};

    IECachedFile() { index.folder("ABCDEFGH"); }

    fs::path content(const std::string &name, const std::string &bytes) const {
        return disk.write(kCache / "ABCDEFGH" / name, bytes);
    }
    std::size_t add(const std::string &fileName, const std::string &url = "http://host/",
                    const std::string &signature = "URL ") {
        return index.add({.signature = signature, .url = url, .folder = 0, .fileName = fileName});
    }
    UrlRecord only() {
        reading.readFile(disk.write(kCache / "index.dat", index.bytes()), disk.path());
        EXPECT_THAT(reading.records(), SizeIs(1));
        return reading.records().at(0);
    }
};

TEST_F(IECachedFile, isFoundInItsFolderBelowTheIndex) {
    const fs::path file = content("Page[1].htm", "<html><title>Title</title>");
    const timeval accessed[2] = {{1308139200, 0}, {0, 0}};
    ASSERT_EQ(::utimes(file.c_str(), accessed), 0);
    add("page[1].HTM");
    const UrlRecord record = only();
    EXPECT_TRUE(record.CacheFileExists);
    EXPECT_EQ(record.RootPath, textOf(disk.path()) + "/");
    EXPECT_EQ(record.CacheFileRelativePath, (kCache / "ABCDEFGH/Page[1].htm").string());
    EXPECT_EQ(record.CacheRootPath, textOf(disk.path() / kCache));
    EXPECT_EQ(record.CacheFolderName, "ABCDEFGH");
    EXPECT_EQ(record.CacheFileName, "page[1].HTM");
    EXPECT_EQ(record.CacheFileLastAccessed, Date::fromUnixSeconds(1308139200));
    EXPECT_EQ(record.RunTimeContentPath, file);
    EXPECT_EQ(record.Status, "URL ");
    EXPECT_EQ(record.Category, "HTML");
    EXPECT_TRUE(record.IsWebPage);
    EXPECT_EQ(record.WebpageTitle, "Title");
    EXPECT_THAT(reading.log.entries, IsEmpty());
}

TEST_F(IECachedFile, thatIsGoneLeavesTheRecord) {
    add("page[1].htm");
    const UrlRecord record = only();
    EXPECT_FALSE(record.CacheFileExists);
    EXPECT_EQ(record.Status, "URL");
    EXPECT_EQ(record.RootPath, textOf(disk.path()) + "/");
    EXPECT_EQ(record.CacheFileRelativePath, "");
    EXPECT_EQ(record.CacheRootPath, "");
    EXPECT_EQ(record.Category, "");
    EXPECT_FALSE(record.CacheFileLastAccessed.has());
}

TEST_F(IECachedFile, keepsTheWordLeakWhileItIsThere) {
    content("page[1].htm", "x");
    add("page[1].htm", "http://host/", "LEAK");
    EXPECT_EQ(only().Status, "LEAK");
}

TEST_F(IECachedFile, makesALeakAUrlWhenItIsGone) {
    add("page[1].htm", "http://host/", "LEAK");
    EXPECT_EQ(only().Status, "URL");
}

TEST_F(IECachedFile, mayLieBesideTheIndexWithoutAFolder) {
    disk.write(kCache / "loose.txt", "x");
    index.add({.url = "http://host/", .folder = 0xFE, .fileName = "loose.txt"});
    const UrlRecord record = only();
    EXPECT_TRUE(record.CacheFileExists);
    EXPECT_EQ(record.CacheFolderName, "");
    EXPECT_EQ(record.CacheFileRelativePath, (kCache / "loose.txt").string());
    EXPECT_EQ(record.CacheRootPath, textOf(disk.path() / "Temporary Internet Files"));
}

TEST_F(IECachedFile, isNotSoughtOutsideOfTheIndexsFolder) {
    disk.write("Temporary Internet Files/secret.htm", "<html>");
    add("..\\..\\secret.htm");
    EXPECT_FALSE(only().CacheFileExists);
}

TEST_F(IECachedFile, isNoWebPageWhenTheBrowserItselfBroughtIt) {
    content("err[1]", "<BODY>");
    add("err[1]", "RES://ieframe.dll/http_404.htm");
    const UrlRecord record = only();
    EXPECT_EQ(record.Category, "IE Resource");
    EXPECT_FALSE(record.IsWebPage);
}

TEST_F(IECachedFile, withoutHtmlGetsNoCategory) {
    content("err[1].js", "var a;");
    add("err[1].js", "res://ieframe.dll/errorPageStrings.js");
    const UrlRecord record = only();
    EXPECT_EQ(record.Category, "");
    EXPECT_FALSE(record.IsWebPage);
    EXPECT_TRUE(record.CacheFileExists);
}

TEST_F(IECachedFile, givesItsTitleForPagesAndFilesWithoutExtensionOnly) {
    const std::vector<std::string> titled = {"p.htm",  "p.HTML", "page",  "p.asp",
                                             "p.aspx", "p.cgi",  "p.php", "p.js"};
    const std::vector<std::string> others = {"p.txt", "p.jpg", "p.xml"};
    for (const auto &names : {titled, others})
        for (const std::string &name : names) {
            content(name, "<title>Title</title>");
            add(name);
        }
    reading.readFile(disk.write(kCache / "index.dat", index.bytes()), disk.path());
    for (const UrlRecord &record : reading.records())
        EXPECT_EQ(record.WebpageTitle,
                  testing::Matches(testing::Contains(record.CacheFileName))(titled) ? "Title" : "")
            << record.CacheFileName;
}

TEST_F(IECachedFile, isOfNoConcernToHistoriesAndRedirects) {
    content("page[1].htm", "<html>");
    add("page[1].htm", "Visited: user@http://host/");
    index.addRedirect("http://host/");
    reading.file.historyFileType = HistoryFileType::ieHistory;
    reading.readFile(disk.write(kCache / "index.dat", index.bytes()), disk.path());
    ASSERT_THAT(reading.records(), SizeIs(2));
    EXPECT_FALSE(reading.records()[0].CacheFileExists);
    EXPECT_EQ(reading.records()[0].Status, "URL");
    EXPECT_EQ(reading.records()[1].Status, "REDR");
    EXPECT_EQ(reading.records()[1].RootPath, textOf(disk.path()) + "/");
}

TEST_F(IECachedFile, ofARedirectInACacheKeepsItsStatus) {
    index.addRedirect("http://host/");
    const UrlRecord record = only();
    EXPECT_EQ(record.Status, "REDR");
    EXPECT_EQ(record.cacheType, "IE Cache");
    EXPECT_FALSE(record.CacheFileExists);
}

TEST_F(IECachedFile, ofAnImportedBinaryIsTheIndexItself) {
    add("page[1].htm");
    reading.file.historyFileType = HistoryFileType::importedBinary;
    EXPECT_EQ(only().CacheRootPath, (kCache / "index.dat").string());
}

TEST_F(IECachedFile, thatCannotBeReadCostsNotTheRecord) {
    const fs::path file = content("page[1].htm", "<html>");
    add("page[1].htm");
    reading.file.fullPath = disk.write(kCache / "index.dat", index.bytes());
    const Evidence evidence(disk.path());
    ASSERT_TRUE(evidence.find(file.parent_path(), "page[1].htm"));
    fs::remove(file); // the listing knows it still
    ContentProbe content;
    Unwatched task;
    ReadContext ctx{reading.file, evidence,    content, reading.clock, {},
                    reading.sink, reading.log, task,    false};
    const ReadResult result = parseIECacheFile(ctx);
    ASSERT_THAT(reading.records(), SizeIs(1));
    EXPECT_TRUE(reading.records()[0].CacheFileExists);
    EXPECT_EQ(reading.records()[0].Category, "");
    EXPECT_EQ(result.state, ReadState::complete);
    EXPECT_THAT(result.passedOver, IsEmpty());
    ASSERT_THAT(reading.log.entries, SizeIs(1));
    EXPECT_THAT(reading.log.entries[0].message, testing::HasSubstr("page[1].htm"));
}

} // namespace
} // namespace nv
