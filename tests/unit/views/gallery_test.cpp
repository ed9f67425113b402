#include "MadeProject.h"
#include "db/project/StoredQueries.h"
#include "views/gallery/Gallery.h"
#include "views/rows/DateIndex.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class GalleryTest : public testing::Test {
  protected:
    std::int64_t picture(const std::string &host, std::int64_t width = 100,
                         std::int64_t height = 75) {
        return made.add({{"Host", host},
                         {"URL", "http://" + host + "/p"},
                         {"IsPicture", std::int64_t{1}},
                         {"CacheFileExists", std::int64_t{1}},
                         {"PictureWidth", width},
                         {"PictureHeight", height},
                         {"PARDValue", std::int64_t{pardValue(width, height)}},
                         {"ThumbnailMD5Hash", std::string("abc")},
                         {"ThumbnailBLOB", "BM" + host}});
    }
    LoadResult load() { return gallery.load(task); }
    std::vector<std::int32_t> shown() const {
        std::vector<std::int32_t> ids;
        for (const Tile &tile : gallery.gallery().tiles)
            ids.push_back(tile.urlID);
        return ids;
    }

    MadeProject made;
    Unwatched task;
    Gallery gallery{made.db(), made.log};
};

TEST_F(GalleryTest, showsRowsWithAThumbnailByHost) {
    picture("b.example");
    picture("a.example");
    picture("b.example");
    made.add({{"Host", "a.example"}, {"IsPicture", std::int64_t{1}}});
    made.add({{"IsPicture", std::int64_t{1}}, {"ThumbnailMD5Hash", ""}});
    EXPECT_EQ(load(), LoadResult::Loaded);
    EXPECT_THAT(shown(), ElementsAre(2, 1, 3));
    EXPECT_EQ(gallery.rowCount(), 3u);
    EXPECT_EQ(gallery.galleryADOPageCount(), 1);
    EXPECT_TRUE(made.log.entries.empty());
}

TEST_F(GalleryTest, showsNoOthersThanTheTableShows) {
    for (const char *host : {"b.example", "a.example", "b.example"})
        picture(host);
    gallery.among = std::make_shared<const FoundIds>(FoundIds{1, 2, 4});
    ASSERT_EQ(load(), LoadResult::Loaded);
    EXPECT_THAT(shown(), ElementsAre(2, 1));
    gallery.among = std::make_shared<const FoundIds>();
    ASSERT_EQ(load(), LoadResult::Loaded);
    EXPECT_EQ(gallery.rowCount(), 0u);
    gallery.among.reset();
    ASSERT_EQ(load(), LoadResult::Loaded);
    EXPECT_EQ(gallery.rowCount(), 3u);
}

TEST_F(GalleryTest, isEmptyWithoutThumbnails) {
    EXPECT_EQ(load(), LoadResult::Loaded);
    EXPECT_EQ(gallery.galleryADOPageCount(), 0);
    EXPECT_EQ(gallery.gallery().tiles.count(), 0u);
    EXPECT_TRUE(gallery.lastPage());
    EXPECT_TRUE(gallery.nextPage());
    EXPECT_EQ(gallery.galleryADOPage(), 1);
    EXPECT_EQ(gallery.pageText(), "1 of 0");
}

TEST_F(GalleryTest, turnsPagesAndStaysWithinThem) {
    for (int i = 0; i < 5; ++i)
        picture("host");
    gallery.settings.galleryRecordsPerPage = 2;
    ASSERT_EQ(load(), LoadResult::Loaded);
    EXPECT_EQ(gallery.pageText(), "1 of 3");
    EXPECT_TRUE(gallery.previousPage());
    EXPECT_THAT(shown(), ElementsAre(1, 2));
    EXPECT_TRUE(gallery.nextPage());
    EXPECT_THAT(shown(), ElementsAre(3, 4));
    EXPECT_TRUE(gallery.lastPage());
    EXPECT_THAT(shown(), ElementsAre(5));
    EXPECT_TRUE(gallery.nextPage());
    EXPECT_EQ(gallery.galleryADOPage(), 3);
    EXPECT_TRUE(gallery.showPage(99));
    EXPECT_EQ(gallery.pageText(), "3 of 3");
    EXPECT_TRUE(gallery.firstPage());
    EXPECT_EQ(gallery.galleryADOPage(), 1);
}

TEST_F(GalleryTest, showsTheLastPageWhenRowsAreGone) {
    for (int i = 0; i < 5; ++i)
        picture("host");
    gallery.settings.galleryRecordsPerPage = 2;
    ASSERT_EQ(load(), LoadResult::Loaded);
    gallery.lastPage();
    made.db().exec("DELETE FROM URLs WHERE URL_ID > 3");
    EXPECT_TRUE(gallery.lastPage()); // not loaded anew yet
    EXPECT_THAT(shown(), ElementsAre());
    EXPECT_EQ(load(), LoadResult::Loaded);
    EXPECT_EQ(gallery.pageText(), "2 of 2");
    EXPECT_THAT(shown(), ElementsAre(3));
}

TEST_F(GalleryTest, aPageSizeOfNothingShowsOneTile) {
    picture("host");
    picture("host");
    gallery.settings.galleryRecordsPerPage = 0;
    EXPECT_EQ(load(), LoadResult::Loaded);
    EXPECT_EQ(gallery.galleryADOPageCount(), 2);
    gallery.settings.galleryRecordsPerPage = 100; // of the next load
    EXPECT_TRUE(gallery.nextPage());
    EXPECT_THAT(shown(), ElementsAre(2));
}

TEST_F(GalleryTest, aTileHasItsCellCaptionAndTick) {
    const std::int64_t id = picture("host", 468, 60);
    picture("host");
    picture("host");
    made.db().exec(fmt::format("UPDATE URLs SET Tagged = 1 WHERE URL_ID = {}", id));
    gallery.settings.tilesPerRow = 2;
    ASSERT_EQ(load(), LoadResult::Loaded);
    const Tile &first = gallery.gallery().tiles.item(std::size_t{1});
    EXPECT_EQ(captionOf(first), "ID #0000001");
    EXPECT_EQ(first.toolTip, "http://host/p");
    EXPECT_TRUE(first.tagged);
    EXPECT_FALSE(first.selected);
    EXPECT_EQ(first.pardValue, 88);
    const Tile &third = gallery.gallery().tiles.item(std::size_t{3});
    EXPECT_FALSE(third.tagged);
    EXPECT_EQ(third.xCoord, 0);
    EXPECT_EQ(third.yCoord, 1);
    EXPECT_EQ(gallery.gallery().tiles.item(std::size_t{2}).xCoord, 1);
}

TEST(GalleryCaption, hasTheLastSevenDigits) {
    Tile tile;
    tile.urlID = 17;
    EXPECT_EQ(captionOf(tile), "ID #0000017");
    tile.urlID = 123456789;
    EXPECT_EQ(captionOf(tile), "ID #3456789");
}

TEST_F(GalleryTest, theHostIsFoundLiterally) {
    picture("a.example");
    picture("100%.example");
    picture("o'neil.example");
    gallery.choice.filterByHostEnabled = true;
    const auto found = [this](const char *host) {
        gallery.choice.filterByHostValue = host;
        EXPECT_EQ(load(), LoadResult::Loaded);
        return shown();
    };
    EXPECT_THAT(found("%"), ElementsAre(2));
    EXPECT_THAT(found("o'n"), ElementsAre(3));
    EXPECT_THAT(found("A.EX"), ElementsAre(1));
    EXPECT_THAT(found("' OR 1=1 --"), ElementsAre());
    EXPECT_EQ(found("").size(), 3u);
    EXPECT_TRUE(made.log.entries.empty());
}

TEST_F(GalleryTest, filtersByShapeAndSize) {
    picture("host", 100, 100);
    picture("host", 100, 75);
    picture("host", 468, 60);
    picture("host", 500, 400);
    gallery.pard.enablePARD = true;
    gallery.pard.fromValue = 15;
    gallery.pard.toValue = 40;
    ASSERT_EQ(load(), LoadResult::Loaded);
    EXPECT_THAT(shown(), ElementsAre(2, 4));
    gallery.pard.showMediumPics = true;
    ASSERT_EQ(load(), LoadResult::Loaded);
    EXPECT_THAT(shown(), ElementsAre(4));
    gallery.pard.fromValue = 41;
    ASSERT_EQ(load(), LoadResult::Loaded);
    EXPECT_THAT(shown(), ElementsAre(1, 2, 3, 4));
}

TEST_F(GalleryTest, choosesTheMedia) {
    picture("host");
    made.add({{"Host", "page"},
              {"Category", "html"},
              {"CacheFileExists", std::int64_t{1}},
              {"ThumbnailMD5Hash", "abc"}});
    ASSERT_EQ(load(), LoadResult::Loaded);
    EXPECT_THAT(shown(), ElementsAre(1, 2));
    gallery.settings.media = {true, false};
    ASSERT_EQ(load(), LoadResult::Loaded);
    EXPECT_THAT(shown(), ElementsAre(1));
    // Pages alone must be pictures too: kept.
    gallery.settings.media = {false, true};
    ASSERT_EQ(load(), LoadResult::Loaded);
    EXPECT_THAT(shown(), ElementsAre());
}

TEST_F(GalleryTest, standsOnTheStoredQuery) {
    picture("a");
    picture("b");
    StoredQueries(made.db()).save({"My [own]", "SELECT * FROM URLs WHERE Host = 'b'"});
    gallery.choice.activeQueryName = "My [own]";
    ASSERT_EQ(load(), LoadResult::Loaded);
    EXPECT_THAT(shown(), ElementsAre(2));
}

TEST_F(GalleryTest, aQueryThatCannotBeAskedShowsNothing) {
    picture("a");
    ASSERT_EQ(load(), LoadResult::Loaded);
    StoredQueries(made.db()).save({"counts", "SELECT Host, Count(*) FROM URLs GROUP BY Host"});
    gallery.choice.activeQueryName = "counts";
    gallery.galleryDirty = true;
    EXPECT_EQ(load(), LoadResult::Failed);
    EXPECT_THAT(shown(), ElementsAre());
    EXPECT_EQ(gallery.galleryADOPageCount(), 0);
    EXPECT_TRUE(gallery.galleryDirty);
    ASSERT_EQ(made.log.entries.size(), 1u);
    EXPECT_EQ(made.log.entries[0].procedure, "MainForm.LoadGallery()");
}

TEST_F(GalleryTest, aCancelShowsNothing) {
    picture("a");
    CancelAfter none(0);
    EXPECT_EQ(gallery.load(none), LoadResult::Cancelled);
    EXPECT_THAT(shown(), ElementsAre());
}

TEST_F(GalleryTest, isCleanAfterALoad) {
    gallery.galleryDirty = true;
    ASSERT_EQ(load(), LoadResult::Loaded);
    EXPECT_FALSE(gallery.galleryDirty);
    EXPECT_EQ(galleryNotChanged().text, "The current gallery has not changed.");
    EXPECT_EQ(galleryNotChanged().title, "Refresh Gallery");
}

TEST_F(GalleryTest, givesAThumbnailById) {
    const auto id = UrlId{picture("host")};
    const Bytes bytes = thumbnailOf(made.db(), made.log, id);
    EXPECT_EQ(std::string(bytes.begin(), bytes.end()), "BMhost");
    EXPECT_TRUE(thumbnailOf(made.db(), made.log, UrlId{99}).empty());
    EXPECT_TRUE(made.log.entries.empty());
}

TEST_F(GalleryTest, readsTheIndexAndNotTheRows) {
    picture("a");
    ASSERT_EQ(load(), LoadResult::Loaded);
    gallery.pard.enablePARD = gallery.pard.showLargePics = true;
    const IdQuery query = galleryQuery({}, gallery.pard, {true, true});
    SQLite::Statement plan(made.db(), "EXPLAIN QUERY PLAN " + query.sql);
    std::string steps;
    while (plan.executeStep())
        steps += plan.getColumn(3).getString() + "\n";
    EXPECT_THAT(steps, HasSubstr("COVERING INDEX URLGalleryIndex"));
}

} // namespace
} // namespace nv::test
