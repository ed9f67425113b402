// A page that was rebuilt exactly keeps what it shows when it leaves the program.

#include "base/Text.h"
#include "rebuild/exact/OwnParts.h"
#include "rebuild/exact/PageReferences.h"
#include "reports/pages/SafePage.h"
#include "reports/pages/SafeStyle.h"
#include "support/HostileWays.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

const PageFolder kFolder{{"0000002.gif", PartKind::picture}, {"0000003.css", PartKind::style},
                         {"0000004.htm", PartKind::page},    {"0000005.svg", PartKind::svg},
                         {"0000006.mp4", PartKind::media},   {"0000007.woff2", PartKind::plain}};

std::string guarded(std::string_view html) {
    return guardedPage(html, PageForm::html, References(kFolder));
}

std::string_view nameFor(RefUse use) {
    switch (use) {
    case RefUse::style:
        return "0000003.css";
    case RefUse::font:
        return "0000007.woff2";
    case RefUse::media:
        return "0000006.mp4";
    case RefUse::frame:
        return "0000004.htm";
    case RefUse::svg:
        return "0000005.svg";
    default:
        return "0000002.gif";
    }
}

/// The page as rebuilding leaves it, with a part of the folder for each reference or without.
std::string rebuilt(std::string_view html, bool isFound) {
    const PageScan scan = scanPage(html, "page");
    std::vector<TextEdit> edits = scan.disarming;
    for (const Reference &reference : scan.references) {
        const std::string part = isFound ? std::string(nameFor(reference.use))
                                         : missingPart(reference.use, reference.address);
        edits.push_back(
            {reference.at, reference.before + spelled(reference, part, html) + reference.after});
    }
    edits.push_back({{scan.headAt, scan.headAt}, ownHead("windows-1252")});
    BannerFacts facts;
    facts.address = "http://h/";
    facts.parts = 9;
    if (scan.endAt != PageScan::npos)
        edits.push_back({{scan.endAt, scan.endAt}, bannerFor(facts)});
    return edited(html, edits);
}

constexpr std::string_view kPage =
    "<!DOCTYPE html><html><head><link rel=stylesheet href=a.css><style>@import 'b.css' screen;"
    "@font-face{font-family:f;src:url(c.woff2)}p{background:image-set('d.png' 2x)}</style></head>"
    "<body background=e.png><img src=f.png srcset='g.png 2x'><picture><source srcset=h.webp>"
    "</picture><video src=i.mp4 poster=j.png></video><iframe src=k.htm></iframe>"
    "<iframe srcdoc='<img src=l.png>'></iframe><object data=m.png></object>"
    "<svg><image href=n.png /></svg><p style='background:url(o.png)'>x"
    "<noscript><img src=p.png></noscript><img data-src=q.png></body></html>";

TEST(ExactPage, partsStayInTheHandOver) {
    const std::string page = guarded(rebuilt(kPage, true));
    SCOPED_TRACE(page);
    EXPECT_THAT(page, AllOf(HasSubstr("<link rel=\"stylesheet\" href=\"0000003.css\"/>"),
                            HasSubstr("@import url(\"0000003.css\") screen"),
                            HasSubstr("src:url(\"0000007.woff2\")"),
                            HasSubstr("image-set(\"0000002.gif\" 2x)"),
                            HasSubstr("background=\"0000002.gif\""),
                            HasSubstr("<img src=\"0000002.gif\" srcset=\"0000002.gif 2x\"/>"),
                            HasSubstr("<source srcset=\"0000002.gif\"/>")));
    EXPECT_THAT(page, AllOf(HasSubstr("<video src=\"0000006.mp4\" poster=\"0000002.gif\">"),
                            HasSubstr("<iframe src=\"0000004.htm\">"),
                            HasSubstr("&lt;img src=&quot;0000002.gif&quot;/&gt;"),
                            HasSubstr("</iframe><img src=\"0000002.gif\"/>"),
                            HasSubstr("<image href=\"0000005.svg\">"),
                            HasSubstr("background:url(&quot;0000002.gif&quot;)"),
                            HasSubstr("x<img src=\"0000002.gif\"/><img src=\"0000002.gif\"/>")));
    EXPECT_EQ(guarded(page), page);
}

TEST(ExactPage, markedPlacesStay) {
    const std::string page = guarded(rebuilt(kPage, false));
    SCOPED_TRACE(page);
    EXPECT_THAT(page, AllOf(HasSubstr("<img src=\"data:image/svg+xml;base64,"),
                            HasSubstr("<iframe src=\"data:text/html;base64,"),
                            HasSubstr("<image href=\"data:image/svg+xml;base64,"),
                            HasSubstr("2x\"/>"), Not(HasSubstr(".png"))));
    EXPECT_EQ(guarded(page), page);
}

TEST(ExactPage, theBannerStays) {
    const std::string page = guarded(rebuilt(kPage, true));
    EXPECT_THAT(page,
                AllOf(HasSubstr("#nv-rebuilt:target {"), HasSubstr("#nv-rebuilt-off:checked~* {"),
                      HasSubstr("position:fixed!important"), HasSubstr("<details open=\"\""),
                      HasSubstr("Rebuilt from caches</summary>"),
                      HasSubstr("<label for=\"nv-rebuilt-off\""), HasSubstr("0 of 9 parts found")));
}

TEST(ExactPage, nothingLeavesByAnyWay) {
    for (const test::HostileWay &way : test::kHostileWays) {
        SCOPED_TRACE(way.name);
        const std::string html =
            replaceAll(replaceAll(way.html, "@", "http://127.0.0.1:9"), "%", "@");
        const std::string made = rebuilt(html, true);
        for (const Reference &reference : scanPage(made, "page").references)
            EXPECT_TRUE(kFolder.contains(reference.address)) << reference.address;
        const std::string page = guarded(made);
        EXPECT_EQ(guarded(page), page);
    }
}

} // namespace
} // namespace nv
