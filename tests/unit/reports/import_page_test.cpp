#include "reports/report/ImportPage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

namespace nv {
namespace {

using testing::HasSubstr;
using testing::Not;

ImportOverview hostile() {
    ImportOverview overview;
    overview.isKnown = true;
    overview.found = overview.reached = 3;
    overview.read = 1;
    overview.rows.rows = 98'311;
    const std::string script = "<script>alert('x')</script>\"><img src=http://a.example/x>";
    overview.people = {{script, {98'311, {}, {}}}};
    overview.profiles = {{"Chrome, profile \"" + script + "\"", {98'311, {}, {}}}};
    overview.kinds = {{"\xFF\x01\xE2\x80\xAEgnp.exe", {98'311, {}, {}}}};
    overview.gaps = {{.file = script,
                      .place = "http://a.example/</table>",
                      .state = "cut short",
                      .reason = "javascript:alert(1) \"' onload=x",
                      .light = ImportLight::red}};
    overview.end.failure = "<b>full</b>";
    return overview;
}

TEST(ImportPageTest, hostileNamesStayText) {
    const std::string page = importPage(hostile(), {"<i>case</i>.nvp", "2.0.0"});
    EXPECT_THAT(page, Not(HasSubstr("<script")));
    EXPECT_THAT(page, Not(HasSubstr("<img")));
    EXPECT_THAT(page, Not(HasSubstr("<i>")));
    EXPECT_THAT(page, Not(HasSubstr("<b>full")));
    EXPECT_THAT(page, Not(HasSubstr("\xE2\x80\xAE")));
    EXPECT_THAT(page, Not(HasSubstr("\xFF")));
    EXPECT_THAT(page, HasSubstr("&lt;script&gt;"));
    EXPECT_THAT(page, HasSubstr("98,311 records"));
}

TEST(ImportPageTest, nothingIsFetchedAndNoLinkLeadsAnywhere) {
    const std::string page = importPage(hostile(), {"case.nvp", "2.0.0"});
    EXPECT_FALSE(std::regex_search(page, std::regex("<[^>]*(href|src|srcset|action)=")));
    EXPECT_THAT(page, Not(HasSubstr("url(")));
    EXPECT_THAT(page, Not(HasSubstr("@import")));
    EXPECT_THAT(page, HasSubstr("default-src 'none'; style-src 'sha256-"));
}

TEST(ImportPageTest, theLightIsWordSignAndColour) {
    ImportOverview overview;
    overview.isKnown = true;
    overview.found = overview.read = overview.reached = 1;
    EXPECT_THAT(importPage(overview, {}), HasSubstr("light l0"));
    EXPECT_THAT(importPage(overview, {}), HasSubstr("Complete."));
    EXPECT_THAT(importPage(overview, {}), HasSubstr("each file that was found was read"));
    overview.gaps = {{.file = "a", .place = "/b", .state = "not read yet", .reason = "later"}};
    EXPECT_THAT(importPage(overview, {}), HasSubstr("light l1"));
    EXPECT_THAT(importPage(overview, {}), HasSubstr("Not complete."));
    overview.gaps.front().light = ImportLight::red;
    EXPECT_THAT(importPage(overview, {}), HasSubstr("light l2"));
    EXPECT_THAT(
        importText(overview),
        HasSubstr("Failed or changed. 1 file is damaged, could not be read or has changed."));
}

TEST(ImportPageTest, aHugeListIsCutAndSaysSo) {
    ImportOverview overview = hostile();
    overview.gaps.assign(25'000, overview.gaps.front());
    const std::string page = importPage(overview, {"case.nvp", "2.0.0"});
    EXPECT_THAT(page, HasSubstr("5,000 more stand in the case trail."));
    EXPECT_LT(page.size(), 20U << 20);
}

TEST(ImportPageTest, theSameAsLines) {
    const std::string text = importText(hostile());
    EXPECT_THAT(text, HasSubstr("98,311 records from 1 profile of 1 person, 1 file read\n"));
    EXPECT_THAT(text, HasSubstr("javascript:alert(1)"));
    EXPECT_THAT(text, HasSubstr("      98,311  "));
}

} // namespace
} // namespace nv
