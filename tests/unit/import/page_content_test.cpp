#include "import/PageContent.h"
#include "markup/HtmlCost.h"
#include "markup/PageText.h"
#include "readers/Scratch.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using namespace std::string_literals;
using Strings = std::vector<std::string>;

std::string repeated(std::string_view text, std::size_t times) {
    std::string all;
    all.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

std::string bodyOf(std::string_view html) {
    return readPageContent(html, "page").body;
}

Strings linksOf(std::string_view html) {
    return readPageContent(html, "page").links;
}

std::string decoded(const std::string &bytes, std::string_view header = {}) {
    return decodePage(viewOf(bytes), header);
}

/// Why the page isn't read; empty when it is.
std::string refusalOf(std::string_view html) {
    const HtmlLimits limits;
    return costOf(html, limits).beyond(limits);
}

std::size_t depthOf(std::string_view html) {
    return costOf(html, {}).depth;
}

TEST(PageContent, givesTheTextOfTheBody) {
    EXPECT_EQ(bodyOf("<html><head><title>Title</title></head><body>one <b>two</b>three</body>"),
              "one twothree");
    EXPECT_EQ(bodyOf("<p>without any frame"), "without any frame");
    EXPECT_EQ(bodyOf(""), "");
}

TEST(PageContent, leavesOutWhatABrowserDoesntShow) {
    EXPECT_EQ(bodyOf("<body>a<script>var s='<p>no</p>'</script>b<style>p{}</style>c<!-- no -->d"
                     "<noscript>no</noscript>e<iframe>no</iframe>f<template>no</template>g"),
              "abcdefg");
}

TEST(PageContent, readsTreesInTheShadowOfAnElement) {
    EXPECT_EQ(bodyOf("<div>a<template shadowrootmode=open><p>b<slot></slot></template>c</div>"),
              "a\r\nb\r\nc");
    EXPECT_EQ(bodyOf("<div>a<template shadowrootmode=x>b</template>c</div>"), "ac");
    EXPECT_EQ(linksOf("<div><template shadowrootmode=closed><a href=b>c</a></template></div>"),
              Strings{"b"});
}

TEST(PageContent, partsBlocksByLines) {
    EXPECT_EQ(bodyOf("<h1>Head</h1>\n\n<p>one\n  two<br>three<ul><li>four<li>five</ul>"),
              "Head\r\none two\r\nthree\r\nfour\r\nfive");
    EXPECT_EQ(bodyOf("<table><tr><td>a<td>b<tr><td>c</table>d"), "a b\r\nc\r\nd");
    EXPECT_EQ(bodyOf("<pre>a  b\nc</pre>"), "a b\r\nc");
    EXPECT_EQ(bodyOf("<select><option>one<option>two</select>"), "one\r\ntwo");
}

TEST(PageContent, drawsWhiteSpaceTogether) {
    EXPECT_EQ(bodyOf("  a\t\r\n b&nbsp;c &amp; caf&eacute; &#x20AC; "),
              "a b c & caf\xC3\xA9 \xE2\x82\xAC");
    EXPECT_EQ(bodyOf("<b>a</b> <i>b</i>"), "a b");
}

TEST(PageContent, listsTheTargetsAsTheyStandInThePage) {
    EXPECT_EQ(linksOf("<a href='http://a/'>x</a><a name=n>y</a><map><area href=\"/b?c=d&amp;e\">"
                      "</map><A HREF=#top><a href=''>z</a><a href=' c\nd '><link href=no>"),
              (Strings{"http://a/", "/b?c=d&e", "#top", "cd"}));
    EXPECT_EQ(linksOf("<a href='a|b'>"), Strings{"a|b"});
    EXPECT_EQ(linksOf("<body><noscript><a href=a></noscript><script>'<a href=b>'</script>"),
              Strings{});
}

TEST(PageContent, ofASetOfFramesIsEmpty) {
    const PageContent page = readPageContent(
        "<html><frameset><frame src=a><noframes>none</noframes></frameset>", "page");
    EXPECT_EQ(page.body, "");
    EXPECT_TRUE(page.links.empty());
}

TEST(PageContent, survivesOddBytes) {
    EXPECT_EQ(bodyOf("<body>a\0b<p\0>c"s).substr(0, 1), "a");
    EXPECT_EQ(bodyOf("<title>"), "");
    EXPECT_EQ(bodyOf("<body><title>never ended"), "");
    EXPECT_EQ(bodyOf("<body>a<"), "a<");
    EXPECT_EQ(bodyOf("<body>a<b href='"), "a");
    EXPECT_EQ(bodyOf(std::string(1 << 20, '\0')).find("<"), std::string::npos);
}

TEST(PageText, followsTheByteOrderMarkFirst) {
    EXPECT_EQ(decoded("\xEF\xBB\xBF<meta charset=iso-8859-1>\xC3\xA9"),
              "<meta charset=iso-8859-1>\xC3\xA9");
    EXPECT_EQ(decoded("\xFF\xFE<\0h\0\xE9\0"s), "<h\xC3\xA9");
    EXPECT_EQ(decoded("\xFE\xFF\0<\0h\0\xE9"s), "<h\xC3\xA9");
    EXPECT_EQ(decoded("\xFF\xFE"s), "");
}

TEST(PageText, followsTheHeaderBeforeTheMetaTag) {
    const std::string_view header = "HTTP/1.1 200 OK\r\nContent-Type: text/html; charset=utf-8\r\n";
    const std::string left = "<meta charset=iso-8859-1>";
    EXPECT_EQ(decoded(left + "\xC3\xA9", header), left + "\xC3\xA9");
    EXPECT_EQ(decodedPage(viewOf(left), header).foundIn, "HTTP header");
    EXPECT_EQ(decoded("<META http-equiv='Content-Type' content='text/html; charset=windows-1251'>"
                      "\xCF",
                      "HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n")
                  .substr(74),
              "\xD0\x9F");
    EXPECT_EQ(decoded(left + "\xC3\xA9", "Content-Type: a; charset=nonsense"),
              left + "\xC3\x83\xC2\xA9");
    EXPECT_EQ(decoded("\xC3\xA9", header), "\xC3\xA9");
    EXPECT_EQ(decoded("\xC3\xA9"), "\xC3\x83\xC2\xA9");
    EXPECT_EQ(decoded("\x80", "HTTP/1.1 200 OK\r\n"), "\xE2\x82\xAC");
}

TEST(PageText, onlyTheServerCanSayThatTextIsWide) {
    EXPECT_EQ(decoded("\0<\x20\xAC"s, "Content-Type: text/html; charset=utf-16be"),
              "<\xE2\x82\xAC");
    EXPECT_EQ(decoded("<\0\xAC\x20"s, "Content-Type: text/html; charset=UTF-16"), "<\xE2\x82\xAC");
    EXPECT_EQ(decodedPage(viewOf("<\0"s), "Content-Type: a; charset=utf-16").charset, "utf-16le");
    EXPECT_EQ(decoded("<\0p\0>"s, "Content-Type: a; charset=utf-16"), "<p\xEF\xBF\xBD");
    EXPECT_EQ(decodedPage(viewOf("<meta charset=utf-16be>"s), {}).charset, "utf-8");
}

TEST(PageText, followsTheXmlDeclarationLast) {
    const std::string utf8 = R"(<?xml version="1.0" encoding="UTF-8"?>)";
    EXPECT_EQ(decoded(utf8 + "\xC3\xA9"), utf8 + "\xC3\xA9");
    EXPECT_EQ(decodedPage(viewOf(utf8), {}).foundIn, "XML declaration");
    const std::string russian = "\n<?xml version='1.0' encoding = 'windows-1251' ?>";
    EXPECT_EQ(decoded(russian + "\xCF"), russian + "\xD0\x9F");
    EXPECT_EQ(decoded(utf8 + "\xCF", "Content-Type: a; charset=windows-1251"), utf8 + "\xD0\x9F");
    EXPECT_EQ(decodedPage(viewOf(utf8 + "<meta charset=big5>"), {}).foundIn, "meta tag");
    for (const std::string_view none :
         {"<?xml version='1.0'?><a encoding='utf-8'>", "<?xml encoding='utf-8'", "<?xml?>",
          "<html><?xml encoding='utf-8'?>", "<?xml encoding='nobody-knows'?>"})
        EXPECT_EQ(decodedPage(viewOf(none), {}).foundIn, kNoCharset) << none;
}

TEST(PageText, whatIsSentAsXmlHasNoMetaTag) {
    const std::string_view header = "Content-Type: application/xhtml+xml\r\n";
    const std::string meta = "<meta charset='iso-8859-1'/>\xC3\xA9";
    EXPECT_EQ(decoded(meta, header), meta);
    EXPECT_EQ(decodedPage(viewOf(meta), header).charset, "utf-8");
    const std::string russian = "<?xml version='1.0' encoding='windows-1251'?>" + meta;
    EXPECT_EQ(decodedPage(viewOf(russian), header).foundIn, "XML declaration");
    EXPECT_EQ(decodedPage(viewOf(russian), "Content-Type: text/html").foundIn, "meta tag");
    EXPECT_EQ(decodedPage(viewOf(meta + "\xFF"), header).foundIn, "meta tag");
}

TEST(PageText, findsTheCharsetHoweverItIsWritten) {
    for (const std::string_view meta :
         {"<meta charset=big5>", "<meta charset = \"big5\" />", "<META CHARSET='big5'>",
          "<meta content=\"text/html;charset=big5\">", "<meta content='text/html; Charset=big5;x'>",
          "<meta name=charset><meta charset=big5>", "<!-- <meta charset=x> --><meta charset=big5>"})
        EXPECT_EQ(charsetOfMeta(meta), "big5") << meta;
    for (const std::string_view none :
         {"<meta charset>", "<meta charset=>", "charset=x", "<!-- <meta charset=x>"})
        EXPECT_EQ(charsetOfMeta(none), "") << none;
    EXPECT_EQ(charsetOfHeader("HTTP/1.0 200\r\ncontent-type:text/html;charset=\"KOI8-R\"\r\n"),
              "KOI8-R");
    EXPECT_EQ(charsetOfHeader("X-charset: a\r\n"), "");
}

TEST(PageText, readsEncodingsOfManyTongues) {
    EXPECT_EQ(decoded("\x83\x65", "Content-Type: text/html; charset=Shift_JIS"), "\xE3\x83\x86");
    EXPECT_EQ(decoded("\xB0\xA1", "Content-Type: a; charset=gb2312"), "\xE5\x95\x8A");
    EXPECT_EQ(decoded("\xF0", "Content-Type: a; charset=koi8-r"), "\xD0\x9F");
    EXPECT_EQ(decoded("\x80", "Content-Type: a; charset=ISO-8859-1"), "\xE2\x82\xAC");
}

/// By the labels of the Encoding standard, and its tables where ICU's are others.
TEST(PageText, readsEncodingsAsBrowsersDo) {
    const auto read = [](std::string_view bytes, std::string_view label) {
        return decoded(std::string(bytes), "Content-Type: a; charset=" + std::string(label));
    };
    for (const std::string_view label : {"euc-kr", "ks_c_5601-1987", "windows-949", "korean"})
        EXPECT_EQ(read("\x81\x41", label), "\uAC02") << label;
    EXPECT_EQ(read("\x87\x40\xF9\xD6", "big5"), "\u43F0\u7881");
    for (const std::string_view label : {"gbk", "gb2312", "gb18030", "x-gbk"})
        EXPECT_EQ(read("\x80\xA2\xE3z\x80", label), "\u20AC\u20ACz\u20AC") << label;
    EXPECT_EQ(read("\xA4\xAE\xBE\xC1", "koi8-u"), "\u0454\u045E\u040E\u0430");
    EXPECT_EQ(read("a\x80\xFF", "x-user-defined"), "a\uF780\uF7FF");
    EXPECT_EQ(decoded("<meta charset=x-user-defined>\x80").substr(29), "\u20AC");
    EXPECT_EQ(read("\x87\x40\xED\x40", "x-sjis"), "\u2460\u7E8A");
    EXPECT_EQ(read("\xAD\xA1", "x-euc-jp"), "\u2460");
    EXPECT_EQ(read("\x80\xA1", "tis-620"), "\u20AC\u0E01");
    EXPECT_EQ(read("\xA1", "iso-8859-11"), "\u0E01");
    EXPECT_EQ(read("\x80", "cp819"), "\u20AC");
    EXPECT_EQ(read("\xC3\xA9", "unicode-1-1-utf-8"), "\u00E9");
    EXPECT_EQ(read("\xE0", "logical"), "\u05D0");
    EXPECT_EQ(read("\xDB", "x-mac-roman"), "\u20AC");
    EXPECT_EQ(read("\xFF", "gbk"), "\uFFFD");
}

TEST(PageText, passesOverEncodingsThatCantBe) {
    for (const std::string_view name : {"nonsense", "ibm-37", "utf-32", "\xFF", "utf-8\0x"}) {
        const std::string header = "Content-Type: a; charset=" + std::string(name);
        EXPECT_EQ(decoded("<\x80>", header).substr(0, 1), "<") << name;
    }
    EXPECT_EQ(decoded("<meta charset=nonsense>\x80"), "<meta charset=nonsense>\xE2\x82\xAC");
    EXPECT_EQ(decoded("<meta charset=utf-16>\xC3\xA9"), "<meta charset=utf-16>\xC3\xA9");
}

TEST(PageText, marksBytesThatTheEncodingDoesntKnow) {
    EXPECT_EQ(decoded("\xEF\xBB\xBF"
                      "a\xFF"
                      "b"),
              "a\xEF\xBF\xBD"
              "b");
    EXPECT_EQ(decoded("\xFF\xFE"
                      "a\0b"s),
              "a\xEF\xBF\xBD");
    EXPECT_EQ(decoded("\xFF\xFE\0\xD8"
                      "b\0"s),
              "\xEF\xBF\xBD"
              "b");
}

TEST(PageText, isReadFromAFileWithinALimit) {
    const test::TempFolder folder;
    const auto page = folder.write("page.htm", std::string(kPageTextBytes, ' '));
    EXPECT_EQ(readPageText(ScratchFile(page), "").size(), kPageTextBytes);
    const auto large = folder.write("large.htm", std::string(kPageTextBytes + 1, ' '));
    try {
        readPageText(ScratchFile(large), "");
        FAIL() << "a page beyond the limit was read";
    } catch (const PageTooLarge &failure) {
        EXPECT_EQ(failure.what(), large.string() + " is not read as a page: its 67108865 bytes are "
                                                   "more than the limit of 67108864");
    }
}

TEST(PageContent, isParsedWithinALimit) {
    EXPECT_EQ(bodyOf(std::string(kPageBytes, ' ')), "");
    EXPECT_THROW(bodyOf(std::string(kPageBytes + 1, ' ')), PageTooLarge);
}

/// Whatever the parser takes reads the same by either way, but for elements that end one another.
TEST(PageContent, ofAPageBeyondALimitIsItsWords) {
    const auto flat = [](std::string_view html) { return readFlatContent(html, "page").body; };
    for (const std::string_view html :
         {"<html><head><title>Title</title></head><body>one <b>two</b>three</body>",
          "<h1>Head</h1>\n\n<p>one\n  two<br>three<ul><li>four<li>five</ul>", "<p>a < b<c>d",
          "<body>a<script>var s='<p>no</p>'</script>b<style>p{}</style>c<!-- no <b> -->d"
          "<noscript>no</noscript>e<iframe>no</iframe>f<template>no</template>g<!DOCTYPE x>h</>i",
          "caf&eacute; &amp;lt; &#x2014;&nbsp;x&notit; <&lt;b>img src=a>", "<table><tr><td>a<td>b",
          "<p title='a>b'>c<p", "a<<b>img src=x>", "", "<", "&lt", "\xFF\xFE<p>\0z"})
        EXPECT_EQ(flat(html), bodyOf(html)) << html;
    EXPECT_EQ(flat(repeated("<div>", 100'000) + "deep"), "deep");
    EXPECT_EQ(flat(repeated("<!-- a -->", 300'000) + "x"), "x");
    EXPECT_TRUE(readFlatContent("<a href=x>y</a>", "page").links.empty());
}

TEST(HtmlCost, ofOrdinaryPagesIsSmall) {
    EXPECT_EQ(depthOf("<html><body><div><p>a<p>b</div><br><img src=a></body></html>"), 2U);
    EXPECT_EQ(depthOf(repeated("<div><span>x</span></div>", 1000)), 2U);
    EXPECT_EQ(depthOf("<ul>" + repeated("<li>x", 5000) + "</ul>"), 2U);
    EXPECT_EQ(depthOf(repeated("<p>x", 5000)), 1U);
    EXPECT_EQ(depthOf("<table>" + repeated("<tr><td><font size=1>a<th>b", 5000) + "</table>"), 4U);
    EXPECT_EQ(depthOf("<select>" + repeated("<option>x", 5000) + "</select>"), 2U);
    EXPECT_EQ(depthOf(repeated("<a name=x>text<a href=y>", 5000)), 1U);
    EXPECT_EQ(depthOf("<dl>" + repeated("<dt>x<dd>y", 5000) + "</dl>"), 2U);
    EXPECT_EQ(depthOf(repeated("<table><tr><td>x</table>", 5000)), 3U);
}

TEST(HtmlCost, doesntCountTagsInTextCommentsAndQuotes) {
    EXPECT_EQ(depthOf("<script>" + repeated("<div>", 50) + "</script>"), 0U);
    EXPECT_EQ(depthOf("<script><!--<script></script>" + repeated("<b>", 50) + "--></script>"), 0U);
    EXPECT_EQ(depthOf("<!-- " + repeated("<div>", 50) + "-->"), 0U);
    EXPECT_EQ(depthOf("<!--><i><!---><i><!-- --!><i>"), 3U);
    EXPECT_EQ(depthOf("<div title='" + repeated("<div>", 50) + "'>"), 1U);
    EXPECT_EQ(depthOf("<textarea>" + repeated("<div>", 50)), 0U);
}

TEST(HtmlCost, keepsWhatAnEndTagMayNotEnd) {
    EXPECT_EQ(depthOf(repeated("<div><marquee></div></marquee>", 100)), 101U);
    EXPECT_EQ(depthOf(repeated("<tr><div></tr>", 100)), 100U);
    EXPECT_EQ(depthOf(repeated("<p><b></p>", 100)), 101U); // the parser opens each again
    EXPECT_GE(depthOf("<svg><title>" + repeated("<g>", 100)), 100U);
    EXPECT_EQ(depthOf("<svg>" + repeated("<option>", 100)), 101U); // no list of choices
}

TEST(HtmlCost, refusesWhatIsBuiltToExhaust) {
    EXPECT_NE(refusalOf(repeated("<b>", 100'000)).find("limit of 4000"), std::string::npos);
    EXPECT_NE(refusalOf(repeated("<div>", 100'000)), "");
    EXPECT_NE(refusalOf(repeated("<p><b id=1></p>", 100'000)), "");
    EXPECT_NE(refusalOf("<p " + repeated("a ", 100'000) + ">"), "");
    EXPECT_NE(refusalOf("<p" + repeated(" a=1", 501) + ">").find("limit of 500"),
              std::string::npos);
    EXPECT_EQ(refusalOf("<p" + repeated(" a=1", 500) + ">"), "");
    EXPECT_NE(refusalOf(repeated("<i>", 3900) + repeated("<br>", 100'000)), "");
    EXPECT_NE(refusalOf(repeated("<font a=1 b=2 c=3>", 3000) + repeated("<p>", 10'000)), "");
}

TEST(HtmlCost, endsWithTheFirstLimitPassed) {
    EXPECT_EQ(depthOf(repeated("<b>", 1'000'000)), 4001U);
}

TEST(PageContent, refusesWhatIsBeyondALimitAndNamesTheFile) {
    try {
        readPageContent(repeated("<b>", 100'000), "/cache/page.htm");
        FAIL() << "a page beyond the limit was read";
    } catch (const PageTooLarge &failure) {
        EXPECT_STREQ(failure.what(), "/cache/page.htm is not read as a page: its tags nest deeper "
                                     "than the limit of 4000");
    }
}

TEST(PageContent, readsToTheLimits) {
    EXPECT_EQ(bodyOf(repeated("<div>", 4000) + "x"), "x");
    EXPECT_EQ(linksOf(repeated("<a href=x>", 100'000)).size(), 100'000U);
    EXPECT_EQ(bodyOf("<p" + repeated(" a=1", 500) + ">x"), "x");
}

} // namespace
} // namespace nv
