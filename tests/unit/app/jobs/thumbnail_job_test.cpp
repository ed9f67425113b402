#include "app/jobs/ImportText.h"
#include "app/jobs/ThumbnailJob.h"
#include "app/project/Project.h"
#include "support/UrlIds.h"
#include "unit/app/ProgramFixture.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

/// Rows of all kinds: 1 a picture, 2 the same with a thumbnail, 3 a page, 4 a picture that is gone,
/// 5 a style sheet.
struct ThumbnailJobTest : test::ProgramFixture {
    ThumbnailJobTest() {
        start(Front::headless);
        EXPECT_TRUE(createProject(*program, folder.path() / "case.nvp"));
        program->state.projectDB.connection().exec(
            "INSERT INTO URLs(Category, CacheFileExists, ThumbnailMD5Hash) VALUES "
            "('PICTURES', 1, ''), ('Pictures', 1, 'x'), ('HTML', 1, NULL), ('Pictures', 0, ''), "
            "('Stylesheets', 1, '')");
        EXPECT_FALSE(program->import.makeThumbnails); // until it is asked for
        program->import.makeThumbnails = true;
    }
};

TEST_F(ThumbnailJobTest, rowsThatHaveAThumbnailAreLeftUnlessAskedFor) {
    UnreadRows unread;
    EXPECT_EQ(drawableIds(*program, Redo::no, unread), test::urlIds({1, 3}));
    EXPECT_EQ(drawableIds(*program, Redo::yes, unread), test::urlIds({1, 2, 3}));
    EXPECT_EQ(withoutThumbnail(*program, test::urlIds({5, 2, 1})), test::urlIds({5, 1}));
}

TEST_F(ThumbnailJobTest, anImportDrawsItsOwnRows) {
    EXPECT_EQ(importedDrawableIds(*program, 0), test::urlIds({1, 2, 3}));
    EXPECT_EQ(importedDrawableIds(*program, 2), test::urlIds({3}));
    EXPECT_THAT(importedDrawableIds(*program, 5), IsEmpty());
}

TEST_F(ThumbnailJobTest, theBoxesOfTheImportHold) {
    program->import.makeWebPageThumbnails = false;
    EXPECT_EQ(importedDrawableIds(*program, 0), test::urlIds({1, 2}));
    program->import.makeWebPageThumbnails = true;
    program->import.makePictureThumbnails = false; // asked for pages too
    EXPECT_THAT(importedDrawableIds(*program, 0), IsEmpty());
    program->import.makePictureThumbnails = true;
    program->import.makeThumbnails = false;
    EXPECT_THAT(importedDrawableIds(*program, 0), IsEmpty());
}

TEST(ImportSummaryText, tellsOfThumbnails) {
    ImportSummary summary;
    EXPECT_THAT(summaryText(summary), Not(HasSubstr("thumbnails")));
    summary.thumbnails = {3, 2, 1, "the disk is full"};
    EXPECT_THAT(summaryText(summary),
                HasSubstr("3 thumbnails made, 2 could not be drawn, 1 without cached content or of "
                          "other kinds\nNo more thumbnails were made: the disk is full\n"));
}

} // namespace
} // namespace nv
