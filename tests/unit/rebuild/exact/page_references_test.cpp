#include "base/Text.h"
#include "unit/rebuild/exact/ScannedPage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace nv {
namespace {

using test::disarmed;
using test::namedIn;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

std::string rewritten(std::string_view html, std::string_view address) {
    const PageScan scan = scanPage(html, "page");
    std::vector<TextEdit> edits = scan.disarming;
    for (const Reference &reference : scan.references)
        edits.push_back({reference.at, spelled(reference, address, html)});
    return edited(html, edits);
}

TEST(ScanPage, findsWhatAPageShows) {
    EXPECT_THAT(namedIn("<img src=a.png><input type=IMAGE src='b.png'><input src=no.png>"
                        "<video src=c.mp4 poster=d.png><source src=e.mp4><track src=f.vtt></video>"
                        "<audio src=g.mp3></audio><object data=h.svg></object><embed src=i.swf>"),
                ElementsAre("img src=a.png", "input src=b.png", "video src=c.mp4",
                            "video poster=d.png", "source src=e.mp4", "track src=f.vtt",
                            "audio src=g.mp3", "object data=h.svg", "embed src=i.swf"));
    EXPECT_THAT(namedIn("<frameset><frame src=a.htm></frameset>"), ElementsAre("frame src=a.htm"));
    EXPECT_THAT(
        namedIn("<body background=a.png><table background=b.png><tr><td background='c.png'>"
                "<iframe src=d.htm></iframe><a href=e.htm>x</a><map><area href=f.htm></map>"),
        ElementsAre("body background=a.png", "table background=b.png", "td background=c.png",
                    "iframe src=d.htm", "a href=e.htm", "area href=f.htm"));
    EXPECT_THAT(
        namedIn("<image src=a.png><!-- <img src=no.png> --><textarea><img src=no.png></textarea>"
                "<template><img src=no.png></template><img src='data:,x'><img src=' '><img>"
                "<a href='#here'>x</a><a href=mailto:x@y>y</a>"),
        ElementsAre("img src=a.png", "a href=mailto:x@y"));
}

TEST(ScanPage, linksAreToldApart) {
    const PageScan scan =
        scanPage("<link rel=stylesheet href=a.css><link rel='alternate StyleSheet' href=b.css>"
                 "<link rel='shortcut icon' href=c.ico><link rel=apple-touch-icon href=d.png>"
                 "<link rel=canonical href=no><link rel=stylesheet type=text/less href=no.less>"
                 "<link rel=preload as=image href=no.png imagesrcset='no.png 2x'>"
                 "<link rel=dns-prefetch href=//no>",
                 "page");
    ASSERT_EQ(scan.references.size(), 4U);
    EXPECT_EQ(scan.references[0].use, RefUse::style);
    EXPECT_EQ(scan.references[1].address, "b.css");
    EXPECT_EQ(scan.references[2].use, RefUse::icon);
    EXPECT_EQ(scan.references[3].use, RefUse::icon);
    EXPECT_EQ(
        disarmed("<link rel=preload href=a.js as=script><link href='b.js' rel=modulepreload>"),
        "<link rel=preload href=\"\" as=script><link href='' rel=modulepreload>");
}

TEST(ScanPage, aStyleOfAnotherTypeMayBeMoreThanThat) {
    const std::string link = "<link rel='stylesheet preconnect' type=text/plain href=http://h/a>";
    EXPECT_THAT(namedIn(link), IsEmpty());
    EXPECT_EQ(disarmed(link), "<link rel='stylesheet preconnect' type=text/plain href=\"\">");
    EXPECT_THAT(namedIn("<link rel='stylesheet icon' type=text/plain href=a>"),
                ElementsAre("link href=a"));
}

TEST(ScanPage, onlyTheFirstBaseCounts) {
    EXPECT_EQ(scanPage("<base target=x><base href=/a/><base href=/b/>", "page").base, "/a/");
    EXPECT_EQ(scanPage("<base href><base href=/b/>", "page").base, "");
}

TEST(ScanPage, stylesThatAScriptWouldApplyApply) {
    const std::string late = "<link rel=\"preload\" as=\"style\" href=\"a.css\" "
                             "onload=\"this.rel='stylesheet'\">";
    EXPECT_THAT(namedIn(late), ElementsAre("link href=a.css"));
    EXPECT_EQ(disarmed(late), "<link rel=\"stylesheet\" as=\"style\" href=\"a.css\" onload=\"\">");
    EXPECT_EQ(disarmed("<link rel=stylesheet href=a.css media=print onload=\"this.media='all'\">"),
              "<link rel=stylesheet href=a.css media=\"all\" onload=\"\">");
}

TEST(ScanPage, readsCandidatesOfSrcset) {
    const std::string html =
        "<picture><source media='(min-width:9px)' srcset='a.webp 640w, b,c.webp 1280w'>"
        "<img srcset=\"data:image/png;base64,AA== 1x,\n d.png?x=1,2&amp;y 2x, e.png, , f.png,\" "
        "src=g.png></picture>";
    EXPECT_THAT(namedIn(html), ElementsAre("source srcset=a.webp", "source srcset=b,c.webp",
                                           "img srcset=d.png?x=1,2&y", "img srcset=e.png",
                                           "img srcset=f.png", "img src=g.png"));
    const auto found = scanPage(html, "page").references;
    EXPECT_EQ(found[0].descriptor, "640w");
    EXPECT_EQ(found[2].descriptor, "2x");
    EXPECT_EQ(found[3].descriptor, "");
    EXPECT_EQ(found[2].at.in(html), "d.png?x=1,2&amp;y");
    EXPECT_EQ(rewritten("<img srcset='a.png 1x,b.png 2x,'>", "a b,"),
              "<img srcset='a%20b%2C 1x,a%20b%2C 2x,'>");
}

TEST(ScanPage, readsCharacterReferences) {
    const std::string html =
        "<img src=\"a&amp;b&#x63;&#100;&eacute;&copy=1&lt;&notin;&fjlig;&x;.png\">";
    const auto found = scanPage(html, "page").references;
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].address, "a&bcd\xC3\xA9&copy=1<\xE2\x88\x89"
                                "fj&x;.png");
    EXPECT_EQ(found[0].at.in(html), "a&amp;b&#x63;&#100;&eacute;&copy=1&lt;&notin;&fjlig;&x;.png");
    EXPECT_THAT(namedIn("<img src='&#32;\n a&#9;b.png &#x20;'>"), ElementsAre("img src=a\tb.png"));
}

TEST(ScanPage, unquotedValuesStayValues) {
    EXPECT_EQ(
        rewritten("<img src=a.png><img src=b.png/><img alt=x src=c.png id=y>", "1 2'\"<>&.g"),
        "<img src=1&#32;2&#39;&#34;&#60;&#62;&amp;.g><img src=1&#32;2&#39;&#34;&#60;&#62;&amp;."
        "g><img alt=x src=1&#32;2&#39;&#34;&#60;&#62;&amp;.g id=y>");
}

/// "&quot" and "1" would be read as a name that nobody knows.
TEST(ScanPage, referencesInFrontStayApart) {
    EXPECT_EQ(rewritten("<img src='&#32a.png'>", "17"), "<img src='&#32&#49;7'>");
    EXPECT_EQ(rewritten("<p style='a:url(&quot&#97&quot)'>", "17"),
              "<p style='a:url(&quot\\0000317&quot)'>");
    EXPECT_EQ(rewritten("<img srcset=\"&#9a 1x\">", "17"), "<img srcset=\"&#9&#49;7 1x\">");
    EXPECT_EQ(rewritten("<iframe srcdoc=\"<img src='&amp;#32a'>\">", "17"),
              "<iframe srcdoc=\"<img src='&amp;#32&amp;#49;7'>\">");
}

TEST(ScanPage, readsStyles) {
    const std::string html =
        "<style>@import 'a.css';b{background:url(c.png)}</style><style type=text/less>d{e:url(f)}"
        "</style><p style='background:url(&quot;g.png&#34;)'>x<p style=background:url(h.png)>";
    EXPECT_THAT(namedIn(html), ElementsAre("style @import=a.css", "style background=c.png",
                                           "p background=g.png", "p background=h.png"));
    EXPECT_EQ(rewritten(html, "1 2"),
              "<style>@import '1\\0000202';b{background:url(1\\0000202)}</style><style "
              "type=text/less>d{e:url(f)}</style><p style='background:url(&quot;1\\0000202&#34;)'>x"
              "<p style=background:url(1\\0000202)>");
}

TEST(ScanPage, readsDrawings) {
    const std::string html =
        "<svg><image href=a.png /><image xlink:href='b.png'/><use href='c.svg#d'/>"
        "<use xlink:href='#no'/><rect fill='url(e.svg#f)' filter=\"url(#no)\" style='mask:url(g)'/>"
        "<style>h{fill:url(&quot;i.svg&quot;)}</style><style><![CDATA[j{fill:url(k.svg)}]]></style>"
        "<a xlink:href=l.htm><set attributeName=href to=//no /></a></svg>";
    EXPECT_THAT(namedIn(html), ElementsAre("image href=a.png", "image href=b.png",
                                           "use href=c.svg#d", "rect fill=e.svg#f", "rect mask=g",
                                           "style fill=i.svg", "style fill=k.svg", "a href=l.htm"));
    for (const Reference &reference : scanPage(html, "page").references)
        EXPECT_EQ(reference.at.in(html), reference.address);
    EXPECT_THAT(disarmed(html), HasSubstr("<set attributeName=\"\" to"));
}

TEST(ScanPage, picturesInSvgTakeNothingOfOurs) {
    const std::string svg = "<?xml version='1.0'?><?xml-stylesheet type='text/css' href='a.css'?>"
                            "<!DOCTYPE svg><svg xmlns='http://www.w3.org/2000/svg'>"
                            "<image xlink:href='b.png'/><script>x()</script></svg>";
    const PageScan scan = scanPage(svg, "picture");
    EXPECT_THAT(namedIn(svg), ElementsAre("?xml-stylesheet href=a.css", "image href=b.png"));
    EXPECT_EQ(scan.headAt, PageScan::npos);
    EXPECT_EQ(scan.bodyAt, PageScan::npos);
    EXPECT_EQ(disarmed(svg).find("x()"), std::string::npos);
}

TEST(ScanPage, lazyPicturesComeToTheirPlace) {
    EXPECT_EQ(rewritten("<img class=lazy src=spacer.gif data-src=a.png>", "17.png"),
              "<img class=lazy src=17.png data-was-data-src=a.png>");
    EXPECT_EQ(
        rewritten("<img src='data:,x' data-original='a.png' data-srcset='b.png 2x'>", "17.png"),
        "<img src='17.png' data-was-data-original='a.png' srcset='17.png 2x'>");
    EXPECT_EQ(
        rewritten("<img srcset='s.gif 1x' src alt=x data-src=a.png data-srcset='b 2x'>", "17"),
        "<img srcset='17 1x' data-was-src alt=x src=17 data-srcset='b 2x'>");
    EXPECT_THAT(
        namedIn("<img data-src=a.png data-srcset='b.png 2x, c.png'>"),
        ElementsAre("img data-src=a.png", "img data-srcset=b.png", "img data-srcset=c.png"));
    EXPECT_THAT(namedIn("<img src=real.png data-src=large.png>"), ElementsAre("img src=real.png"));
    EXPECT_THAT(namedIn("<img src=real.png data-src='{{photo}}'>"),
                ElementsAre("img src=real.png"));
    EXPECT_TRUE(scanPage("<img data-src=a.png>", "page").references[0].isLazy);
    EXPECT_EQ(disarmed("<img loading=lazy src=a><iframe src=b loading='lazy'></iframe>"),
              "<img loading=\"\" src=a><iframe src=b loading=''></iframe>");
    EXPECT_EQ(rewritten("<div data-bg=\"a b.png\">", "17.png"),
              "<div style=\"background-image:url(17.png)\">");
    EXPECT_EQ(rewritten("<div data-bg='url(&quot;a.png&quot;)'>", "17.png"),
              "<div style='background-image:url(&quot;17.png&quot;)'>");
}

TEST(ScanPage, whatIsForBrowsersWithoutScriptsShows) {
    const std::string html = "<head><noscript><link rel=stylesheet href=a.css></noscript></head>"
                             "<body><noscript class=x>b<img src=c.png></noscript>";
    EXPECT_EQ(disarmed(html),
              "<head><link rel=stylesheet href=a.css></head><body>b<img src=c.png>");
    EXPECT_THAT(namedIn(html), ElementsAre("link href=a.css", "img src=c.png"));
    const std::string twice =
        "<img data-src=a.png src=s.gif alt=blank class=lazy><noscript><img src='a.png'></noscript>"
        "<noscript>b</noscript>";
    EXPECT_EQ(disarmed(twice), "<img data-was-data-src=a.png src=s.gif alt=blank class=lazy>b");
    EXPECT_THAT(namedIn(twice), ElementsAre("img data-src=a.png"));
}

TEST(ScanPage, ofANoscriptOnlyThePictureGoesThatIsShownAlready) {
    const std::string html =
        "<img data-src=b.png><noscript><img src=b.png srcset='b.png 2x'><p>text "
        "kept</p><img src=c.png></noscript><img src=b.png>";
    EXPECT_EQ(disarmed(html), "<img src=b.png><p>text kept</p><img src=c.png><img src=b.png>");
    EXPECT_THAT(namedIn(html), ElementsAre("img data-src=b.png", "img src=c.png", "img src=b.png"));
    EXPECT_EQ(disarmed("<img data-src=a><noscript><noscript><img src=a></noscript>x</noscript>"),
              "<img src=a>x");
}

TEST(ScanPage, nothingRunsOrLeadsAway) {
    EXPECT_EQ(disarmed("<p>a<script src=x>b</script>c<SCRIPT>d<!--<script></script>--></SCRIPT >e"),
              "<p>a<template></template>c<template></template>e");
    EXPECT_EQ(disarmed("a<script>b"), "a<template></template>");
    EXPECT_EQ(disarmed("<svg><script xlink:href=a /><script>b</script><script>c"),
              "<svg><g/><template></template><g>c");
    EXPECT_EQ(disarmed("<p onclick=\"a\" ONLOAD=b() onx='c'>"),
              "<p onclick=\"\" ONLOAD=\"\" onx=''>");
    EXPECT_EQ(disarmed("<p onclick=a onclick=b>"), "<p onclick=\"\" onclick=b>");
    EXPECT_EQ(disarmed("<meta http-equiv=refresh content='0;url=x'>"
                       "<meta http-equiv='Content-Security-Policy' content=x>"
                       "<meta http-equiv=content-type content='text/html'>"
                       "<meta name=referrer content=origin>"),
              "<meta http-equiv=\"\" content='0;url=x'><meta http-equiv='' content=x>"
              "<meta http-equiv=content-type content='text/html'><meta name=\"\" content=origin>");
    EXPECT_EQ(disarmed("<a href='java\nscript:x()' ping=y>"), "<a href='#' ping=\"\">");
    EXPECT_EQ(disarmed("<iframe src=javascript:x()>"), "<iframe src=\"\">");
    EXPECT_EQ(disarmed("<html manifest=a><script>b</script>"),
              "<html manifest=\"\"><template></template>");
    EXPECT_EQ(disarmed("<link rel=stylesheet href=a integrity=b crossorigin>"),
              "<link rel=stylesheet href=a integrity=\"\" data-was-crossorigin>");
    EXPECT_EQ(disarmed("<p>a<body onload=x>"), "<p>a<body onload=\"\">");
}

TEST(ScanPage, tellsTheBase) {
    const std::string html = "<base target=x><base href=' http://a/&amp;b '><base href=c>";
    EXPECT_EQ(scanPage(html, "page").base, "http://a/&b");
    EXPECT_EQ(disarmed(html), "<base target=x><base href=''><base href=\"\">");
}

TEST(ScanPage, readsPagesWithinFrames) {
    const std::string html =
        "<iframe src=no.htm srcdoc=\"<base href='http://b/'><p onclick='x'><img "
        "src='a&amp;amp;b.png'>"
        "<iframe srcdoc='<img src=&amp;quot;c.png&amp;quot;>'></iframe>\"></iframe>";
    const auto found = scanPage(html, "page").references;
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].address, "a&b.png");
    EXPECT_EQ(found[0].nested, 1);
    EXPECT_EQ(found[0].base, "http://b/");
    EXPECT_EQ(found[1].address, "c.png");
    EXPECT_EQ(found[1].nested, 2);
    EXPECT_EQ(rewritten(html, "1&2"),
              "<iframe src=no.htm srcdoc=\"<base href=''><p onclick=''><img src='1&amp;amp;2'>"
              "<iframe srcdoc='<img src=&amp;quot;1&amp;amp;amp;2&amp;quot;>'></iframe>\">"
              "</iframe>");
}

TEST(ScanPage, tellsWhereOursGoes) {
    const auto marked = [](std::string_view html) {
        const PageScan scan = scanPage(html, "page");
        return edited(html, {{{scan.headAt, scan.headAt}, "[H]"},
                             {{scan.bodyAt, scan.bodyAt}, "[B]"},
                             {{scan.endAt, scan.endAt}, "[E]"}});
    };
    EXPECT_EQ(
        marked("<!DOCTYPE html><html><head a=b><title>x</title></head><body c>y</body></html>"),
        "<!DOCTYPE html><html><head a=b>[H]<title>x</title></head><body c>[B]y[E]</body></html>");
    EXPECT_EQ(marked("<!-- a --><!doctype html> <title>x</title><p>y"),
              "<!-- a --><!doctype html>[H] <title>x</title>[B][E]<p>y");
    EXPECT_EQ(marked("<html lang=a>text"), "<html lang=a>[H][B][E]text");
    EXPECT_EQ(marked(""), "[H][B][E]");
    EXPECT_EQ(marked("<p>y<body>"), "[H][B][E]<p>y<body>");
    EXPECT_EQ(marked("<table>foster<tr>"), "[H][B][E]<table>foster<tr>");
    EXPECT_EQ(marked("<html><frameset><frame></frameset>"),
              "<html>[H]<frameset><frame></frameset>");
}

/// Each reference gets another address: the page that is made names these, at the same places, and
/// is the same between them.
TEST(ScanPage, whatIsPutInIsRead) {
    const std::string html =
        "\xC3\xA9<!DOCTYPE html><base href=x><p onclick=y>\r\n<img src = a&amp;b ><img "
        "SRC='c\r\nd'>"
        "<img srcset=\"e.png,f 2x, g.png 3x,\"><b><p style=\"background:url( 'h' );x:url(i)\">"
        "<style>\r\n@import 'j'; k{l:url(m)}\r\n</style><svg><use xlink:href=\"n&#115;vg#o\"/>"
        "<rect fill=url(p)></svg><iframe srcdoc='<img src=q>&lt;img src=\"r &amp;amp; "
        "s\">'></iframe>"
        "<a href=u>v<a href='w'>x</b><video poster=y><noscript><img src=z>";
    const auto before = scanPage(html, "page").references;
    ASSERT_EQ(before.size(), 16U);
    for (const std::string_view address :
         {"0000017.gif", "a b", "(x),y", "\"'`=<>&amp;&#39;", "\xC3\xA9\xF0\x9F\x98\x80", "x\\",
          "/", "a/", "</style><script>", "http://h/?a=1&copy=2&lt"}) {
        const std::string made = rewritten(html, address);
        const auto after = scanPage(made, "page").references;
        ASSERT_EQ(after.size(), before.size()) << made;
        for (std::size_t i = 0; i < after.size(); ++i) {
            const bool isCandidate = after[i].form == RefForm::srcset;
            EXPECT_EQ(after[i].address, isCandidate ? replaceAll(address, " ", "%20") : address)
                << made;
            EXPECT_EQ(after[i].element, before[i].element);
            EXPECT_EQ(after[i].attribute, before[i].attribute);
        }
    }
}

TEST(ScanPage, disarmingTwiceChangesNothing) {
    const std::string html =
        "<base href=x><script>y</script><p onclick=z><img class=lazy src=a data-src=b>"
        "<noscript><img src=c></noscript><meta http-equiv=refresh content=1><link rel=prefetch "
        "href=d><iframe srcdoc='<script>e</script>'></iframe><div data-bg=f>";
    const std::string once = disarmed(html);
    EXPECT_EQ(disarmed(once), once);
    EXPECT_THAT(once, Not(HasSubstr("script>")));
}

TEST(ScanPage, hostilePagesTakeTimeInProportion) {
    const auto start = std::chrono::steady_clock::now();
    const auto times = [](std::string_view part, int count) {
        std::string text;
        for (int i = 0; i < count; ++i)
            text += part;
        return text;
    };
    EXPECT_NO_THROW(scanPage("<img src='" + times("&amp", 200'000) + "'>", "page"));
    EXPECT_NO_THROW(scanPage("<img src='" + times("&notareference;", 100'000) + "'>", "page"));
    EXPECT_NO_THROW(scanPage("<img srcset='" + times(",a ", 200'000) + "'>", "page"));
    EXPECT_NO_THROW(scanPage("<img srcset='" + times("a (", 200'000) + "'>", "page"));
    EXPECT_NO_THROW(scanPage(times("<noscript><img src=a></noscript>", 30'000), "page"));
    EXPECT_NO_THROW(
        scanPage("<img data-src=a>" + times("<noscript><img src=a></noscript>", 30'000), "page"));
    EXPECT_NO_THROW(scanPage(times("<iframe srcdoc='", 10'000), "page"));
    EXPECT_NO_THROW(scanPage(times("<!--", 100'000) + times("<?", 100'000), "page"));
    EXPECT_NO_THROW(scanPage(times("<style>@import 'a", 50'000), "page"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
    EXPECT_THROW(scanPage(times("<div>", 100'000), "page"), PageTooLarge);
}

} // namespace
} // namespace nv
