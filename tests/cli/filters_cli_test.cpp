#include "cli/CliCase.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace nv::test {
namespace {

using nlohmann::json;
namespace fs = std::filesystem;
using testing::HasSubstr;

/// A project of one cached picture, one cached page and a page of the history.
class FiltersCliTest : public CliCase {
  protected:
    FiltersCliTest() {
        IndexDat index;
        index.folder("ABCDEFGH");
        index.add(
            {.url = "http://b.example/p.gif", .fileSize = 6, .folder = 0, .fileName = "p.gif"});
        index.add(
            {.url = "http://a.example/q.htm", .fileSize = 6, .folder = 0, .fileName = "q.htm"});
        index.add({.url = "http://a.example/blog", .fileSize = 6, .folder = 0, .fileName = "b"});
        import(index);
        SQLite::Database rows(project, SQLite::OPEN_READWRITE);
        rows.exec("UPDATE URLs SET IsHistory = 1, CacheType = 'IE HISTORY', Visits = 9 "
                  "WHERE URL = 'http://a.example/blog'");
        rows.exec("UPDATE URLs SET Visits = 30 WHERE URL LIKE '%gif'");
    }
    /// The URLs that `list --filter WORDS` gives, each on a line.
    std::string listed(const std::vector<std::string> &words) {
        std::vector<std::string> call{"list",      project, "--format", "tsv",
                                      "--columns", "url",   "--filter"};
        call.insert(call.end(), words.begin(), words.end());
        const CliResult run = cli(call);
        EXPECT_EQ(run.exit, 0) << run.err;
        said = run.err;
        return run.out;
    }
    std::string said;
};

TEST_F(FiltersCliTest, listShowsWhatTheFlagsAdmitAndSaysHowManyItHides) {
    EXPECT_EQ(listed({"showCacheURLs,showGIF"}), "url\nhttp://b.example/p.gif\n");
    EXPECT_THAT(said, HasSubstr("filters hide 2 of 3 rows"));
    EXPECT_EQ(listed({"HISTORYURLS", "blogs"}), "url\nhttp://a.example/blog\n");
    EXPECT_EQ(listed({"cacheURLs", "historyurls,all"}),
              listed({"showhistoryurls,SHOWALL,cacheurls"}));
    EXPECT_EQ(said, "") << "nothing is hidden";
}

TEST_F(FiltersCliTest, anUnknownFlagListsThemAll) {
    const CliResult run = cli({"list", project, "--filter", "cacheurls,pictures"});
    EXPECT_EQ(run.exit, 1);
    EXPECT_THAT(run.err, HasSubstr("there is no filter \"pictures\""));
    EXPECT_THAT(run.err, HasSubstr("showHistoryURLs, showCacheURLs"));
    EXPECT_THAT(run.err, HasSubstr("showFilesOpened, showAll"));
}

TEST_F(FiltersCliTest, aFilterNeedsADataSource) {
    const CliResult run = cli({"list", project, "--filter", "gif"});
    EXPECT_EQ(run.exit, 1);
    EXPECT_THAT(run.err, HasSubstr("At least one DATA SOURCE option must be selected."));
    EXPECT_THAT(run.err, HasSubstr("showCookies"));
}

TEST_F(FiltersCliTest, hostsAreListedByNameOrByVisits) {
    CliResult run = cli({"hosts", project, "--format", "tsv"});
    ASSERT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out, testing::StartsWith("Host\tVisits\tRecords\na.example\t"));
    run = cli({"hosts", project, "--by-visits", "--format", "jsonl"});
    ASSERT_EQ(run.exit, 0) << run.err;
    const json first = json::parse(run.out.substr(0, run.out.find('\n')));
    EXPECT_EQ(first, (json{{"Host", "b.example"}, {"Visits", 30}, {"Records", 1}}));
    EXPECT_EQ(cli({"hosts", (folder.path() / "none.nvp").string()}).exit, 3);
}

TEST_F(FiltersCliTest, aGalleryTakesTheSameFlags) {
    SQLite::Database(project, SQLite::OPEN_READWRITE)
        .exec("UPDATE URLs SET IsPicture = 1, CacheFileExists = 1, ThumbnailMD5Hash = 'x', "
              "ThumbnailBLOB = 'GIF89a'");
    const std::string out = (folder.path() / "sheet.html").string();
    const CliResult run = cli({"gallery", project, "--out", out, "--filter", "cacheurls,gif"});
    ASSERT_EQ(run.exit, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("1 of 1 pictures"));
    EXPECT_THAT(std::string(ByteView(readWhole(out)).raw()), HasSubstr("Filters: cacheurls, gif"));
    EXPECT_EQ(cli({"gallery", project, "--out", out, "--overwrite", "--filter", "x"}).exit, 1);
}

} // namespace
} // namespace nv::test
