#include "rebuild/exact/PageReferences.h"
#include "rebuild/exact/StyleReferences.h"
#include "rebuild/exact/TextEdit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>

namespace nv {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> addresses(const std::vector<Reference> &references) {
    std::vector<std::string> found;
    for (const Reference &reference : references)
        found.push_back(reference.attribute + '=' + reference.address);
    return found;
}

std::vector<std::string> of(std::string_view css) {
    return addresses(scanStyle(css));
}

/// The sheet with each address in its place.
std::string rewritten(std::string_view css, std::string_view address) {
    std::vector<TextEdit> edits;
    for (const Reference &reference : scanStyle(css))
        edits.push_back({reference.at, spelled(reference, address, css)});
    return edited(css, edits);
}

TEST(ScanStyle, findsAddressesInAllForms) {
    EXPECT_THAT(
        of("a{background:url(a.png)}b{background-image:URL( 'b.png' )}c{cursor:url(\"c\"),x}"),
        ElementsAre("background=a.png", "background-image=b.png", "cursor=c"));
    EXPECT_THAT(
        of("a{background-image:image-set(\"1.png\" 1x, url(2.png) 2x type(\"image/png\"))}"),
        ElementsAre("background-image=1.png", "background-image=2.png"));
    EXPECT_THAT(of("a{background:-webkit-image-set(url(1.png)1x,url('2.png')2x)}"),
                ElementsAre("background=1.png", "background=2.png"));
    EXPECT_THAT(of("a{--bg:url(own.png);content:\"text.png\"}"), ElementsAre("--bg=own.png"));
}

TEST(ScanStyle, fontsAndDrawingsAreTold) {
    const auto found = scanStyle("@font-face{font-family:x;src:local(\"x\"),url(x.woff2) "
                                 "format(\"woff2\"),url('x.eot?#iefix')}a{filter:url(f.svg#f)}");
    EXPECT_THAT(addresses(found), ElementsAre("@font-face src=x.woff2",
                                              "@font-face src=x.eot?#iefix", "filter=f.svg#f"));
    EXPECT_EQ(found[0].use, RefUse::font);
    EXPECT_EQ(found[2].use, RefUse::svg);
}

TEST(ScanStyle, importsStandInFront) {
    EXPECT_THAT(of("@charset \"utf-8\";@layer a;@import 'a.css';@import url(b.css) screen;"
                   "@import url(\"c.css\") layer(x) supports(display:grid);a{}@import 'no.css';"),
                ElementsAre("@import=a.css", "@import=b.css", "@import=c.css"));
    EXPECT_THAT(of("@namespace url(http://www.w3.org/1999/xhtml);@media x{@import 'no.css';}"),
                IsEmpty());
    EXPECT_EQ(scanStyle("@import 'a.css'")[0].form, RefForm::styleString);
    EXPECT_EQ(scanStyle("@import 'a.css'")[0].use, RefUse::style);
}

TEST(ScanStyle, readsEscapesAndPassesComments) {
    EXPECT_THAT(of("a{background:url(a\\)b\\20 c.png)}b{background:\\75rl(d.png)}"
                   "c{background:u\\rl(e.png)}"),
                ElementsAre("background=a)b c.png", "background=d.png", "background=e.png"));
    EXPECT_THAT(of("/*a{background:url(no.png)}*/b{background:/*x*/url(b.png)/*y*/}"
                   "c{background:url(\"a\\\nb.png\")}"),
                ElementsAre("background=b.png", "background=ab.png"));
}

TEST(ScanStyle, brokenTokensAreNone) {
    EXPECT_THAT(of("a{background:url(a b.png)}b{background:url(\"x\ny.png\")}"
                   "c{background:url(c\"d)}"),
                IsEmpty());
    EXPECT_THAT(of("a{*background:url(no.png);_background:url(no.png);behavior:url(no.htc)}"),
                IsEmpty());
    EXPECT_THAT(of("a{background:url(end.png"), ElementsAre("background=end.png"));
    EXPECT_THAT(of("a{background:url('end.png"), ElementsAre("background=end.png"));
    EXPECT_THAT(of("a{background:url(),url(''),url(data:image/gif;base64,R0),url(#here)}"),
                IsEmpty());
}

TEST(ScanStyle, rulesInRulesAreRead) {
    EXPECT_THAT(
        of("@media a{@supports (b:c){d{&:hover{background:url(1.png)}}}}"
           "@layer x{@font-face{src:url(2.woff)}}@keyframes k{from{background:url(3.png)}}"),
        ElementsAre("background=1.png", "@font-face src=2.woff", "background=3.png"));
}

TEST(ScanStyle, onlyTheAddressChanges) {
    EXPECT_EQ(rewritten("a { background : URL( 'x.png' ) no-repeat }/* url(x.png) */", "17.png"),
              "a { background : URL( '17.png' ) no-repeat }/* url(x.png) */");
    EXPECT_EQ(rewritten("@import \"a.css\" print;a{src:url( b )}", "1 (2).css"),
              "@import \"1\\000020\\0000282\\000029.css\" print;a{src:url( "
              "1\\000020\\0000282\\000029.css )}");
}

/// Whatever the address is, the same is read from where it was put.
TEST(ScanStyle, whatIsPutInIsRead) {
    const std::string css = "@import 'a.css';@import url(b.css);a{background:url( c.png ) x,"
                            "url( \"d\" );mask:image-set('e' 1x)}@font-face{src:url(f)}g{h:url(i";
    for (const std::string_view address :
         {"0000017.gif", "a b", "(x)", "\"'\\", "a\nb", "</style>", "\xC3\xA9\xF0\x9F\x98\x80",
          "a,b;c{d}e", "\\000041", "&amp;&#39;", "1", "--", "x\\"}) {
        const std::string made = rewritten(css, address);
        const auto again = scanStyle(made);
        ASSERT_EQ(again.size(), scanStyle(css).size()) << made;
        for (const Reference &reference : again)
            EXPECT_EQ(reference.address, address) << made;
    }
}

TEST(ScanStyle, deepAndBrokenOnesTakeTimeInProportion) {
    const auto start = std::chrono::steady_clock::now();
    std::string deep;
    for (int i = 0; i < 100'000; ++i)
        deep += "a{b:url(c";
    EXPECT_NO_THROW(scanStyle(deep));
    std::string open;
    for (int i = 0; i < 200'000; ++i)
        open += "a{";
    EXPECT_THAT(scanStyle(open), IsEmpty());
    EXPECT_THAT(scanStyle(std::string(500'000, '(')), IsEmpty());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
}

TEST(ReferencesOfDeclarations, areThoseOfOneElement) {
    EXPECT_THAT(addresses(referencesOfDeclarations("color:red;background:url(a.png) , url('b')")),
                ElementsAre("background=a.png", "background=b"));
    EXPECT_THAT(addresses(referencesOfValue("fill", "url(a.svg#b)")), ElementsAre("fill=a.svg#b"));
}

} // namespace
} // namespace nv
