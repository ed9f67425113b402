#include "base/Text.h"
#include "cli/CliCase.h"
#include "support/Places.h"
#include "support/SmallFiles.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

/// An imported cache of six pictures, whose thumbnails are put into their rows by hand.
class GalleryCliTest : public CliCase {
  protected:
    GalleryCliTest() {
        IndexDat index;
        index.folder("ABCDEFGH");
        for (int i = 1; i <= 6; ++i)
            addCached(index, "http://host" + std::to_string(i) + ".example/<b>&p.gif",
                      "p" + std::to_string(i) + ".gif", "GIF89a");
        import(index);
        SQLite::Database rows(project, SQLite::OPEN_READWRITE);
        rows.exec("UPDATE URLs SET IsPicture = 1, ThumbnailMD5Hash = 'x', ThumbnailBLOB = "
                  "CAST('GIF89a' || URL_ID AS BLOB), PictureWidth = 100 * URL_ID, "
                  "PictureHeight = 75 * URL_ID, PARDValue = 25 WHERE URL_ID < 6");
        rows.exec("UPDATE URLs SET ThumbnailBLOB = '<svg onload=\"x()\">' WHERE URL_ID = 3");
        rows.exec("UPDATE URLs SET PictureWidth = 468, PictureHeight = 60, PARDValue = 88, "
                  "Tagged = 1 WHERE URL_ID = 2");
    }
    CliResult gallery(std::vector<std::string> more) {
        std::vector<std::string> words{"gallery", project, "--out", out.string(), "--overwrite"};
        words.insert(words.end(), more.begin(), more.end());
        return cli(words);
    }
    std::string sheet() { return std::string(ByteView(readWhole(out)).raw()); }

    fs::path out = folder.path() / "sheet.html";
};

TEST_F(GalleryCliTest, aSheetHoldsPicturesCaptionsAndShapes) {
    const CliResult run = gallery({});
    ASSERT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("page 1 of 1, 5 of 5"));
    const std::string html = sheet();
    EXPECT_THAT(html, HasSubstr("data:image/gif;base64,R0lGODlhMQ=="));
    EXPECT_THAT(html, HasSubstr("ID #0000002, ticked<small>468 x 60, P.A.R.D. 88</small>"));
    EXPECT_THAT(html, HasSubstr("http://host1.example/&lt;b&gt;&amp;p.gif"));
    EXPECT_THAT(html, Not(HasSubstr("<b>")));
    EXPECT_THAT(html, Not(HasSubstr("href")));
    EXPECT_THAT(html, Not(HasSubstr("svg"))); // a form that can hold scripts
    EXPECT_THAT(html, HasSubstr("default-src 'none'"));
    EXPECT_THAT(html, Not(HasSubstr("ID #0000006")));
}

TEST_F(GalleryCliTest, aSheetSaysHowAPageWasRebuilt) {
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("UPDATE URLs SET CacheFileRebuilt = 1, RebuiltMethod = 'Cache, exact' "
              "WHERE URL_ID = 2");
    ASSERT_EQ(gallery({}).exit, 0);
    EXPECT_THAT(sheet(), HasSubstr("P.A.R.D. 88</small><small>Rebuilt: Cache, exact</small>"));
}

TEST_F(GalleryCliTest, aSheetThatDoesntFitTheDiskLeavesNothing) {
    ASSERT_EQ(gallery({}).exit, 0);
    const std::string before = sheet();
    {
        const SmallFiles full(900); // bytes
        const CliResult run = gallery({});
        EXPECT_EQ(run.exit, 3);
        EXPECT_THAT(run.err, HasSubstr("sheet.html"));
        EXPECT_THAT(run.err, HasSubstr("on the disk \""));
    }
    EXPECT_EQ(sheet(), before);
    fs::remove(out);
    {
        const SmallFiles full(900);
        EXPECT_EQ(gallery({}).exit, 3);
    }
    for (const fs::directory_entry &entry : fs::directory_iterator(folder.path()))
        EXPECT_FALSE(entry.path().filename().string().starts_with("sheet")) << entry.path();
}

TEST_F(GalleryCliTest, whatLimitsTheTableLimitsTheSheet) {
    ASSERT_EQ(cli({"tag", project, "2", "4", "6", "--name", "Important"}).exit, 0);
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("INSERT INTO RecordFacts VALUES (1, 'hashset_known', 'library', 'MD5'), "
              "(4, 'hashset_notable', 'cases', 'MD5')");
    const auto shown = [this](const std::vector<std::string> &more) {
        const CliResult run = gallery(more);
        EXPECT_EQ(run.exit, 0) << run.err;
        return run.out;
    };
    EXPECT_THAT(shown({"--tag", "important"}), HasSubstr("2 of 2"));
    EXPECT_THAT(sheet(), HasSubstr("Only: the tag &quot;important&quot;"));
    EXPECT_THAT(shown({"--hash-set", "cases"}), HasSubstr("1 of 1"));
    EXPECT_THAT(shown({"--without-known"}), HasSubstr("4 of 4"));
    EXPECT_THAT(shown({"--search", "host3"}), HasSubstr("1 of 1"));
    EXPECT_THAT(shown({"--from", "2099-01-01"}), HasSubstr("0 of 0"));
    EXPECT_EQ(gallery({"--from", "never"}).exit, 1);
}

TEST_F(GalleryCliTest, picturesAreChosenByShapeSizeAndHost) {
    EXPECT_THAT(gallery({"--pard", "15-40"}).out, HasSubstr("4 of 4"));
    EXPECT_THAT(gallery({"--pard", "80-100"}).out, HasSubstr("1 of 1"));
    EXPECT_THAT(gallery({"--sizes", "s"}).out, HasSubstr("1 of 1"));
    EXPECT_THAT(gallery({"--sizes", "s,m"}).out, HasSubstr("4 of 4")); // 468 x 60 in none
    EXPECT_THAT(gallery({"--host", "host3"}).out, HasSubstr("1 of 1"));
    EXPECT_THAT(gallery({"--host", "' OR '1'='1"}).out, HasSubstr("0 of 0"));
    EXPECT_THAT(sheet(), HasSubstr("Hosts that contain: &#39; OR"));
}

TEST_F(GalleryCliTest, pagesAreTurnedAndOneAfterTheLastIsRefused) {
    EXPECT_THAT(gallery({"--per-page", "2", "--page", "2"}).out, HasSubstr("page 2 of 3, 2 of 5"));
    EXPECT_THAT(gallery({"--per-page", "2", "--page", "4"}).err,
                HasSubstr("--page 4: the gallery has 3 pages"));
}

TEST_F(GalleryCliTest, callsThatMakeNoSenseAreRefused) {
    for (const char *pard : {"40-15", "15", "a-b", "0-101", "1-2-3", ""})
        EXPECT_EQ(gallery({"--pard", pard, "--sizes", "huge"}).exit, 1) << pard;
    EXPECT_EQ(gallery({"--query", "no such"}).exit, 1);
    EXPECT_EQ(cli({"gallery", project}).exit, 1);
    EXPECT_EQ(cli({"gallery", project, "--out", (folder.path() / "sheet.txt").string()}).exit, 1);
    EXPECT_FALSE(fs::exists(out));
}

TEST_F(GalleryCliTest, nothingIsWrittenOverAFileOrIntoTheEvidence) {
    folder.write("sheet.html", "mine");
    EXPECT_EQ(cli({"gallery", project, "--out", out.string()}).exit, 1);
    EXPECT_EQ(sheet(), "mine");
    const fs::path inside = evidence / "sheet.html";
    EXPECT_EQ(cli({"gallery", project, "--out", inside.string()}).exit, 1);
    EXPECT_FALSE(fs::exists(inside));
    EXPECT_EQ(cli({"gallery", project, "--out", (folder.path() / "no" / "x.html").string()}).exit,
              3);
}

TEST_F(GalleryCliTest, urlsThatTurnTheDirectionOfWritingAreSeenThrough) {
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("UPDATE URLs SET URL = 'http://host/' || char(8238) || 'gpj.exe'");
    ASSERT_EQ(gallery({}).exit, 0);
    EXPECT_THAT(sheet(), HasSubstr("http://host/&lt;U+202E&gt;gpj.exe"));
}

TEST_F(GalleryCliTest, aSheetMayBeAPicture) {
    const fs::path picture = folder.path() / "Sheet.PNG";
    const CliResult run = cli({"gallery", project, "--out", picture.string()});
    if (!fs::exists(cliProgram().parent_path() / "norvelane-draw")) {
        EXPECT_EQ(run.exit, 3);
        EXPECT_THAT(run.err, HasSubstr("norvelane-draw"));
        EXPECT_FALSE(fs::exists(picture));
        return;
    }
    ASSERT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("page 1 of 1, 5 of 5"));
    EXPECT_EQ(ByteView(readHead(picture, 8)).raw(), "\x89PNG\r\n\x1A\n");
    EXPECT_EQ(cli({"gallery", project, "--out", picture.string()}).exit, 1); // it is there
    EXPECT_EQ(cli({"gallery", project, "--out", (evidence / "s.png").string()}).exit, 1);
    EXPECT_FALSE(fs::exists(evidence / "s.png"));
}

TEST_F(GalleryCliTest, thumbnailsAreAskedForByIdOrAll) {
    EXPECT_EQ(cli({"thumbnails", project}).exit, 1);
    EXPECT_EQ(cli({"thumbnails", project, "1", "--all"}).exit, 1);
    EXPECT_EQ(cli({"thumbnails", project, "99"}).exit, 1);
    const CliResult there = cli({"thumbnails", project, "1", "2"});
    EXPECT_EQ(there.exit, 0) << there.err;
    EXPECT_THAT(there.out, HasSubstr("0 thumbnails made"));
}

} // namespace
} // namespace nv::test
