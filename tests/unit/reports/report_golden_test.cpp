#include "support/Places.h"
#include "unit/reports/ReportFixture.h"

#include <cstdlib>

// Whole reports, compared byte by byte. NV_WRITE_GOLDEN=1 writes the expected pages anew; look at
// the difference before you keep it.
namespace nv::test {
namespace {

class ReportGoldenTest : public ReportFixture {
  protected:
    ReportGoldenTest() {
        const UrlId site =
            add("http://host/page.html", "<html><title>Inbox</title><img src=\"pic/logo.gif\" >"
                                         "<img src=\"gone.gif\" ></html> ");
        add("http://host/pic/logo.gif", "GIF89a logo");
        rebuild(site);
        set(site, "WebPageTitle", "Inbox <1> & \"more\"");
        set(site, "Notes", "First line\r\n<b>second</b> line");
        set(site, "HistoryVersion", "5.2");
        addHistory("http://host/visited?a=1&b='2'", 7);
        addHistory("http://host/weekly", 8, "IE Weekly");
        addHistory("javascript:alert(1)", 9, "Opera History");
        project.connection().exec("INSERT INTO LinkAnalysis (Parent_ID, Child_ID) VALUES (1, 3)");
    }
    void compare(int type, const std::string &name) {
        const std::string html = make(type, [](ReportClass &each) {
            each.IncludeAudit = each.IncludeLinkAnalysis = true;
            each.CaseNumber = "2011/17";
            each.ReportedBy = "M. Quill";
            each.Organization = "Unit 4";
        });
        const auto expected = goldenFolder() / "report" / name;
        if (std::getenv("NV_WRITE_GOLDEN"))
            writeWhole(expected, html);
        EXPECT_EQ(html, textAt(expected));
        EXPECT_TRUE(project.log.entries.empty());
    }
};

TEST_F(ReportGoldenTest, theGraphicalReport) {
    compare(0, "graphical.htm");
}

TEST_F(ReportGoldenTest, theTabularReport) {
    compare(1, "tabular.htm");
}

} // namespace
} // namespace nv::test
