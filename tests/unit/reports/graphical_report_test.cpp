#include "rebuild/Archive.h"
#include "rebuild/LocalNames.h"
#include "support/SmallFiles.h"
#include "time/ExactZone.h"
#include "unit/reports/ReportFixture.h"

#include <regex>

namespace nv::test {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

constexpr const char *kPage =
    "<!DOCTYPE html><html><title>Inbox</title><script src=\"a.js\" >"
    "</script><img src=\"pic/logo.gif\" ><img src=\"gone.gif\" >"
    "<meta http-equiv=\"refresh\" content=\"0;url=http://live/\"></html> ";

class GraphicalReportTest : public ReportFixture {
  protected:
    /// Row 1 is a rebuilt page with its picture in row 2.
    void addRebuiltPage() {
        const UrlId html = add("http://host/page.html", kPage);
        add("http://host/pic/logo.gif", "GIF89a logo");
        ASSERT_TRUE(rebuild(html));
    }
};

TEST_F(GraphicalReportTest, noRowsGiveHeadLegendAndFooter) {
    const std::string html = make(0);
    EXPECT_THAT(html, AllOf(HasSubstr("<table><tr><td valign='top'>\r\n</td></tr></table>\r\n"),
                            HasSubstr("<strong>LEGEND:</strong><ol>"),
                            HasSubstr("Report created using Norvelene<SUP>")));
    EXPECT_EQ(inReport("~rptids"), "");
    EXPECT_EQ(inReport("images/ie.gif"), "picture");
    EXPECT_FALSE(fs::exists(made.images() / "readme.txt"));
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(GraphicalReportTest, onlyTickedRowsAreTakenWhenAskedFor) {
    addHistory("http://one/", 1);
    const UrlId two = addHistory("http://two/", 2);
    project.connection().exec("UPDATE URLs SET Tagged = 1 WHERE URL_ID = 2");
    const std::string html = make(0, [](ReportWriter &each) { each.includeAll = false; });
    EXPECT_EQ(countOf(html, "TABLE2"), 1u);
    EXPECT_THAT(html, HasSubstr("http://two/"));
    EXPECT_EQ(inReport("~rptids"), sidOf(two) + ".NVR\r\n");
}

TEST_F(GraphicalReportTest, aHistoryRowShowsTheDefaultPicture) {
    addHistory("http://one/", 1);
    EXPECT_THAT(make(0), HasSubstr("<img src='images/report-default.png' width='200' "
                                   "alt='This is a HISTORY record. No file to display.' border='2' "
                                   "style='border-color: #000080;'><br>URL ID #1"));
}

TEST_F(GraphicalReportTest, rowsFollowTheirLocalDate) {
    addHistory("http://late/", 20);
    addHistory("http://early/", 10);
    std::string html = make(0);
    EXPECT_LT(html.find("http://early/"), html.find("http://late/"));
    html = make(0, [](ReportWriter &each) { each.sortAscending = false; });
    EXPECT_GT(html.find("http://early/"), html.find("http://late/"));
    EXPECT_EQ(inReport("~rptids"), "0000001.NVR\r\n0000002.NVR\r\n");
}

TEST_F(GraphicalReportTest, aPictureGetsItsRealExtensionAndAThumbnail) {
    add("http://host/show.php", "GIF89a picture");
    const std::string html = make(0);
    EXPECT_EQ(inReport("pictures/0000001.gif"), "GIF89a picture");
    EXPECT_EQ(inReport("pictures/0000001.jpg"), "JPEG");
    EXPECT_THAT(html,
                HasSubstr("<a href='pictures/0000001.gif' target='_new'><img "
                          "src='pictures/0000001.jpg' width='100' alt='Click to display a full "
                          "size version of the file.' border='2' style='border-color: #000080;'>"));
    EXPECT_THAT(html, HasSubstr("<a href='pictures/0000001.gif' target='_new'>"
                                "pictures/0000001.gif</a>"));
    EXPECT_EQ(ByteView(readWhole(evidenceFolder / "ABCDEFGH" / "file1.php")).raw(),
              "GIF89a picture");
}

TEST_F(GraphicalReportTest, aPhotographIsShownItself) {
    add("http://host/photo.jpg", "\xFF\xD8\xFF\xE1 camera data");
    const std::string html = make(0);
    EXPECT_EQ(inReport("pictures/0000001.jpg"), "\xFF\xD8\xFF\xE1 camera data");
    EXPECT_THAT(html, HasSubstr("<img src='pictures/0000001.jpg'"));
    EXPECT_TRUE(drawings.drawn.empty());
}

TEST_F(GraphicalReportTest, aPictureThatCannotBeDrawnFallsBack) {
    add("http://host/a.gif", "GIF89a broken");
    EXPECT_THAT(make(0), HasSubstr("<a href='pictures/0000001.gif' target='_new'><img "
                                   "src='images/report-default.png' width='200'"));
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_EQ(project.log.entries[0].message, "URL ID: 1 not a picture");
    drawing = nullptr; // a build that can't draw leaves it to the browser
    EXPECT_THAT(make(0), HasSubstr("<img src='pictures/0000001.gif'"));
}

TEST_F(GraphicalReportTest, contentThatIsGoneFallsBack) {
    const UrlId id = add("http://host/a.gif", "");
    EXPECT_THAT(make(0), HasSubstr("The cached file was not there at the import."));
    set(id, "CacheFileExists", "1");
    const std::string html = make(0);
    EXPECT_THAT(html, HasSubstr("<img src='images/report-default.png' width='200' alt='Click to "
                                "display a full size version of the file.'"));
    EXPECT_THAT(html, HasSubstr("The cached file is gone."));
}

TEST_F(GraphicalReportTest, aRebuiltPageComesWithItsPartsAndIsGuarded) {
    addRebuiltPage();
    const std::string html = make(0, [](ReportWriter &each) { each.includeAudit = true; });
    const std::string copy = inReport("0000001.NVR/0000001.htm");
    EXPECT_THAT(copy, AllOf(HasSubstr("src=\"0000002.gif\""), HasSubstr("default-src 'none'"),
                            Not(HasSubstr("<script")), Not(HasSubstr("efresh"))));
    EXPECT_TRUE(
        copy.starts_with("\xEF\xBB\xBF<!DOCTYPE html><html><head><meta charset=\"utf-8\"/>"));
    EXPECT_EQ(inReport("0000001.NVR/0000002.gif"), "GIF89a logo");
    EXPECT_EQ(inReport("0000001.NVR/~0000001.thumbnail.jpg"), "JPEG");
    EXPECT_THAT(html, HasSubstr("<a href='0000001.NVR/0000001.htm' target='_new'><img "
                                "src='0000001.NVR/~0000001.thumbnail.jpg' width='200'"));
    EXPECT_THAT(html, HasSubstr("<a href='0000001.NVR/0000002.gif' target='_new'>0000002.gif</a>"));
    EXPECT_THAT(html, HasSubstr("<font color='red'>Missing or Invalid Tag</font>"));
    EXPECT_THAT(html, HasSubstr("AUDIT INFORMATION"));
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(GraphicalReportTest, theAuditTellsAReferenceThatThePageDoesNotNameAPartFor) {
    add("http://host/a/logo.gif", "GIF89a logo");
    const UrlId id = add("http://host/page.html",
                         "<b style=\"background:url(a/logo.gif)\"><img src=\"a/logo.gif\" > ");
    ASSERT_TRUE(rebuild(id));
    const std::string html = make(0, [](ReportWriter &each) { each.includeAudit = true; });
    const std::string part = "<a href='0000002.NVR/0000001.gif' target='_new'>0000001.gif</a>";
    EXPECT_EQ(countOf(html, part), 2u);
    EXPECT_EQ(countOf(html, "Not rewritten: " + part), 1u);
}

TEST_F(GraphicalReportTest, aPageThatWasRebuiltExactlyTellsTheRuleOfEachPart) {
    settings.method = MethodChoice::exact;
    addRebuiltPage();
    const std::string html = make(0, [](ReportWriter &each) { each.includeAudit = true; });
    EXPECT_THAT(html, AllOf(HasSubstr("(exact method)"), HasSubstr("img src"),
                            HasSubstr("http://host/gone.gif"), HasSubstr("exact address"),
                            HasSubstr("not in any cache"), HasSubstr("Marked place"),
                            HasSubstr("<a href='0000001.NVR/0000002.gif' "
                                      "target='_new'>0000002.gif</a> (row 2)")));
    EXPECT_EQ(inReport("0000001.NVR/0000002.gif"), "GIF89a logo");
    const std::string copy = inReport("0000001.NVR/0000001.htm");
    EXPECT_THAT(copy, AllOf(HasSubstr("src=\"0000002.gif\""), HasSubstr("default-src 'none'"),
                            Not(HasSubstr("<script")), Not(HasSubstr("efresh"))));
    EXPECT_TRUE(project.log.entries.empty());
}

TEST_F(GraphicalReportTest, theAuditOfAnExactRebuildNamesTheOtherRecords) {
    settings.method = MethodChoice::exact;
    for (int i = 0; i < 14; ++i)
        add("http://host/a/logo.gif", "GIF89a logo");
    const UrlId id = add("http://host/a/page.html", "<html><img src=logo.gif>");
    ASSERT_TRUE(rebuild(id));
    EXPECT_THAT(make(0, [](ReportWriter &each) { each.includeAudit = true; }),
                HasSubstr("exact address; others: 2, 3, 4, 5, 6, 7, 8, 9, 10, 11 and 3 more"));
}

TEST_F(GraphicalReportTest, anArchiveOfAnEarlierVersionIsUnpacked) {
    addRebuiltPage();
    UrlRecord record = get(UrlId{1});
    const auto folder = rebuildFolderOf(UrlId{1}, context());
    writeWhole(folder / "0000001.thumbnail.jpg", "old drawing");
    ASSERT_TRUE(createCabinetFile(folder, record, context()));
    project.connection().exec("UPDATE URLs SET RebuiltSourceCode = ''");
    make(0);
    EXPECT_THAT(inReport("0000001.NVR/0000001.htm"), HasSubstr("default-src 'none'"));
    EXPECT_EQ(inReport("0000001.NVR/~0000001.thumbnail.jpg"), "old drawing");
}

TEST_F(GraphicalReportTest, aPageThatWasNotRebuiltIsHandedOnAsText) {
    add("http://host/page.html", kPage);
    const std::string html = make(0);
    EXPECT_EQ(inReport("0000001.NVR/0000001.txt"), kPage);
    EXPECT_FALSE(fs::exists(made.path / "0000001.NVR/0000001.htm"));
    EXPECT_THAT(html, HasSubstr("<a href='0000001.NVR/0000001.txt' target='_new'><img "
                                "src='0000001.NVR/~0000001.thumbnail.jpg'"));
    EXPECT_FALSE(fs::exists(temp / "~cards"));
}

TEST_F(GraphicalReportTest, programsAreNotCopied) {
    add("http://host/setup.exe", std::string("MZ\0\x01\x02", 5));
    EXPECT_THAT(make(0), HasSubstr("The cached file is neither a page, a picture nor text."));
    EXPECT_TRUE(fs::is_empty(made.pictures()));
}

TEST_F(GraphicalReportTest, aSecondReportDeletesWhatTheFirstBroughtIn) {
    add("http://host/a.gif", "GIF89a");
    make(0);
    project.connection().exec("DELETE FROM URLs");
    fs::create_directories(made.path / "0000077.NVR");
    make(0);
    EXPECT_TRUE(fs::is_empty(made.pictures()));
    EXPECT_FALSE(fs::exists(made.path / "0000077.NVR"));
}

TEST_F(GraphicalReportTest, aCancelLeavesTheUnfinishedPageOnly) {
    for (int day = 1; day <= 20; ++day)
        addHistory("http://host/", day);
    make(0);
    ASSERT_TRUE(fs::exists(made.index(0)));
    for (const int calls : {0, 1, 15, 20}) {
        CancelAfter canceller(calls);
        monitor = &canceller;
        EXPECT_EQ(make(0), "") << calls;
        EXPECT_TRUE(cancelled);
        EXPECT_TRUE(fs::exists(made.unfinished()));
        EXPECT_FALSE(fs::exists(made.index(0)));
        monitor = &nobody;
    }
}

TEST_F(GraphicalReportTest, visitedLinksOfAPageAreListed) {
    const UrlId html = addHistory("http://page/", 1);
    const UrlId few = addHistory("http://few/", 2);
    const UrlId many = addHistory("javascript:alert(1)", 3);
    project.connection().exec("UPDATE URLs SET Visits = 9 WHERE URL_ID = 3");
    for (const UrlId child : {few, many, few})
        project.connection().exec(
            fmt::format("INSERT INTO LinkAnalysis (Parent_ID, Child_ID) VALUES ({}, {})",
                        number(html), number(child)));
    const std::string text = make(0, [](ReportWriter &each) { each.includeLinkAnalysis = true; });
    const std::string first = text.substr(text.find("Table3"), 2000);
    EXPECT_LT(first.find(">3</td><td"), first.find("http://few/"));
    EXPECT_EQ(countOf(text.substr(0, text.find("URL ID #2")), "http://few/"), 2u);
    EXPECT_THAT(text, Not(HasSubstr("href='javascript")));
    EXPECT_THAT(text, AllOf(HasSubstr("LINK ANALYSIS INFORMATION"), HasSubstr("<strong>Item<")));
}

TEST_F(GraphicalReportTest, aRowThatIsGoneIsToldOf) {
    const UrlId id = addHistory("http://one/", 1);
    fillSortTable(project.connection(), allRows(), ReportRows::all, task);
    project.connection().exec("DELETE FROM URLs");
    const ReportContext ctx = reportContext();
    ReportWriter each(ctx);
    each.createGraphicalReport(temp);
    EXPECT_THAT(textAt(each.reportFilePath), HasSubstr("this record could not be written"));
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_EQ(project.log.entries[0].procedure, "ReportClass.CreateGraphicalRecord()");
    EXPECT_EQ(project.log.entries[0].severity, Severity::Serious);
    EXPECT_EQ(project.log.entries[0].recommendation, kContactSupport);
    EXPECT_EQ(number(id), 1);
    EXPECT_THAT(
        notesOf(each),
        testing::ElementsAre("1 records could not be written; their entries say so. Ids: 1."));
    each.createTabularReport(temp);
    EXPECT_THAT(textAt(each.reportFilePath), HasSubstr("this record could not be written"));
    EXPECT_EQ(project.log.entries[1].procedure, "ReportClass.CreateTabularRecord()");
    EXPECT_EQ(project.log.entries[1].severity, Severity::Serious);
    EXPECT_EQ(each.recordsFailed, 1u);
}

TEST_F(GraphicalReportTest, rowsWhoseLastDigitsAreAlikeKeepTheirOwnFiles) {
    addRebuiltPage();
    add("http://host/other.txt", "another row");
    add("http://host/large.gif", "GIF89a large");
    project.connection().exec("UPDATE URLs SET URL_ID = 10000001 WHERE URL_ID = 3;"
                              "UPDATE URLs SET URL_ID = 10000002 WHERE URL_ID = 4");
    const std::string html = make(0);
    EXPECT_THAT(html, AllOf(HasSubstr("href='0000001.NVR/0000001.htm'"),
                            HasSubstr("href='10000001.NVR/10000001.txt'")));
    EXPECT_THAT(inReport("0000001.NVR/0000001.htm"), HasSubstr("Inbox"));
    EXPECT_EQ(inReport("10000001.NVR/10000001.txt"), "another row");
    EXPECT_EQ(inReport("pictures/0000002.gif"), "GIF89a logo");
    EXPECT_EQ(inReport("pictures/10000002.gif"), "GIF89a large");
    made.removeRowFolders();
    EXPECT_FALSE(fs::exists(made.path / "10000001.NVR"));
}

TEST_F(GraphicalReportTest, everyLocalLinkLeadsToAFileOfTheReport) {
    addRebuiltPage();
    add("http://host/other.html", kPage);
    addHistory("http://one/", 1);
    const std::string html =
        make(0, [](ReportWriter &each) { each.includeAudit = each.includeLinkAnalysis = true; });
    const std::regex link("(?:href|src)='([^']*)'");
    std::size_t local = 0;
    for (std::sregex_iterator at(html.begin(), html.end(), link), end; at != end; ++at) {
        const std::string target = (*at)[1];
        if (target.starts_with("http://"))
            continue;
        ++local;
        EXPECT_TRUE(fs::is_regular_file(made.path / target)) << target;
    }
    EXPECT_GE(local, 8u);
}

TEST_F(GraphicalReportTest, ownPicturesTakeThePlaceOfTheProgramsOwn) {
    addHistory("http://one/", 1);
    add("http://host/a.gif", "");
    const auto mine = project.folder.write("mine.dat", "GIF89a mine");
    const std::string html = make(0, [&](ReportWriter &each) {
        each.useCustomLogo = each.useDefaultThumbnailPath = true;
        each.agencyLogoPath = each.defaultThumbnailPath = mine;
    });
    EXPECT_THAT(html, AllOf(HasSubstr("src='images/agency-logo.gif'"),
                            HasSubstr("src='images/default-thumbnail.gif'")));
    EXPECT_EQ(inReport("images/agency-logo.gif"), "GIF89a mine");
    writeWhole(mine, "<svg onload=alert(1)>");
    EXPECT_THAT(make(0,
                     [&](ReportWriter &each) {
                         each.useCustomLogo = true;
                         each.agencyLogoPath = mine;
                     }),
                HasSubstr("src='images/norvelane-logo.png'"));
    EXPECT_EQ(project.log.entries.size(), 1u);
}

TEST_F(GraphicalReportTest, anExactZoneIsNamedWithItsVersion) {
    const ExactZones zones("/usr/share/zoneinfo");
    setExactZone(project.zone, zones.find("Europe/Berlin"), Date::fromCivil({2011, 6, 15}));
    addHistory("http://host/", 3);
    const std::string html = make(0);
    EXPECT_THAT(html, AllOf(HasSubstr("The active time bias is set to: +0200 CEST"),
                            HasSubstr("Time Zone Setting: Europe/Berlin (the law of each date, by "
                                      "the time zone database of version " +
                                      zones.version() + ")"),
                            HasSubstr("2011-05-03 14:00:00</font> [+0200 CEST]")));
}

TEST_F(GraphicalReportTest, picturesThatAreMissingAreToldOf) {
    images = project.folder.path() / "none";
    EXPECT_NE(make(0), "");
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_THAT(project.log.entries[0].message, HasSubstr("the program's pictures are missing"));
}

TEST_F(GraphicalReportTest, aLogoThatCannotBeCopiedCostsNothingElse) {
    fs::create_directories(made.images() / "agency-logo.gif" / "in the way");
    const auto mine = project.folder.write("mine.gif", "GIF89a mine");
    const std::string html = make(0, [&](ReportWriter &each) {
        each.useCustomLogo = true;
        each.agencyLogoPath = mine;
    });
    EXPECT_THAT(html, AllOf(HasSubstr("src='images/norvelane-logo.png'"),
                            HasSubstr("The active time bias is set to:")));
    ASSERT_EQ(project.log.entries.size(), 1u);
    EXPECT_EQ(project.log.entries[0].procedure, "ReportClass.CreateHeader()");
}

/// A stream that throws what it can't write.
struct NoRoom : std::streambuf {};

TEST_F(GraphicalReportTest, aHeadAndAFootThatFailAreToldOf) {
    const ReportContext ctx = reportContext();
    ReportWriter each(ctx);
    NoRoom nowhere;
    std::ostream file(&nowhere);
    file.exceptions(std::ios::badbit);
    each.createHeader(file);
    file.clear();
    each.createFooter(file);
    EXPECT_THAT(notesOf(each), testing::ElementsAre("Error Creating Report Header",
                                                    "Error Creating Report Footer"));
    ASSERT_EQ(project.log.entries.size(), 2u);
    EXPECT_EQ(project.log.entries[0].procedure, "ReportClass.CreateHeader()");
    EXPECT_EQ(project.log.entries[1].procedure, "ReportClass.CreateFooter()");
}

TEST_F(GraphicalReportTest, aDiskThatFillsUpEndsTheReport) {
    for (int day = 1; day <= 28; ++day)
        addHistory("http://host/" + std::string(4000, 'a'), day);
    for (const int type : {0, 1}) {
        const SmallFiles limit(60'000);
        EXPECT_THROW(make(type), StorageFailure);
        EXPECT_FALSE(fs::exists(made.index(type)));
    }
}

} // namespace
} // namespace nv::test
