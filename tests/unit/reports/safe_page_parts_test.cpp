#include "base/Base64.h"
#include "reports/pages/PageWriter.h"
#include "unit/reports/GuardedText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

TEST(SafePage, objectsBecomeWhatTheyShow) {
    EXPECT_EQ(body("<object data=0000002.gif width=9 type=image/gif>else</object>a"),
              "<img src=\"0000002.gif\" width=\"9\" type=\"image/gif\"/>a");
    EXPECT_EQ(body("<embed width=9 src=0000002.gif>"), "<img width=\"9\" src=\"0000002.gif\"/>");
    EXPECT_EQ(body("<object data=0000004.htm>else</object><embed src=0000004.htm>"),
              "<iframe src=\"0000004.htm\" frameborder=\"0\"></iframe>"
              "<iframe src=\"0000004.htm\" frameborder=\"0\"></iframe>");
    EXPECT_EQ(body("<object data=data:image/gif;base64,R0lG></object>"),
              "<img src=\"data:image/gif;base64,R0lG\"/>");
    EXPECT_EQ(body("<object data=0000002.gif src=0000002.gif>else</object>"), "else");
    EXPECT_EQ(body("<object data=http://red/>else</object><embed src=//red/>"), "else");
    EXPECT_EQ(body("<object data=0000003.css>1</object><object data=0000005.txt>2</object>"
                   "<object data='#a'>3</object><object>4</object>"),
              "1234");
}

TEST(SafePage, ofSetsOfPicturesThoseOfTheFolderStay) {
    const auto set = [](std::string_view value) {
        return body("<img srcset=\"" + std::string(value) + "\">");
    };
    EXPECT_EQ(set("0000002.gif"), "<img srcset=\"0000002.gif\"/>");
    EXPECT_EQ(set(" ,, 0000002.gif, 0000002.gif 2x ,http://red/ 3x,"),
              "<img srcset=\"0000002.gif, 0000002.gif 2x\"/>");
    EXPECT_EQ(set("0000002.gif url(a,http://red/ 1x), 0000002.gif 640w"),
              "<img srcset=\"0000002.gif 640w\"/>");
    EXPECT_EQ(set("data:image/gif;base64,R0lG 2x, ../0000002.gif 1x"),
              "<img srcset=\"data:image/gif;base64,R0lG 2x\"/>");
    for (const char *none : {"", ",", "http://red/", "0000002.gif,http://red/ 2x", "red.gif 1x",
                             "0000002.gif 1x;url", "//red/ 1x, /red 2x"})
        EXPECT_EQ(set(none), "<img/>") << none;
    EXPECT_EQ(body("<p srcset=0000002.gif><video srcset=0000002.gif></video>"),
              "<p><video></video></p>");
    EXPECT_EQ(set(std::string(300'000, ',') + "0000002.gif" + std::string(300'000, '(')), "<img/>");
}

TEST(SafePage, picturesOfSeveralSizesStay) {
    EXPECT_EQ(body("<picture><source media='(min-width: 9px)' sizes=50vw srcset='0000002.gif 640w,"
                   "0000009.gif 9w, http://host/a.gif 1w'><img srcset=' , 0000002.gif, "
                   "data:image/gif;base64,R0lG  2x,0000002.gif 1x 2x' src=0000002.gif></picture>"),
              "<picture><source media=\"(min-width: 9px)\" sizes=\"50vw\" "
              "srcset=\"0000002.gif 640w\"/><img srcset=\"0000002.gif, "
              "data:image/gif;base64,R0lG 2x\" src=\"0000002.gif\"/></picture>");
    EXPECT_EQ(body("<img srcset='//host/a 2x'><p srcset='0000002.gif'></p>"), "<img/><p></p>");
    EXPECT_EQ(body("<img srcset='data:image/gif, 2x'>"), "<img/>");
}

TEST(SafePage, pagesInFramesAreGuarded) {
    const std::string page = body("<iframe srcdoc='<script>a</script><img src=0000002.gif>"
                                  "<img src=//host/b.gif>'></iframe>");
    EXPECT_THAT(page, AllOf(StartsWith("<iframe srcdoc=\"&lt;html&gt;"),
                            HasSubstr("&lt;img src=&quot;0000002.gif&quot;/&gt;&lt;img/&gt;"),
                            HasSubstr("Content-Security-Policy"), Not(HasSubstr("script&gt;"))));
    std::string deep = "<img src=0000002.gif>";
    for (int i = 0; i < 6; ++i)
        deep = "<iframe srcdoc=\"" + markupText(deep) + "\"></iframe>";
    const std::string once = guarded(deep);
    EXPECT_EQ(guarded(once), once);
    EXPECT_THAT(once, Not(HasSubstr("0000002.gif")));
    EXPECT_EQ(body("<p srcdoc='<b>'></p>"), "<p></p>");
}

TEST(SafePage, mediaAsDataStayUnlessTheyAreTexts) {
    for (const char *sound : {"RIFF AAAWAVE", "\xFF\xFB\x90\x64\x80\x80\x80\x80", "ID3\x03"}) {
        const std::string address = "data:audio/wav;base64," + base64(viewOf(sound));
        EXPECT_THAT(body("<audio src='" + address + "'>"), HasSubstr(address));
    }
    for (const char *list : {"#EXTM3U", "\n\n  #EXTM3U\nhttp", "[playlist]", "\xEF\xBB\xBF#EXTM3U",
                             "\xFF\xFE<", "ftp://a"}) {
        const std::string address = "data:audio/wav;base64," + base64(viewOf(list));
        EXPECT_EQ(body("<audio src='" + address + "'></audio>"), "<audio></audio>");
    }
}

TEST(SafePage, documentsAsDataAreGuardedAsWell) {
    const std::string frame =
        body("<iframe src=\"data:text/html,<script>1</script><p onclick=1>a\">");
    const std::string_view kBegin = "<iframe src=\"data:text/html;base64,";
    ASSERT_THAT(frame, StartsWith(std::string(kBegin)));
    EXPECT_THAT(fromBase64(frame.substr(kBegin.size(), frame.find("\"></") - kBegin.size())),
                AllOf(StartsWith("\xEF\xBB\xBF<html>"), HasSubstr("default-src 'none'"),
                      EndsWith("<body><p>a</p></body></html>")));
    std::string deep = "data:text/html,a";
    for (int i = 0; i < 6; ++i)
        deep = "data:text/html;base64," + base64(viewOf("<iframe src='" + deep + "'></iframe>"));
    const std::string page = body("<iframe src='" + deep + "'></iframe>");
    EXPECT_LT(page.size(), 20'000U);
    EXPECT_EQ(body(page), page);
}

TEST(SafePage, drawingsAsDataAreUtf8UnlessTheySayOtherwise) {
    constexpr std::string_view kBegin = "<img src=\"data:image/svg+xml;base64,";
    for (const std::string drawing :
         {"%3Csvg%3E%3Ctext%3E\xC3\xA9", ";charset=iso-8859-1,%3Csvg%3E%3Ctext%3E%E9",
          "%3C?xml version='1.0' encoding='iso-8859-1'?%3E%3Csvg%3E%3Ctext%3E%E9"}) {
        const std::string comma = drawing.starts_with(';') ? "" : ",";
        const std::string page =
            body("<img src=\"data:image/svg+xml" + comma + drawing + "\"><b>a</b>");
        ASSERT_THAT(page, AllOf(StartsWith(std::string(kBegin)), EndsWith("<b>a</b>")));
        EXPECT_EQ(fromBase64(page.substr(kBegin.size(), page.find("\"/>") - kBegin.size())),
                  "<svg xmlns=\"http://www.w3.org/2000/svg\"><text>\xC3\xA9</text></svg>");
        EXPECT_EQ(body(page), page);
    }
}

TEST(SafePage, formulasStay) {
    EXPECT_EQ(
        body("<math display=block><mfrac linethickness=2><mrow><mi>x</mi><mo stretchy=false>+"
             "</mo><mn mathcolor=red>1</mn></mrow><msqrt><mi mathvariant=normal>y</mi></msqrt>"
             "</mfrac></math>"),
        "<math xmlns=\"http://www.w3.org/1998/Math/MathML\" display=\"block\"><mfrac "
        "linethickness=\"2\"><mrow><mi>x</mi><mo stretchy=\"false\">+</mo>"
        "<mn mathcolor=\"red\">1</mn></mrow><msqrt><mi mathvariant=\"normal\">y</mi></msqrt>"
        "</mfrac></math>");
    EXPECT_EQ(body("<math xmlns:x=y actiontype=z><semantics><mi href=/a xlink:href=/b>x</mi>"
                   "<annotation encoding=TeX>x</annotation></semantics><mglyph src=0000002.gif />"
                   "<mtext>a <b>b</b><img src=0000002.gif></mtext><apply>c</apply></math>"),
              "<math xmlns=\"http://www.w3.org/1998/Math/MathML\"><semantics><mi data-href=\"/a\">x"
              "</mi></semantics><mtext>a b</mtext>c</math>");
    EXPECT_THAT(guarded("<math><mi>x", PageForm::xhtml),
                HasSubstr("<math xmlns=\"http://www.w3.org/1998/Math/MathML\"><mi>x</mi></math>"));
}

TEST(SafePage, treesInTheShadowOfAnElementStay) {
    EXPECT_EQ(
        body("<my-card><template shadowrootmode=Open onload=x()><style>:host{color:red}</style>"
             "<img src=0000002.gif><slot name=a onslotchange=x()>none</slot>"
             "<p part=b><template shadowrootmode=closed>c</template></p></template>"
             "<b slot=a>text</b></my-card>"),
        "<my-card><template shadowrootmode=\"Open\"><style>:host {\ncolor:red;\n}\n</style>"
        "<img src=\"0000002.gif\"/><slot name=\"a\">none</slot>"
        "<p part=\"b\"><template shadowrootmode=\"closed\">c</template></p></template>"
        "<b slot=\"a\">text</b></my-card>");
    for (const std::string mode : {"", "shadowrootmode", "shadowrootmode=x", "shadowroot=open"})
        EXPECT_EQ(body("<div><template " + mode + ">a</template>b</div>"), "<div>b</div>");
    EXPECT_THAT(guarded("<div><template shadowrootmode=open>a</template>b</div>", PageForm::xhtml),
                HasSubstr("<div>b</div>"));
}

} // namespace
} // namespace nv
