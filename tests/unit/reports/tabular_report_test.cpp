#include "base/Trap.h"
#include "db/sql/Connection.h"
#include "db/trail/CaseTrail.h"
#include "unit/reports/ReportFixture.h"

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using TabularReportTest = ReportFixture;

TEST_F(TabularReportTest, aRowHasItsCells) {
    addHistory("http://one/?a=1&b=2", 7);
    EXPECT_THAT(make(1), HasSubstr("<tr><td><input type='checkbox' name='box1'></td>"
                                   "<td valign='top'>1</td><td valign='top'>1</td>"
                                   "<td valign='top'><img src='images/ie.gif' alt='Internet "
                                   "Explorer Daily History' title='Internet Explorer Daily "
                                   "History'></td><td valign='top'>3</td>"
                                   "<td valign='top'>IE Daily</td>"
                                   "<td valign='top'><font color='#C00000'>2011-05-07 07:00:00"
                                   "</font> [<font style='color:#C00000;'>-0500</font> STD]</td>"
                                   "<td valign='top'>mara</td>"));
    EXPECT_THAT(inReport("index-history.htm"),
                HasSubstr("<a href='http://one/?a=1&amp;b=2' target='_new'>"
                          "http://one/?a=1&amp;b=2</a>"));
    EXPECT_FALSE(fs::exists(made.pictures()));
}

TEST_F(TabularReportTest, aProjectThatIsOnlyReadIsNotWrittenTo) {
    addHistory("http://one/", 7);
    addHistory("http://two/", 8);
    const auto reading = connectToProject(project.database.filePath, Access::read);
    MemoryTask watched;
    const RowIds ids{2, 1};
    EXPECT_EQ(fillSortTable(*reading, ids, ReportRows::all, watched), Walk::Finished);
    EXPECT_EQ(rowsReported(*reading), 2);
    EXPECT_EQ(sortedRows(*reading, DateOrder::oldestFirst), (RowIds{1, 2}));
    EXPECT_EQ(project.number("SELECT count(*) FROM URLSortTable"), 0);
}

TEST_F(TabularReportTest, columnsFollowTheOptions) {
    addHistory("http://one/", 7);
    const std::string html = make(1, [](ReportWriter &each) {
        each.includeUser = each.includeDataSource = false;
        each.urlColWidth = 400;
    });
    EXPECT_THAT(html, AllOf(Not(HasSubstr("mara")), Not(HasSubstr("Data Source")),
                            Not(HasSubstr("IE Daily<")), HasSubstr("<td valign='top' width='400'"),
                            HasSubstr("<strong>Last Visited [Local]</strong></td><td><strong>"
                                      "Universal Resource Locator (URL)</strong>")));
}

TEST_F(TabularReportTest, iconsAreChosenByTheBeginningOfTheType) {
    const std::vector<std::pair<const char *, const char *>> icons = {
        {"IE Weekly", "ie.gif' alt='Internet Explorer Weekly History'"},
        {"IE History", "ie.gif' alt='Internet Explorer Master History'"},
        {"IE Cookie", "ie.gif' alt='Internet Explorer'"},
        {"Firefox2 History", "firefox.gif' alt='Mozilla Firefox'"},
        {"Mac IE Cache", "net.gif' alt='MAC Internet Explorer'"},
        {"Safari History", "safari.gif' alt='Safari'"},
        {"Opera History", "opera.gif' alt='Safari'"},
        {"NetAnalysis", "net.gif' alt='NetAnalysis'"},
        {"Chrome History", "chrome.gif' alt='Google Chrome'"}};
    for (const auto &[type, icon] : icons)
        addHistory("http://one/", 1, type);
    addHistory("http://one/", 1, "Unallocated");
    const std::string html = make(1);
    for (const auto &[type, icon] : icons)
        EXPECT_THAT(html, HasSubstr(icon)) << type;
    EXPECT_EQ(countOf(html, "<img src='images/"), icons.size() + 1); // and the logo
}

TEST_F(TabularReportTest, weeklyHistoryIsOrange) {
    addHistory("http://one/", 7, "IE Weekly");
    EXPECT_THAT(make(1), HasSubstr("<font color='#FC9F0C'>2011-05-07 07:00:00</font> "
                                   "[<font style='color:#C00000;'>-0500</font> STD]"));
    EXPECT_THAT(make(0), HasSubstr("             <strong>Action Date [Local]:</strong><br><font "
                                   "style='font-size:8pt'>(see <i>WEEKLY</i> info at bottom)"
                                   "</font></td>"));
}

TEST_F(TabularReportTest, theHeadSaysWhoseReportItIs) {
    const auto options = [](ReportWriter &each) {
        each.reportTitle = "Case <one>";
        each.reportedBy = "O'Hara";
        each.organization = "A & B";
        each.caseNumber = "\"7\"";
    };
    EXPECT_THAT(make(1, options),
                AllOf(HasSubstr("<strong><font color='#000066'>Case &lt;one&gt;</font>"),
                      HasSubstr("<strong>Report Date:</strong>&nbsp;&nbsp;Wednesday, June 15, 2011 "
                                "12:00:00 PM"),
                      HasSubstr("<strong>Report Prepared By: </strong>&nbsp;O&#39;Hara"),
                      HasSubstr("<strong>Organization: </strong>&nbsp;A &amp; B"),
                      HasSubstr("<strong>Case Number: </strong>&nbsp;&quot;7&quot;"),
                      HasSubstr("Results are displayed in Coordinated Universal Time (UTC)."),
                      HasSubstr("Time Zone Setting: (UTC-05:00) Eastern Time (US &amp; Canada)")));
    project.zone.tzName = "DEFAULT";
    EXPECT_THAT(make(1,
                     [](ReportWriter &each) {
                         each.skipHeader = true;
                         each.reportTitle.clear();
                     }),
                AllOf(HasSubstr("Norvelane Internet Cache &amp; History Analysis Report"),
                      HasSubstr("Report Date:"), Not(HasSubstr("Case Number")),
                      Not(HasSubstr("Time Zone Setting")), Not(HasSubstr("logo"))));
}

TEST_F(TabularReportTest, evidenceBecomesNoMarkup) {
    const std::string hostile = "\"'><script>alert(1)</script><img src=x onerror=alert(2)>\x01";
    const UrlId id = addHistory("http://host/" + hostile, 1);
    addHistory("javascript:alert('x')", 2);
    addHistory("data:text/html,<b>", 3);
    addHistory("HTTPS://host/", 4);
    for (const char *column : {"User", "WebPageTitle", "Notes", "CacheFileName", "CacheFolderName",
                               "Action", "HistoryVersion", "RebuiltDateTime"})
        set(id, column, hostile);
    project.connection().exec("UPDATE URLs SET CacheType = '<i>kind'  WHERE URL_ID = 2");
    for (const int type : {0, 1}) {
        const std::string html = make(
            type, [](ReportWriter &each) { each.includeAudit = each.includeLinkAnalysis = true; });
        EXPECT_EQ(countOf(html, "<script"), 0u);
        EXPECT_EQ(countOf(html, "<img src=x"), 0u);
        EXPECT_EQ(countOf(html, "<i>kind"), 0u);
        EXPECT_THAT(html, AllOf(HasSubstr("&lt;script&gt;"), HasSubstr("javascript:alert("),
                                Not(HasSubstr("href='javascript")), Not(HasSubstr("href='data")),
                                HasSubstr("href='HTTPS://host/'"), HasSubstr("\xE2\x90\x81")));
        EXPECT_THAT(html, HasSubstr("href='http://host/&quot;&#39;&gt;&lt;script&gt;"));
    }
}

TEST_F(TabularReportTest, theCaseTrailStandsAfterTheLegendOnRequest) {
    addHistory("http://a.example/", 1);
    TrailEntry entry;
    entry.actionDateUTC = Date::fromCivil({2011, 5, 1, 12, 0, 0});
    entry.action = "Import";
    entry.detail = "<script>alert(1)</script>";
    entry.filePath = "/evidence/it's \"here\".dat";
    entry.md5Hash = "0123";
    CaseTrail(project.connection()).add(entry);
    EXPECT_EQ(make(1).find("CASE TRAIL"), std::string::npos);
    for (const int type : {0, 1}) {
        const std::string written = make(type, [](ReportWriter &r) { r.includeCaseTrail = true; });
        EXPECT_LT(written.find("LEGEND:"), written.find("CASE TRAIL:"));
        EXPECT_LT(written.find("CASE TRAIL:"), written.find("Report created using"));
        EXPECT_NE(written.find("&lt;script&gt;alert(1)&lt;/script&gt;"), std::string::npos);
        EXPECT_NE(written.find("/evidence/it&#39;s &quot;here&quot;.dat"), std::string::npos);
        EXPECT_NE(written.find("MD5 0123"), std::string::npos);
        EXPECT_EQ(written.find("<script"), std::string::npos);
    }
}

TEST_F(TabularReportTest, aCancelLeavesNoIndex) {
    addHistory("http://one/", 1);
    make(1);
    CancelAfter canceller(0);
    monitor = &canceller;
    EXPECT_EQ(make(1), "");
    EXPECT_TRUE(fs::exists(made.unfinished()));
    EXPECT_FALSE(fs::exists(made.index(1)));
}

TEST_F(TabularReportTest, theTaskShowsItself) {
    addHistory("http://one/", 1);
    MemoryTask watched;
    monitor = &watched;
    make(1);
    ASSERT_FALSE(watched.headings.empty());
    EXPECT_EQ(watched.headings[0].title, "CREATING REPORT");
    EXPECT_EQ(watched.headings[0].subject, "Overall Progress");
    EXPECT_EQ(watched.steps[0].bottomMessage, "URL_ID: 1");
    EXPECT_THAT(watched.steps[0].topMessage, HasSubstr("Processing URLs "));
}

TEST_F(TabularReportTest, aReportThatCannotBeWrittenFails) {
    addHistory("http://one/", 1);
    writeWhole(temp / "Report", "a file in the way");
    const auto failure = failureOf(project.log, "examiner", [this] { make(1); });
    EXPECT_THAT(failure.value_or(""), HasSubstr((temp / "Report").string()));
    EXPECT_EQ(project.log.entries.size(), 1u) << "it ends the task, which tells it once";
    EXPECT_FALSE(std::filesystem::exists(ReportFolder(temp).index(1)));
}

} // namespace
} // namespace nv::test
