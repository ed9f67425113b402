#include "cli/DamagedProject.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace nv::test {
namespace {

using testing::HasSubstr;

/// Whatever goes over the whole table URLs, on a project one page of which is broken.
class DamagedPageCliTest : public DamagedProjectCase {
  protected:
    /// A cached page (row 1) and its picture (row 2), after which the other rows come.
    static bool drawsPictures() {
        return std::filesystem::exists(cliProgram().parent_path() / "norvelane-draw");
    }

    void makeSite() const {
        IndexDat index;
        index.folder("ABCDEFGH");
        addCached(index, "http://host/page.html", "page[1].htm",
                  "<html><title>Inbox</title><body><img src=\"pic/logo.gif\" ></body></html> ");
        addCached(index, "http://host/pic/logo.gif", "logo[1].gif",
                  std::string(
                      "GIF89a\1\0\1\0\x80\0\0\0\0\0\xFF\xFF\xFF,\0\0\0\0\1\0\1\0\0\2\2D\1\0;", 35));
        writeWhole(evidence / "index.dat", index.bytes());
        makeProject();
    }
    /// Rows in the middle of the table become like the row.
    void multiply(int id) const {
        SQLite::Database rows(project, SQLite::OPEN_READWRITE);
        rows.exec(fmt::format("CREATE TEMP TABLE One AS SELECT * FROM URLs WHERE URL_ID = {}", id));
        SQLite::Transaction together(rows);
        for (int other = kFirst; other <= kLast; ++other)
            rows.exec(fmt::format("UPDATE One SET URL_ID = {}; "
                                  "INSERT OR REPLACE INTO URLs SELECT * FROM One",
                                  other));
        together.commit();
    }
    static constexpr int kFirst = 700;
    static constexpr int kLast = 1300;
    /// Of those rows and the one they were made of, with `broken` among them.
    static std::size_t whole(const std::vector<int> &broken) {
        EXPECT_GT(broken.front(), kFirst + 1);
        EXPECT_LT(broken.back(), kLast - 1);
        return kLast - kFirst + 2 - broken.size();
    }
};

TEST_F(DamagedPageCliTest, showNamesTheRowAndTheFile) {
    makeProject();
    const std::vector<int> broken = breakLeaf();
    for (const char *format : {"table", "jsonl"}) {
        const CliResult run = cli({"show", project, std::to_string(broken[0]), "--format", format});
        EXPECT_EQ(run.exit, 3) << format;
        EXPECT_THAT(run.err, HasSubstr(fmt::format("row {} can't be read: \"{}\" is damaged",
                                                   broken[0], project)));
    }
    EXPECT_EQ(cli({"show", project, std::to_string(broken[0] - 1)}).exit, 0);
}

TEST_F(DamagedPageCliTest, hostsCountTheRowsThatCanBeRead) {
    makeProject();
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("UPDATE URLs SET Host = 'OTHER', Visits = 2 WHERE URL_ID > 2000; "
              "UPDATE URLs SET Host = 'other' WHERE URL_ID > 2500");
    const std::vector<int> broken = breakLeaf();
    for (const bool indexed : {true, false}) {
        if (!indexed)
            SQLite::Database(project, SQLite::OPEN_READWRITE).exec("DROP INDEX URLDateIndex");
        const CliResult run = cli({"hosts", project, "--format", "csv"});
        EXPECT_EQ(run.exit, 2);
        EXPECT_THAT(run.err, HasSubstr(named(broken)));
        EXPECT_THAT(run.err, HasSubstr("no host counts them"));
        const auto lines = linesOf(run.out);
        ASSERT_EQ(lines.size(), 3u);
        EXPECT_EQ(lines[1], fmt::format("host,0,{}", 2000 - broken.size()));
        EXPECT_EQ(lines[2].substr(5), ",2000,1000");
    }
}

TEST_F(DamagedPageCliTest, thumbnailsAreMadeOfTheRowsThatCanBeRead) {
    if (!drawsPictures())
        GTEST_SKIP() << "built without the program that draws";
    makeSite();
    multiply(2);
    const std::vector<int> broken = breakLeaf();
    const CliResult run = cli({"thumbnails", project, "--all", "--redo"});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.err, HasSubstr(named(broken)));
    // Beside the broken page nothing can be written; that costs these rows alone.
    SQLite::Database rows(project, SQLite::OPEN_READONLY);
    std::size_t made = 0;
    for (int id = kFirst; id <= kLast; ++id)
        if (std::ranges::find(broken, id) == broken.end())
            made += rows.execAndGet(fmt::format("SELECT length(ThumbnailMD5Hash) > 0 FROM URLs "
                                                "WHERE URL_ID = {}",
                                                id))
                        .getInt();
    EXPECT_GT(made, whole(broken) - 2 * broken.size() - 4);
}

TEST_F(DamagedPageCliTest, theGalleryShowsTheRowsThatCanBeRead) {
    makeSite();
    multiply(2);
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("UPDATE URLs SET IsPicture = 1, ThumbnailMD5Hash = 'x', "
              "ThumbnailBLOB = CAST('GIF89a' AS BLOB) WHERE URL_ID = 2 OR URL_ID BETWEEN 700 AND "
              "1300");
    const std::vector<int> broken = breakLeaf();
    const std::size_t left = whole(broken);
    const CliResult run =
        cli({"gallery", project, "--out", at("sheet.html"), "--per-page", "1000"});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.err, HasSubstr(named(broken)));
    EXPECT_EQ(run.out, fmt::format("page 1 of 1, {0} of {0} pictures and pages\n", left));
    EXPECT_THAT(text(at("sheet.html")), HasSubstr(named(broken)));
}

TEST_F(DamagedPageCliTest, aGalleryFoundByItsIndexNamesTheRowsWithoutATile) {
    if (!drawsPictures())
        GTEST_SKIP() << "built without the program that draws";
    makeSite();
    multiply(2);
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("UPDATE URLs SET IsPicture = 1, ThumbnailMD5Hash = 'x', "
              "ThumbnailBLOB = CAST('GIF89a' AS BLOB) WHERE URL_ID = 2 OR URL_ID BETWEEN 700 AND "
              "1300");
    // Makes the index.
    EXPECT_EQ(cli({"thumbnails", project, "2", "--redo"}).exit, 0);
    const std::vector<int> broken = breakLeaf();
    const CliResult run =
        cli({"gallery", project, "--out", at("sheet.html"), "--per-page", "1000"});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.err, HasSubstr(named(broken)));
    EXPECT_EQ(run.out, fmt::format("page 1 of 1, {} of {} pictures and pages\n", whole(broken),
                                   whole(broken) + broken.size()));
}

TEST_F(DamagedPageCliTest, pagesAreRebuiltWithTheRowsThatCanBeRead) {
    makeSite();
    const std::vector<int> broken = breakLeaf();
    const CliResult run =
        cli({"rebuild", project, "--all-pages", "--out", at("out"), "--no-thumbnails"});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.err, HasSubstr(named(broken)));
    EXPECT_THAT(run.out, HasSubstr("1 tag found, 1 replaced, 0 missing  0000001.NVR"));
    EXPECT_THAT(text(at("out") + "/0000001.NVR/0000001.htm"), HasSubstr("src=\"0000002.gif\""));
}

TEST_F(DamagedPageCliTest, aPageBesideDamageCostsItselfAlone) {
    makeSite();
    multiply(1);
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("UPDATE URLs SET CacheFileExists = 0 WHERE URL_ID BETWEEN 700 AND 740 OR URL_ID > "
              "900");
    const std::vector<int> broken = breakLeaf();
    const CliResult run =
        cli({"rebuild", project, "--all-pages", "--out", at("out"), "--no-thumbnails"});
    EXPECT_EQ(run.exit, 2);
    EXPECT_THAT(run.err, HasSubstr(named(broken)));
    EXPECT_THAT(run.out, HasSubstr("  741  1 tag found"));
    EXPECT_THAT(run.out, HasSubstr("  900  1 tag found"));
}

} // namespace
} // namespace nv::test
