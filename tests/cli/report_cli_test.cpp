#include "cli/CliCase.h"

namespace nv::test {
namespace {

namespace fs = std::filesystem;

/// A cache of a page (row 1) and its picture (row 2), imported.
class ReportCliTest : public CliCase {
  protected:
    ReportCliTest() {
        IndexDat index;
        index.folder("ABCDEFGH");
        addCached(index, "http://host/page.html", "page[1].htm",
                  "<html><title>Inbox</title><img src=\"pic/logo.gif\" ></html> ");
        addCached(index, "http://host/pic/logo.gif", "logo[1].gif", "GIF89a");
        import(index);
    }
    CliResult report(const std::string &type, std::vector<std::string> more = {}) {
        std::vector<std::string> all{"report", project, "--type", type, "--out", out.string()};
        all.insert(all.end(), more.begin(), more.end());
        return cli(all);
    }

    fs::path out = folder.path() / "out";
};

TEST_F(ReportCliTest, aGraphicalReportIsHandedOver) {
    ASSERT_EQ(cli({"rebuild", project, "1", "--out", (folder.path() / "pages").string()}).exit, 0);
    const CliResult run = report("graphical", {"--audit", "--case-number", "17"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_NE(run.out.find("2 rows reported, "), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("index-cache.htm"), std::string::npos) << run.out;
    EXPECT_EQ(text(out / "0000001.NVR" / "0000002.gif"), "GIF89a");
    EXPECT_EQ(text(out / "pictures" / "0000002.gif"), "GIF89a");
    EXPECT_TRUE(fs::exists(out / "images" / "report-default.png"));
    EXPECT_NE(text(out / "index-cache.htm").find("Case Number: </strong>&nbsp;17"),
              std::string::npos);
}

TEST_F(ReportCliTest, aTabularReportFollowsQueryAndTicks) {
    EXPECT_NE(report("tabular", {"--tagged"}).out.find("0 rows reported"), std::string::npos);
    ASSERT_EQ(cli({"tag", project, "2"}).exit, 0);
    EXPECT_EQ(report("tabular", {"--tagged"}).exit, 1); // the folder is not empty
    EXPECT_NE(report("tabular", {"--tagged", "--overwrite"}).out.find("1 row reported"),
              std::string::npos);
    EXPECT_NE(text(out / "index-history.htm").find("logo.gif"), std::string::npos);
    EXPECT_EQ(text(out / "index-history.htm").find("page.html"), std::string::npos);
    EXPECT_EQ(report("tabular", {"--query", "none", "--overwrite"}).exit, 1);
}

TEST_F(ReportCliTest, wrongCallsAreRefused) {
    EXPECT_EQ(report("other").exit, 1);
    EXPECT_EQ(report("tabular", {"--all", "--tagged"}).exit, 1);
    EXPECT_EQ(report("tabular", {"--logo", "/nowhere.png"}).exit, 1);
    out = evidence / "out";
    EXPECT_EQ(report("tabular").exit, 1);
    EXPECT_FALSE(fs::exists(out));
    out = folder.path() / "case.nvp";
    EXPECT_EQ(report("tabular").exit, 1);
}

} // namespace
} // namespace nv::test
