// Parts that stand in the text itself, and elements that show something else without theirs.

#include "base/Base64.h"
#include "rebuild/LocalNames.h"
#include "rebuild/exact/ShownParts.h"
#include "unit/rebuild/exact/ExactFixture.h"

#include <gmock/gmock.h>

#include <vector>

namespace nv {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

const std::string kGif = "data:image/gif;base64,R0lGODlh";

class ShownPartsTest : public test::ExactFixture {
  protected:
    UrlId putGif(const std::string &name = "a.gif", std::size_t size = 6) {
        return put({.url = "https://host/" + name,
                    .body = "GIF89a" + std::string(size - 6, ' '),
                    .type = "image/gif"});
    }
    std::string rebuiltText(const std::string &html) {
        m_page = putPage(html);
        EXPECT_TRUE(rebuild(m_page));
        return pageText(m_page);
    }
    /// The folder is the same, byte by byte, in a later session.
    void expectTheSameAgain(const std::string &file) {
        const std::string before = fileOf(m_page, file);
        UrlRecord stored = get(m_page);
        ASSERT_TRUE(unpackIngredients(stored, context()));
        EXPECT_EQ(fileOf(m_page, file), before);
    }
    UrlId m_page = UrlId::none;
};

TEST_F(ShownPartsTest, masksAndShapesAreData) {
    putGif();
    const std::string text = rebuiltText(
        "<style>a{mask-image:url(/a.gif)}b{shape-outside:url('/a.gif')}c{-webkit-mask:url(/a.gif) "
        "0}"
        "d{background:url(/a.gif)}</style><p style='mask-border-source:image-set(\"/a.gif\" 1x)'>");
    EXPECT_THAT(text, AllOf(HasSubstr("a{mask-image:url(" + kGif + ")}"),
                            HasSubstr("b{shape-outside:url('" + kGif + "')}"),
                            HasSubstr("c{-webkit-mask:url(" + kGif + ") 0}"),
                            HasSubstr("d{background:url(0000001.gif)}"),
                            HasSubstr("image-set(\"" + kGif + "\" 1x)")));
    for (const PartNote &note : notes(m_page))
        EXPECT_EQ(note.localName, "0000001.gif");
    expectTheSameAgain(pageNameOf(m_page));
}

TEST_F(ShownPartsTest, drawingsAsDataNameNothingElse) {
    put({.url = "https://host/f.svg",
         .body = "<svg xmlns='http://www.w3.org/2000/svg' onload='x()'><script>x()</script>"
                 "<filter id='f'><feImage href='http://live/a.png'/></filter>"
                 "<style>@import 'http://live/a.css';</style></svg>",
         .type = "image/svg+xml"});
    const std::string text =
        rebuiltText("<p style='filter:url(/f.svg#f)'><svg><rect fill='url(/f.svg#g)'/></svg>"
                    "<img src=/f.svg>");
    const std::string head = "data:image/svg+xml;base64,";
    const std::size_t at = text.find(head) + head.size();
    const std::string drawing = fromBase64(text.substr(at, text.find('#', at) - at));
    EXPECT_THAT(text,
                AllOf(HasSubstr("#f)'>"), HasSubstr("#g)'/>"), HasSubstr("<img src=0000001.svg>")));
    EXPECT_THAT(drawing, AllOf(HasSubstr("<filter id='f'>"), HasSubstr("<feImage href='data:,'/>"),
                               Not(HasSubstr("live")), Not(HasSubstr("x()"))));
    expectTheSameAgain(pageNameOf(m_page));
}

TEST_F(ShownPartsTest, sheetsHoldTheirMasksInLaterSessionsToo) {
    putGif();
    const UrlId sheet = put({.url = "https://host/s.css",
                             .body = "a{mask-image:url(a.gif)}@import 'never.css';",
                             .type = "text/css"});
    static_cast<void>(rebuiltText("<link rel=stylesheet href=/s.css><img src=/a.gif>"));
    EXPECT_THAT(fileOf(m_page, localNameOf(sheet, "css")), HasSubstr("url(" + kGif + ")"));
    expectTheSameAgain(localNameOf(sheet, "css"));
}

TEST_F(ShownPartsTest, whatIsTooLargeIsTold) {
    putGif("a.gif", kLargestInside + 1);
    const std::string text = rebuiltText("<p style='mask:url(/a.gif)'><img src=/a.gif>");
    EXPECT_THAT(
        text, AllOf(HasSubstr("mask:url(data:image/svg+xml,"), HasSubstr("<img src=0000001.gif>")));
    EXPECT_THAT(found(m_page), ElementsAre("https://host/a.gif: too large -> 1",
                                           "https://host/a.gif: exact address -> 1"));
    EXPECT_FALSE(notes(m_page)[0].isShown());
    expectTheSameAgain(pageNameOf(m_page));
}

TEST_F(ShownPartsTest, aPageOfAThousandLargeMasksHasRoomForSome) {
    putGif("a.gif", kLargestInside);
    std::string html;
    for (int i = 0; i < 1'000; ++i)
        html += "<p style='mask:url(/a.gif)'>";
    EXPECT_LT(rebuiltText(html).size(), kMostInside + (std::size_t{2} << 20));
    const auto all = notes(m_page);
    EXPECT_TRUE(all.front().isShown());
    EXPECT_FALSE(all.back().isShown());
    expectTheSameAgain(pageNameOf(m_page));
}

TEST_F(ShownPartsTest, ownPropertiesHoldSmallPictures) {
    putGif();
    putGif("b.gif", 100'000);
    const std::string text = rebuiltText("<style>:root{--a:url(/a.gif);--b:url(/b.gif)}</style>");
    EXPECT_THAT(text, HasSubstr("--a:url(" + kGif + ");--b:url(0000002.gif)"));
}

TEST_F(ShownPartsTest, subtitlesAreData) {
    put({.url = "https://host/a.vtt", .body = "WEBVTT\n", .type = "text/vtt"});
    EXPECT_THAT(rebuiltText("<video><track src=/a.vtt default><track src=/b.vtt></video>"),
                AllOf(HasSubstr("<track src=data:text/vtt;base64,V0VCVlRUCg&#61;&#61; default>"),
                      HasSubstr("<track src=data:text/vtt,WEBVTT>")));
    EXPECT_EQ(notes(m_page)[0].localName, "0000001.vtt");
}

TEST_F(ShownPartsTest, anObjectWithoutItsThingShowsWhatItHolds) {
    putGif();
    put({.url = "https://host/error.png",
         .body = "gone",
         .type = "text/plain",
         .status = "404 Not Found"});
    EXPECT_THAT(rebuiltText("<object data=/gone.png type=a><img src=/a.gif></object>"
                            "<object data=' /error.png '>text</object>"
                            "<object data=/gone.png><param name=a> </object>"
                            "<object data='/a.gif'>text</object><embed src=/gone.png>"),
                AllOf(HasSubstr("<object data=\"\" type=a><img src=0000001.gif></object>"),
                      HasSubstr("<object data='  '>text</object>"),
                      HasSubstr("<object data=data:text/html;charset&#61;utf-8,"),
                      HasSubstr("<object data='0000001.gif'>text</object>"),
                      HasSubstr("<embed src=data:text/html;charset&#61;utf-8,")));
    EXPECT_EQ(notes(m_page)[2].rule, partrule::kError);
    expectTheSameAgain(pageNameOf(m_page));
}

TEST_F(ShownPartsTest, anObjectInAFramesTextToo) {
    EXPECT_THAT(rebuiltText("<iframe srcdoc='<object data=/gone.png>text</object>'></iframe>"),
                HasSubstr("<object data=&#34;&#34;>text</object>"));
}

TEST_F(ShownPartsTest, codebaseIsAskedWhenThePagesOwnAddressFindsNothing) {
    putGif("old/a.gif");
    putGif("dir/b.gif");
    putGif("old/b.gif");
    EXPECT_THAT(rebuiltText("<object codebase=/old/ data=a.gif></object>"
                            "<embed codebase='../old/' src=b.gif><embed codebase=/old/ src=c.gif>"),
                AllOf(HasSubstr("data=0000001.gif"), HasSubstr("src=0000002.gif")));
    EXPECT_THAT(found(m_page), ElementsAre("https://host/old/a.gif: exact address -> 1",
                                           "https://host/dir/b.gif: exact address -> 2",
                                           "https://host/dir/c.gif: not in any cache -> 0"));
    expectTheSameAgain(pageNameOf(m_page));
}

TEST_F(ShownPartsTest, lazyBackgroundsStandBehindAStyle) {
    putGif();
    EXPECT_THAT(
        rebuiltText("<p data-bg=/a.gif style='color:red'><p style=color:red data-background=/a.gif>"
                    "<p style='background:url(/b.gif)' data-bg='url(\"/a.gif\")'>"
                    "<p data-background=dark style='color:red'><p data-background=/a.gif>"),
        AllOf(HasSubstr("<p data-bg=/a.gif style='color:red;background-image:url(0000001.gif)'>"),
              HasSubstr("<p style=color:red;background-image:url(0000001.gif) data"),
              HasSubstr(");background-image:url(0000001.gif)' data-bg="),
              HasSubstr("<p data-background=dark style='color:red'>"),
              HasSubstr("<p style=background-image:url(0000001.gif)>")));
    expectTheSameAgain(pageNameOf(m_page));
}

} // namespace
} // namespace nv
