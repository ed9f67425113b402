#include "cli/CliCase.h"

#include <unistd.h>

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

TEST_F(ReportCliTest, whatIsNotSaidIsAsInTheSettings) {
    const auto set = [this](const char *key, const std::string &value) {
        const CliResult run = cli({"options", "set", key, value});
        ASSERT_EQ(run.exit, 0) << run.err;
    };
    ASSERT_EQ(report("tabular").exit, 0);
    EXPECT_NE(text(out / "index-history.htm").find("<strong>User"), std::string::npos);
    fs::remove_all(out);
    set("REPORT/CaseNumber", "2011-17");
    set("REPORT/Organization", "Acme");
    set("REPORT/ReportType", "1");
    set("REPORT/IncludeUser", "False");
    const CliResult run =
        cli({"report", project, "--out", out.string(), "--organization", "Other"});
    ASSERT_EQ(run.exit, 0) << run.err;
    const std::string page = text(out / "index-history.htm");
    EXPECT_NE(page.find("Case Number: </strong>&nbsp;2011-17"), std::string::npos);
    EXPECT_NE(page.find("Organization: </strong>&nbsp;Other"), std::string::npos);
    EXPECT_EQ(page.find("<strong>User"), std::string::npos);
    EXPECT_EQ(page.find(">User<"), std::string::npos);
}

TEST_F(ReportCliTest, rowsAreChosenByHostAndFilter) {
    EXPECT_NE(report("tabular", {"--host", "elsewhere"}).out.find("0 rows reported"),
              std::string::npos);
    EXPECT_NE(report("tabular", {"--host", "host", "--overwrite"}).out.find("2 rows reported"),
              std::string::npos);
    const CliResult run = report("tabular", {"--filter", "CacheURLs,All", "--overwrite"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_NE(run.out.find("2 rows reported"), std::string::npos) << run.out;
    const CliResult none = report("tabular", {"--filter", "HistoryURLs,All", "--overwrite"});
    EXPECT_NE(none.out.find("0 rows reported"), std::string::npos) << none.out << none.err;
    EXPECT_NE(none.err.find("filters hide 2 of 2 rows"), std::string::npos) << none.err;
    EXPECT_EQ(report("tabular", {"--filter", "nothing", "--overwrite"}).exit, 1);
}

TEST_F(ReportCliTest, aPictureThatIsNoneIsTold) {
    folder.write("logo.png", "no picture");
    const std::string logo = (folder.path() / "logo.png").string();
    const CliResult run = report("tabular", {"--logo", logo});
    EXPECT_EQ(run.exit, 1);
    EXPECT_NE(run.err.find("this is no picture that a report can show"), std::string::npos);
    ASSERT_EQ(cli({"options", "set", "FILE PATHS/AgencyLogoPath", logo}).exit, 0);
    ASSERT_EQ(cli({"options", "set", "REPORT/UseCustomLogo", "True"}).exit, 0);
    const CliResult kept = report("tabular");
    EXPECT_EQ(kept.exit, 0) << kept.err;
    EXPECT_NE(kept.err.find("logo.png\" is no picture that a report can show"), std::string::npos)
        << kept.err;
}

TEST_F(ReportCliTest, aProjectThatCantBeWrittenIsReportedAllTheSame) {
    if (::geteuid() == 0)
        GTEST_SKIP() << "the superuser writes whatever it likes";
    ASSERT_EQ(cli({"rebuild", project, "1", "--out", (folder.path() / "pages").string()}).exit, 0);
    fs::permissions(project, fs::perms::owner_read);
    const CliResult run = report("graphical", {"--links", "--audit", "--trail"});
    EXPECT_EQ(run.exit, 0) << run.err;
    EXPECT_NE(run.out.find("2 rows reported"), std::string::npos) << run.out;
    EXPECT_NE(run.err.find("its trail has no note of this"), std::string::npos) << run.err;
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
