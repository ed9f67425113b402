#include "base/Files.h"
#include "base/Md5.h"
#include "base/Text.h"
#include "readers/Dissection.h"
#include "support/FakeDrawing.h"
#include "support/TestProject.h"
#include "support/UrlIds.h"
#include "views/gallery/PageThumbnails.h"
#include "views/gallery/ThumbnailJobs.h"
#include "views/gallery/Thumbnails.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

std::string contentsOf(const fs::path &file) {
    return std::string(ByteView(readWhole(file)).raw());
}

/// A project with cached files of Internet Explorer that lie in a folder of evidence.
class ThumbnailsTest : public testing::Test {
  protected:
    ThumbnailsTest() { fs::create_directories(temp); }

    std::int64_t add(const std::string &name, const std::string &content,
                     const std::string &url = "http://host/page") {
        UrlRecord record;
        record.cacheType = "IE Cache";
        record.URL = url;
        record.URLFileExt = getFileExtension(url);
        record.CacheFileName = name;
        record.CacheFileExt = getFileExtension(name);
        const auto file = evidenceFolder / name;
        record.RootPath = evidence.rootOf(file);
        record.CacheFileRelativePath = evidence.relativeOf(file);
        record.CacheFileExists = !content.empty();
        fs::create_directories(file.parent_path());
        if (!content.empty())
            writeWhole(file, content);
        store.saveRecord(record, project.file);
        return number(record.URLID);
    }
    ThumbnailContext context() {
        return {project.connection(), store,       evidence, temp, drawing,
                project.clock,        project.log, settings};
    }
    ThumbnailTotals make(std::initializer_list<std::int64_t> numbers) {
        ThumbnailTotals totals;
        makeThumbnails(context(), test::urlIds(numbers), task, totals);
        return totals;
    }
    std::string field(std::int64_t id, const std::string &column) {
        return project.text("SELECT CAST(" + column +
                            " AS TEXT) FROM URLs WHERE URL_ID = " + std::to_string(id));
    }

    TestProject project;
    RecordStore store = project.store();
    fs::path evidenceFolder = project.folder.path() / "evidence";
    fs::path temp = project.folder.path() / "temp";
    Evidence evidence{evidenceFolder};
    FakeDrawing drawing;
    ThumbnailSettings settings;
    Unwatched task;
};

TEST_F(ThumbnailsTest, aPictureGetsItsColumns) {
    settings.viewerThumbnailWidth = 160;
    const auto id = add("banner[1].gif", "GIF89a banner");
    const ThumbnailTotals totals = make({id});
    EXPECT_EQ(totals.made, 1u);
    EXPECT_EQ(field(id, "ThumbnailBLOB"), "BMGIF89a banner");
    EXPECT_EQ(field(id, "ThumbnailMD5Hash"), md5Hex("BMGIF89a banner"));
    EXPECT_EQ(field(id, "ThumbnailWidth"), "160");
    EXPECT_EQ(field(id, "ThumbnailHeight"), "120");
    EXPECT_EQ(field(id, "ThumbnailDirty"), "0");
    EXPECT_EQ(project.text("SELECT ThumbnailCreated FROM URLs"), "40709.5");
    EXPECT_EQ(field(id, "IsPicture"), "1");
    EXPECT_EQ(field(id, "PictureWidth"), "468");
    EXPECT_EQ(field(id, "PictureHeight"), "60");
    EXPECT_EQ(field(id, "PARDValue"), "88");
    EXPECT_TRUE(project.log.entries.empty());
    ASSERT_EQ(drawing.drawn.size(), 1u);
    EXPECT_EQ(drawing.drawn[0].source.extension(), ".jpg");
    EXPECT_EQ(drawing.drawn[0].width, 160);
    EXPECT_EQ(drawing.drawn[0].height, 120);
    EXPECT_EQ(drawing.timeouts[0], std::chrono::seconds(5));
}

TEST_F(ThumbnailsTest, aPageIsDrawnAlone) {
    const auto page = add("page[1].htm", "<html>mail</html>");
    const auto picture = add("a[1].gif", "GIF89a");
    project.connection().exec("UPDATE URLs SET IsPicture = 1");
    EXPECT_EQ(make({page, picture}).made, 2u);
    EXPECT_EQ(field(page, "ThumbnailBLOB"), "JPEG<html>mail</html>");
    EXPECT_EQ(field(page, "IsPicture"), "0");
    EXPECT_EQ(field(page, "PARDValue"), "0");
    EXPECT_EQ(drawing.drawn[0].kind, DrawJob::Kind::page);
    EXPECT_NE(drawing.drawn[0].source.parent_path(), drawing.drawn[1].source.parent_path());
    EXPECT_EQ(drawing.neighbours, (std::set<std::string>{"~tmp.htm", "~tmp.jpg"}));
}

TEST_F(ThumbnailsTest, aCookieIsNotDrawnWhateverItIsCalled) {
    const auto page = add("user@host[1].htm", "<html>1024*");
    const auto picture = add("user@host[2].gif", "GIF89a", "http://host/pixel.gif");
    project.connection().exec("UPDATE URLs SET IsCookie = 1");
    EXPECT_EQ(make({page, picture}).otherKinds, 2u);
    EXPECT_TRUE(drawing.drawn.empty());
}

TEST_F(ThumbnailsTest, onlyDocumentedExtensionsAreDrawn) {
    for (const char *picture : {"jpg", "jpeg", "bmp", "png", "gif"})
        EXPECT_EQ(drawnAs(picture), DrawJob::Kind::picture) << picture;
    for (const char *page : {"html", "htm", "asp", "aspx"})
        EXPECT_EQ(drawnAs(page), DrawJob::Kind::page) << page;
    for (const char *other : {"", "jpe", "tif", "php", "js", "css", "exe"})
        EXPECT_EQ(drawnAs(other), std::nullopt) << other;
}

TEST_F(ThumbnailsTest, theContentDecidesBeforeTheName) {
    const auto script = add("show[1].php", "GIF89a", "http://host/show.php");
    const auto named = add("plain[1].gif", "no picture at all", "http://host/plain");
    const auto other = add("lib[1].js", "var a;", "http://host/lib.js");
    const ThumbnailTotals totals = make({script, named, other});
    EXPECT_EQ(totals.made, 2u);
    EXPECT_EQ(totals.otherKinds, 1u);
    EXPECT_EQ(field(script, "CacheFileExt"), "php"); // the reader's word stays in the row
    settings.signatures = Signatures::trustNames;
    EXPECT_EQ(make({script}).otherKinds, 1u);
}

TEST_F(ThumbnailsTest, aFailedDrawingIsLoggedAndTheRunGoesOn) {
    const auto bad = add("bad[1].gif", "GIF89a broken");
    const auto good = add("good[1].gif", "GIF89a");
    const ThumbnailTotals totals = make({bad, good});
    EXPECT_EQ(totals.made, 1u);
    EXPECT_EQ(totals.failed, 1u);
    EXPECT_EQ(field(bad, "ifnull(length(ThumbnailMD5Hash), 0)"), "0");
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_EQ(project.log.entries[0].message, "URL ID: 1 not a picture");
    EXPECT_EQ(project.log.entries[0].procedure, "MainBAS.MakeThumbnail()");
}

TEST_F(ThumbnailsTest, rowsWithoutContentAreCounted) {
    const auto gone = add("gone[1].gif", "");
    const auto removed = add("removed[1].gif", "GIF89a");
    fs::remove(evidenceFolder / "removed[1].gif");
    EXPECT_EQ(make({gone, removed, 99}).withoutContent, 3u);
    EXPECT_TRUE(drawing.drawn.empty());
}

TEST_F(ThumbnailsTest, evidenceIsOnlyCopied) {
    const auto id = add("a[1].gif", "GIF89a");
    make({id});
    EXPECT_EQ(contentsOf(evidenceFolder / "a[1].gif"), "GIF89a");
    EXPECT_TRUE(fs::is_empty(temp));
    EXPECT_NE(drawing.drawn[0].source.string().find(temp.string()), std::string::npos);
}

TEST_F(ThumbnailsTest, manyRowsGoInBatches) {
    std::vector<UrlId> ids;
    for (int i = 0; i < 270; ++i)
        ids.push_back(UrlId{add(std::to_string(i) + "[1].gif", "GIF89a")});
    MemoryTask watched;
    ThumbnailTotals totals;
    makeThumbnails(context(), ids, watched, totals);
    EXPECT_EQ(totals.made, 270u);
    EXPECT_EQ(drawing.batches, (std::vector<std::size_t>{128, 128, 14}));
    EXPECT_EQ(watched.fractions.back(), 1.0);
    EXPECT_EQ(watched.steps.back().topCounter, 270);
}

TEST_F(ThumbnailsTest, aCancelKeepsWhatWasMade) {
    std::vector<UrlId> ids;
    for (int i = 0; i < 5; ++i)
        ids.push_back(UrlId{add(std::to_string(i) + "[1].gif", "GIF89a")});
    bool stopped = false;
    for (int calls = 0; calls < 100 && !stopped; ++calls) {
        CancelAfter task2(calls);
        ThumbnailTotals totals;
        makeThumbnails(context(), ids, task2, totals);
        stopped = !totals.cancelled;
        EXPECT_EQ(project.number("SELECT Count(*) FROM URLs WHERE length(ThumbnailMD5Hash) > 0"),
                  static_cast<std::int64_t>(totals.made));
        project.connection().exec("UPDATE URLs SET ThumbnailMD5Hash = NULL");
    }
    EXPECT_TRUE(stopped);
    EXPECT_TRUE(fs::is_empty(temp));
}

TEST_F(ThumbnailsTest, aPictureFileIsDrawnAndMeasured) {
    UrlRecord record;
    record.URLID = UrlId{17};
    const fs::path source = project.folder.write("part.gif", "GIF89a");
    EXPECT_TRUE(makePictureThumbnail(source, temp / "out.bmp", record, 200, context()));
    EXPECT_EQ(contentsOf(temp / "out.bmp"), "BMGIF89a");
    EXPECT_EQ(drawing.drawn[0].width, 200);
    EXPECT_EQ(drawing.drawn[0].height, 150);
    EXPECT_EQ(record.PARDValue, 88);
    writeWhole(source, "broken");
    EXPECT_FALSE(makePictureThumbnail(source, temp / "out.bmp", record, 200, context()));
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_THAT(project.log.entries[0].message, HasSubstr("URL ID: 17"));
}

TEST_F(ThumbnailsTest, aRebuiltPageIsTriedTwice) {
    const auto id = add("page[1].htm", "<html>");
    const fs::path page = project.folder.write("page.htm", "rebuilt");
    drawing.failures = 1;
    const std::vector<PageDrawing> pages{{UrlId{id}, page, temp / "page.jpg"}};
    EXPECT_TRUE(createHTMLThumbnails(pages, 120, context(), task).front());
    EXPECT_EQ(field(id, "ThumbnailBLOB"), "JPEGrebuilt");
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_THAT(project.log.entries[0].message, HasSubstr("Win32 Error"));
    EXPECT_EQ(project.log.entries[0].severity, Severity::Warning);
    EXPECT_EQ(project.log.entries[0].procedure, "MainBAS.CreateHTMLThumbnail()");
    drawing.failures = 2;
    EXPECT_FALSE(createHTMLThumbnails(pages, 120, context(), task).front());
    EXPECT_EQ(drawing.drawn.size(), 4u);
    EXPECT_FALSE(fs::exists(temp / "page.jpg")); // the old one doesn't pass for a new one
}

TEST_F(ThumbnailsTest, rebuiltPagesAreDrawnTogetherAndTheFailedOnesOnceMore) {
    std::vector<PageDrawing> pages;
    for (const char *text : {"one", "broken", "three"}) {
        const UrlId id{add(std::string(text) + "[1].htm", "<html>")};
        pages.push_back({id, project.folder.write(std::string(text) + ".htm", text),
                         temp / (std::string(text) + ".jpg")});
    }
    EXPECT_EQ(createHTMLThumbnails(pages, 200, context(), task),
              (std::vector<bool>{true, false, true}));
    EXPECT_EQ(drawing.batches, (std::vector<std::size_t>{3, 1}));
    EXPECT_EQ(field(3, "ThumbnailBLOB"), "JPEGthree");
    EXPECT_EQ(project.log.entries.size(), 2u);
    EXPECT_TRUE(createHTMLThumbnails({}, 200, context(), task).empty());
}

TEST_F(ThumbnailsTest, theSameBytesCostNoWrite) {
    const auto id = UrlId{add("page[1].htm", "<html>")};
    const fs::path drawn = project.folder.write("drawn.jpg", "JPEG");
    EXPECT_EQ(storeThumbnail(id, drawn, context()), Stored::written);
    EXPECT_EQ(storeThumbnail(id, drawn, context()), Stored::sameBytes);
    writeWhole(drawn, "JPEG2");
    EXPECT_EQ(storeThumbnail(id, drawn, context()), Stored::written);
    EXPECT_EQ(field(number(id), "ThumbnailBLOB"), "JPEG2");
    EXPECT_EQ(field(number(id), "ThumbnailHeight"), "90");
}

TEST_F(ThumbnailsTest, aProjectThatCannotBeWrittenEndsTheRun) {
    const auto id = add("a[1].gif", "GIF89a");
    project.connection().exec("PRAGMA query_only = 1");
    EXPECT_THROW(make({id}), StorageFailure);
    project.connection().exec("PRAGMA query_only = 0");
}

} // namespace
} // namespace nv::test
