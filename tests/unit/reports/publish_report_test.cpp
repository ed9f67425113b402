#include "reports/report/PublishReport.h"
#include "support/SmallFiles.h"
#include "unit/reports/ReportFixture.h"

namespace nv::test {
namespace {

namespace fs = std::filesystem;

class PublishReportTest : public ReportFixture {
  protected:
    PublishReportTest() { fs::create_directories(target); }
    Published publish(int type) { return publishReport(made, type, target, task); }
    fs::path target = project.folder.path() / "handed over";
};

TEST_F(PublishReportTest, aGraphicalReportGoesWithItsPicturesAndPages) {
    add("http://host/a.gif", "GIF89a");
    add("http://host/page.html", "<html>page</html>");
    make(0);
    writeWhole(made.path / "stray.txt", "not of the report");
    fs::create_directories(made.path / "0000099.NVR");
    writeWhole(made.path / "0000099.NVR" / "0000099.htm", "of no row");
    EXPECT_TRUE(isReportThere(made, 0));
    EXPECT_FALSE(isReportThere(made, 1));
    const Published published = publish(0);
    EXPECT_EQ(published.files, 9u); // index, 4 images, 2 pictures, 2 of the page
    EXPECT_EQ(textAt(target / "index-cache.htm"), inReport("index-cache.htm"));
    EXPECT_EQ(textAt(target / "pictures/0000001.gif"), "GIF89a");
    EXPECT_EQ(textAt(target / "0000002.NVR/0000002.txt"), "<html>page</html>");
    EXPECT_FALSE(fs::exists(target / "stray.txt"));
    EXPECT_FALSE(fs::exists(target / "0000099.NVR"));
    EXPECT_FALSE(fs::exists(target / "~report.htm"));
}

TEST_F(PublishReportTest, aTabularReportIsItsPageAndImages) {
    make(0);
    make(1);
    EXPECT_EQ(publish(1).files, 5u);
    EXPECT_FALSE(fs::exists(target / "pictures"));
    EXPECT_FALSE(fs::exists(target / "index-cache.htm"));
}

TEST_F(PublishReportTest, itShowsItselfAndCanBeCancelled) {
    make(1);
    MemoryTask watched;
    publishReport(made, 1, target, watched);
    EXPECT_EQ(watched.headings[0].title, "PUBLISHING REPORT");
    EXPECT_EQ(watched.headings[0].subject, "Copying report contents to output folder...");
    EXPECT_EQ(watched.steps[0].topMessage, "Copying 1 of 5");
    CancelAfter canceller(2);
    const Published published = publishReport(made, 1, target, canceller);
    EXPECT_TRUE(published.cancelled);
    EXPECT_EQ(published.files, 2u);
}

TEST_F(PublishReportTest, aCancelLeavesNoPageThatLooksWhole) {
    make(1);
    CancelAfter canceller(2);
    EXPECT_TRUE(publishReport(made, 1, target, canceller).cancelled);
    EXPECT_FALSE(fs::exists(target / "index-history.htm"));
}

TEST_F(PublishReportTest, whatDoesntFitTheDiskLeavesNothingOfTheReport) {
    add("http://host/a.gif", "GIF89a");
    make(0);
    writeWhole(target / "notes.txt", "the examiner's");
    {
        const SmallFiles full(100); // bytes
        EXPECT_THROW(publish(0), StorageFailure);
    }
    fs::remove(target / "notes.txt");
    EXPECT_TRUE(fs::is_empty(target));
}

TEST_F(PublishReportTest, thePageComesLast) {
    add("http://host/a.gif", "GIF89a");
    make(0);
    publish(0);
    for (const int calls : {0, 3, 6}) { // 7 files
        CancelAfter canceller(calls);
        EXPECT_TRUE(publishReport(made, 0, target, canceller).cancelled);
        EXPECT_FALSE(fs::exists(target / "index-cache.htm")) << "nor that of the earlier report";
    }
    EXPECT_TRUE(fs::exists(target / "pictures/0000001.gif"));
    EXPECT_EQ(publish(0).files, 7u);
}

TEST_F(PublishReportTest, aReportOfOneTypeIsTakenOutByItself) {
    add("http://host/a.gif", "GIF89a");
    make(0);
    make(1);
    publish(0);
    removePublished(target, 1); // there is none
    EXPECT_TRUE(fs::exists(target / "pictures/0000001.gif"));
    publish(1);
    removePublished(target, 0);
    EXPECT_FALSE(fs::exists(target / "index-cache.htm"));
    EXPECT_FALSE(fs::exists(target / "pictures"));
    EXPECT_TRUE(fs::exists(target / "index-history.htm"));
    EXPECT_TRUE(fs::exists(target / "images/ie.gif"));
}

TEST_F(PublishReportTest, nothingIsWrittenThroughALink) {
    add("http://host/a.gif", "GIF89a");
    make(0);
    const fs::path elsewhere = project.folder.path() / "elsewhere";
    for (const char *name : {"images", "pictures"}) {
        fs::create_directories(elsewhere);
        fs::create_directory_symlink(elsewhere, target / name);
        EXPECT_THROW(publish(0), std::runtime_error);
        EXPECT_TRUE(fs::is_empty(elsewhere));
        EXPECT_FALSE(fs::exists(target / "index-cache.htm"));
        fs::remove(target / name);
    }
    writeWhole(elsewhere / "page.htm", "evidence");
    fs::create_symlink(elsewhere / "page.htm", target / "index-cache.htm");
    publish(0);
    EXPECT_EQ(textAt(elsewhere / "page.htm"), "evidence");
}

TEST_F(PublishReportTest, aFolderWithoutAReportIsLeftAlone) {
    fs::create_directories(target / "pictures");
    writeWhole(target / "pictures" / "mine.jpg", "mine");
    removePublished(target);
    EXPECT_TRUE(fs::exists(target / "pictures" / "mine.jpg"));
}

TEST_F(PublishReportTest, removingTakesAReportAndNothingElse) {
    add("http://host/a.gif", "GIF89a");
    make(0);
    publish(0);
    writeWhole(target / "letter.txt", "mine");
    fs::create_directories(target / "mine.NVR");
    removePublished(target);
    std::set<std::string> left;
    for (const fs::directory_entry &entry : fs::directory_iterator(target))
        left.insert(entry.path().filename().string());
    EXPECT_EQ(left, (std::set<std::string>{"letter.txt", "mine.NVR"}));
}

} // namespace
} // namespace nv::test
