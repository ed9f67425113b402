#include "base/Base64.h"
#include "base/Text.h"
#include "markup/CssTokens.h"
#include "markup/HtmlDocument.h"
#include "markup/SrcSet.h"
#include "reports/pages/PageWriter.h"
#include "reports/pages/SafePage.h"
#include "support/HostileWays.h"
#include "unit/reports/GuardedText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <random>

namespace nv {
namespace {

using testing::AllOf;
using testing::AnyOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

std::string style(std::string_view css) {
    const std::string page = guarded("<style>" + std::string(css) + "</style>");
    const std::size_t begin = page.find("<style>");
    return begin == std::string::npos
               ? ""
               : replaceAll(page.substr(begin + 7, page.find("</style>") - begin - 7), "\n", "");
}

std::string in(const test::HostileWay &way, std::string_view address) {
    return replaceAll(replaceAll(way.html, "@", address), "%", "@");
}

/// Attributes whose words are no addresses unless they stand in a function.
constexpr std::array<std::string_view, 10> kStyles = {
    "style",     "fill",         "stroke",     "filter",     "mask",
    "clip-path", "marker-start", "marker-mid", "marker-end", "cursor"};

void expectNoWayOut(const std::string &page);
void expectNoWayOutOfStyle(std::string_view css);

/// Looks into what is written as data, too.
void expectNoWayOutBy(std::string_view address) {
    constexpr std::string_view kBase64 = ";base64,";
    if (address.starts_with('#')) // a place in the page, whatever it is called
        return;
    EXPECT_THAT(address, Not(HasSubstr("red.")));
    EXPECT_THAT(address, Not(HasSubstr("127.0.0.1")));
    const std::size_t at = address.find(kBase64);
    if (!address.starts_with("data:") || at == std::string::npos)
        return;
    const std::string within = fromBase64(address.substr(at + kBase64.size()));
    if (address.starts_with("data:text/vtt"))
        EXPECT_THAT(within, Not(AnyOf(HasSubstr("red."), HasSubstr("url("))));
    else if (address.starts_with("data:text/css"))
        expectNoWayOutOfStyle(within);
    else if (address.starts_with("data:video") || address.starts_with("data:audio"))
        EXPECT_EQ(within, ""); // a playlist
    else if (address.starts_with("data:text/html") || address.starts_with("data:image/svg+xml"))
        expectNoWayOut(within);
}

/// `expression (...)`, which stands in none of the ways where a rule asks for something.
bool isAsideCall(const std::vector<CssToken> &tokens, std::size_t at) {
    const bool isBracket = tokens[at].kind == CssKind::openRound;
    while (at > 0 && tokens[at - 1].kind == CssKind::blank)
        --at;
    return isBracket && at > 0 && tokens[at - 1].kind == CssKind::ident;
}

void expectNoWayOutOfStyle(std::string_view css) {
    SCOPED_TRACE(css);
    std::size_t functionEnd = 0;
    const auto tokens = cssTokens(css);
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        if (tokens[i].kind == CssKind::function)
            functionEnd = std::max(functionEnd, tokens[i].partner);
        if (i < functionEnd)
            expectNoWayOutBy(tokens[i].text);
        EXPECT_NE(tokens[i].kind, CssKind::url);
        EXPECT_FALSE(isAsideCall(tokens, i));
        if (tokens[i].kind != CssKind::atKeyword || !equalsNoCase(tokens[i].text, "import"))
            continue;
        // None but those that the guard wrote: `@import url("...")`.
        ASSERT_LT(i + 3, tokens.size());
        EXPECT_EQ(tokens[i + 2].kind, CssKind::function);
        EXPECT_THAT(tokens[i + 3].text, AnyOf("0000003.css", StartsWith("data:text/css;base64,")));
    }
}

/// Whether anything of a page names an address out of the folder where a browser could use it.
void expectNoWayOut(const std::string &page) {
    SCOPED_TRACE(page);
    const HtmlDocument document(page, "page");
    std::vector<const HtmlDocument::Node *> open{&document.root()};
    while (!open.empty()) {
        const HtmlDocument::Node &node = *open.back();
        open.pop_back();
        const auto children = HtmlDocument::childrenOf(node);
        open.insert(open.end(), children.begin(), children.end());
        if (!HtmlDocument::isElement(node))
            continue;
        for (const HtmlAttribute &attribute : document.attributesOf(node))
            if (std::ranges::find(kStyles, attribute.name) != kStyles.end())
                expectNoWayOutOfStyle(attribute.value);
            else if (attribute.name == "srcdoc")
                expectNoWayOut(std::string(attribute.value));
            else if (attribute.name == "srcset")
                for (const SrcSetCandidate &candidate : srcSetCandidates(attribute.value))
                    expectNoWayOutBy(candidate.at.in(attribute.value));
            else if (attribute.name != "title" && attribute.name != "id" &&
                     attribute.name != "data-href")
                expectNoWayOutBy(attribute.value);
        if (HtmlDocument::nameOf(node) == "style" && !children.empty())
            expectNoWayOutOfStyle(HtmlDocument::writtenIn(*children[0]));
    }
}

TEST(SafePage, noWayOutIsLeft) {
    static_assert(test::kHostileWays.size() >= 40);
    for (const test::HostileWay &way : test::kHostileWays)
        for (const char *address : {"http://127.0.0.1:9", "..", "//127.0.0.1", "file://127.0.0.1",
                                    "/etc", "c:", "\\\\127.0.0.1"}) {
            SCOPED_TRACE(way.name);
            expectNoWayOut(guarded(in(way, address)));
        }
}

TEST(SafePage, guardingAgainChangesNothing) {
    for (const test::HostileWay &way : test::kHostileWays) {
        const std::string once = guarded(in(way, "http://127.0.0.1:9"));
        EXPECT_EQ(guarded(once), once) << way.name;
        const std::string svg = guarded(in(way, ".."), PageForm::svg);
        EXPECT_EQ(guarded(svg, PageForm::svg), svg) << way.name;
    }
    for (const char *page : {"",
                             "a",
                             "<pre>\n\n\na</pre>",
                             "<textarea>\n\na",
                             "<a href=#1><a href=#2>",
                             "<table><a><table><a>",
                             "<p><b><p><i></b>a</i>",
                             "<form><form><table></form><form>",
                             "<b><p><a><div><b><a><p>",
                             "<table><tr><a><td><table><td></a>a",
                             "<frameset><frame></frameset>",
                             "<select><table><option><input>",
                             "<h1><h2><button><button><nobr><nobr>",
                             "<isindex prompt=a>",
                             "&#13;\r\n&#10;",
                             "a\0b",
                             "<image src=0000002.gif>",
                             "</p></br>",
                             "<ruby><rt><rp><option><optgroup>",
                             "<svg><a><p>",
                             "<dd><dt><li><dd>",
                             "<!DOCTYPE html PUBLIC \"-//W3C//DTD HTML 4.01 Transitional//EN\">a",
                             "<table><td>a</td>b"}) {
        const std::string once = guarded(page);
        EXPECT_EQ(guarded(once), once) << page;
    }
}

/// Pages of parts of the ways, cut anywhere: what the tree of one makes of the next nobody can
/// list.
TEST(SafePage, noWayOutIsLeftInAMixtureEither) {
    constexpr int kPages = 3000;
    std::mt19937 chance(17);
    const auto below = [&chance](std::size_t end) { return chance() % end; };
    constexpr std::array<std::string_view, 32> kMore = {"<template shadowrootmode=open>",
                                                        "</template>",
                                                        "<template>",
                                                        "<mi>",
                                                        "<mrow>",
                                                        "<mglyph>",
                                                        "<annotation-xml encoding=text/html>",
                                                        "</math>",
                                                        "<table>",
                                                        "<tr>",
                                                        "<td>",
                                                        "</table>",
                                                        "<svg>",
                                                        "</svg>",
                                                        "<math>",
                                                        "<mtext>",
                                                        "<p>",
                                                        "</p>",
                                                        "<a href=#>",
                                                        "<b>",
                                                        "<form>",
                                                        "<select>",
                                                        "<option>",
                                                        "<pre>\n",
                                                        "<!--",
                                                        "-->",
                                                        "<![CDATA[",
                                                        "]]>",
                                                        "<style>",
                                                        "</style>",
                                                        "<title>",
                                                        "<textarea>"};
    for (int page = 0; page < kPages; ++page) {
        std::string html;
        for (std::size_t parts = 1 + below(6); parts > 0; --parts) {
            const std::string way =
                in(test::kHostileWays.at(below(test::kHostileWays.size())), "http://127.0.0.1:9");
            const std::size_t from = below(3) == 0 ? below(way.size()) : 0;
            html += way.substr(from, below(3) == 0 ? below(way.size()) : way.size());
            for (std::size_t more = below(4); more > 0; --more)
                html += kMore.at(below(kMore.size()));
        }
        SCOPED_TRACE(html);
        const std::string once = guarded(html);
        expectNoWayOut(once);
        ASSERT_EQ(guarded(once), once);
    }
}

TEST(SafePage, thePolicyComesBeforeAllThatCouldLoad) {
    for (const char *page : {"<img src=x>", "", " <!doctype html>\n<html>", "<!doctype",
                             "<body background=a><html><head><title>a</title>"})
        EXPECT_THAT(guarded(page), HasSubstr("<head><meta charset=\"utf-8\"/><meta "
                                             "http-equiv=\"Content-Security-Policy\" "
                                             "content=\"default-src 'none'; "))
            << page;
    EXPECT_LT(guarded("").find("no-referrer"), 1024U);
}

TEST(SafePage, whatShowsStays) {
    EXPECT_EQ(
        body("<p class=a ALIGN=center>1 &lt; 2 &amp; <b>b</b><br><img src=0000002.gif alt='\"'>"),
        "<p class=\"a\" align=\"center\">1 &lt; 2 &amp; <b>b</b><br/>"
        "<img src=\"0000002.gif\" alt=\"&quot;\"/></p>");
    EXPECT_EQ(
        body("<table border=1><td background=0000002.gif "
             "style='color:red;background:url(0000002.gif)'>"),
        "<table border=\"1\"><tbody><tr><td background=\"0000002.gif\" "
        "style=\"color:red;background:url(&quot;0000002.gif&quot;);\"></td></tr></tbody></table>");
    EXPECT_EQ(body("<mypart class=a>b</mypart>"), "<span class=\"a\">b</span>");
    EXPECT_EQ(body("<iframe src=0000004.htm width=9>a</iframe>"),
              "<iframe src=\"0000004.htm\" width=\"9\"></iframe>");
    EXPECT_EQ(body("<xmp><b></xmp>"), "<pre>&lt;b&gt;</pre>");
    EXPECT_EQ(body("<img src=\"data:image/gif;base64,R0lG\">"),
              "<img src=\"data:image/gif;base64,R0lG\"/>");
    EXPECT_THAT(guarded("<!DOCTYPE html PUBLIC '-//A' \"b\"><title>a<b></title>"),
                AllOf(StartsWith("<!DOCTYPE html PUBLIC \"-//A\" \"b\"><html><head>"),
                      HasSubstr("<title>a&lt;b&gt;</title>")));
    EXPECT_THAT(guarded("<link rel=StyleSheet media=print href=0000003.css>"),
                HasSubstr("<link rel=\"stylesheet\" href=\"0000003.css\" media=\"print\"/>"));
    EXPECT_THAT(guarded("<frameset cols='1,*'><frame src=0000004.htm></frameset>"),
                HasSubstr("<frameset cols=\"1,*\"><frame src=\"0000004.htm\"/></frameset>"));
}

/// Styles call elements by such names, which do nothing by themselves.
TEST(SafePage, elementsOfThePagesOwnKeepTheirNames) {
    EXPECT_EQ(body("<My-Card class=a onclick=x() is=b src=http://red.example/ href=javascript:x()>"
                   "b<script>c</script></my-card>"),
              "<my-card class=\"a\">b</my-card>");
    EXPECT_EQ(style("my-card > b{color:red}"), "my-card > b {color:red;}");
    for (const std::string name : {"font-face", "annotation-xml", "missing-glyph", "x-\xC3\xA9",
                                   "a-b\"c", "a-b:c", "a-b.c", "a-b<c"})
        EXPECT_THAT(body("<" + name + ">b"), StartsWith("<span")) << name;
    EXPECT_THAT(body("<a-" + std::string(200, 'b') + ">c"), StartsWith("<span"));
    EXPECT_THAT(guarded("<svg><x-y onload=z()><image href=http://red.example/a></x-y></svg>"),
                AllOf(Not(HasSubstr("x-y")), Not(HasSubstr("red."))));
    EXPECT_THAT(guarded("<x-y><style>a{background:url(http://red.example/a)}</style>"
                        "<img src=http://red.example/b style='background:url(//red.example/c)'>"),
                Not(HasSubstr("red.")));
}

/// Without them hidden text would show, and a sheet that is switched off would count.
TEST(SafePage, whatIsSwitchedOffStaysOff) {
    EXPECT_EQ(body("<div popover=manual onbeforetoggle=x()>a</div>"),
              "<div popover=\"manual\">a</div>");
    EXPECT_EQ(body("<div popover='\"><script>'>a</div>"),
              "<div popover=\"&quot;&gt;&lt;script&gt;\">a</div>");
    EXPECT_THAT(guarded("<link rel=stylesheet href=0000003.css disabled=x>"),
                HasSubstr("<link rel=\"stylesheet\" href=\"0000003.css\" disabled=\"\"/>"));
    EXPECT_THAT(guarded("<link rel=stylesheet href=http://red.example/a.css disabled>"),
                Not(HasSubstr("stylesheet")));
}

TEST(SafePage, propertiesAreMadeKnownWithoutAddresses) {
    EXPECT_EQ(style("@property --a{syntax:'<length>';inherits:false;initial-value:0px}"),
              "@property --a {syntax:\"\\3c length\\3e \";inherits:false;initial-value:0px;}");
    for (const std::string value :
         {"url(http://red.example/a)", "image-set('http://red.example/a')", "expression(x)",
          "attr(href)", "'http://red.example/a'"})
        EXPECT_THAT(style("@property --a{syntax:'*';inherits:false;initial-value:" + value + "}"),
                    Not(HasSubstr("red.")))
            << value;
    EXPECT_THAT(style("@property --a{syntax:'</style><img src=//red.example>'}"),
                Not(HasSubstr("</style")));
    EXPECT_THAT(style("@property url(http://red.example/){syntax:'*'}"), Not(HasSubstr("red.")));
}

TEST(SafePage, linksTellWhereTheyLed) {
    EXPECT_EQ(body("<a href='http://host/?a=1&amp;b=2'>a</a>"),
              "<a data-href=\"http://host/?a=1&amp;b=2\">a</a>");
    EXPECT_EQ(body("<a href='#top'>a</a><a href=0000004.htm#b>b</a>"),
              "<a href=\"#top\">a</a><a href=\"0000004.htm#b\">b</a>");
}

TEST(SafePage, whatIsNotInTheFolderGoes) {
    EXPECT_EQ(body("<img src=0000009.gif><img src=pic/0000002.gif><img src='0000002.gif?a'>"),
              "<img/><img/><img/>");
    EXPECT_THAT(guarded("<link rel=stylesheet href=0000002.gif>"), Not(HasSubstr("<link")));
}

TEST(SafePage, filesServeForWhatTheyWereLookedThroughAs) {
    EXPECT_EQ(body("<iframe src=0000005.txt></iframe><iframe src=0000004.htm></iframe>"
                   "<iframe src=0000002.gif></iframe><a href=0000005.txt>a</a>"),
              "<iframe></iframe><iframe src=\"0000004.htm\"></iframe>"
              "<iframe src=\"0000002.gif\"></iframe><a data-href=\"0000005.txt\">a</a>");
    EXPECT_EQ(body("<video src=0000005.txt></video><video src=0000004.htm></video>"
                   "<video src=0000006.mp4></video><a href=0000006.mp4>a</a>"),
              "<video></video><video></video><video src=\"0000006.mp4\"></video>"
              "<a href=\"0000006.mp4\">a</a>");
}

TEST(SafePage, aLinkOfManyWordsIsRead) {
    EXPECT_THAT(guarded("<link rel='stylesheet of-a-page-that-says\nmuch-more-of-it' "
                        "href=0000003.css>"),
                HasSubstr("<link rel=\"stylesheet\" href=\"0000003.css\"/>"));
    EXPECT_THAT(guarded("<link rel='of-a-page-that-says\nmuch-more-of-it stylesheet' "
                        "href=0000003.css>"),
                HasSubstr("<link rel=\"stylesheet\" href=\"0000003.css\"/>"));
}

TEST(SafePage, stylesAreWrittenAnew) {
    EXPECT_EQ(style("a:hover > b, [title='x y'] { color: #FFF !important; margin: 1px -2px }"),
              "a:hover > b, [title=\"x y\"] {color:#FFF!important;margin:1px -2px;}");
    EXPECT_EQ(style("p{background:u\\72l(0000002.gif) red;background:url(x.gif) red}"),
              "p {background:url(\"0000002.gif\") red;background:url(\"data:,\") red;}");
    EXPECT_EQ(style("@media print{p{a:b}} @unknown{p{a:b}} @font-face{font-family:'x y'}"),
              "@media print {p {a:b;}}@font-face {font-family:\"x y\";}");
    EXPECT_EQ(style("@import \"0000003.css\" print; @import '0000009.css'; p{a:b"),
              "@import url(\"0000003.css\") print;p {a:b;}");
    EXPECT_EQ(style("@import url(0000003.css) layer(a) supports(display:grid) screen;p{a:b}"),
              "@import url(\"0000003.css\") layer(a) supports(display:grid) screen;p {a:b;}");
    EXPECT_EQ(style("@import url(0000003.css) supports(background:url(//host/a));p{a:b}"),
              "p {a:b;}");
    EXPECT_EQ(style("p{a:expression(1);b:c;behavior:url(0000004.htm);--x:\"y\"}"),
              "p {b:c;--x:\"data:,\";}");
    EXPECT_EQ(style("p{content:'<\\/style>';*zoom:1;a:b)}"), "p {content:\"\\3c /style\\3e \";}");
    EXPECT_EQ(style(std::string(100'000, '{')), "");
    EXPECT_EQ(style("p{a:expression (1);b:calc(1px + (2px));c:url/**/(a);d:1expression(1);"
                    "e:#a (1);--f:{url (a)};g:h}"),
              "p {b:calc(1px + (2px));g:h;}");
    EXPECT_EQ(style("@media all{p{color:{a} b} p{color: {} b:c}}"), "@media all {p {}p {b:c;}}");
    EXPECT_EQ(style("@media screen and (color){p (a){b:c} p{a:b}}"),
              "@media screen and (color) {p {a:b;}}");
}

TEST(SafePage, whatIsBuiltToExhaustIsShownAsText) {
    std::string deep;
    for (int i = 0; i < 50'000; ++i)
        deep += "<div>";
    EXPECT_THAT(guarded(deep), HasSubstr("<body><pre>&lt;div&gt;&lt;div&gt;"));
    std::string copies = "<p><b title='" + std::string(1'000'000, 'x') + "'>";
    for (int i = 0; i < 100'000; ++i)
        copies += "<p>";
    EXPECT_THAT(guarded(copies), HasSubstr("<body><pre>&lt;p&gt;&lt;b title="));
    const std::string odd = guarded(deep + "\x7F \xC2\x81 \xEF\xB7\x90 \xF0\x9F\xBF\xBF");
    EXPECT_THAT(odd, HasSubstr("&gt;\xEF\xBF\xBD \xEF\xBF\xBD \xEF\xBF\xBD \xEF\xBF\xBD</pre>"));
    EXPECT_EQ(guarded(odd), odd);
}

} // namespace
} // namespace nv
