#include "base/Text.h"
#include "rebuild/LocalNames.h"
#include "rebuild/exact/UsedDrawings.h"
#include "support/HostileWays.h"
#include "unit/rebuild/exact/ExactFixture.h"

#include <gmock/gmock.h>

#include <chrono>

namespace nv {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr UrlId kOne{1};
constexpr std::size_t kRoom = 1'000'000;

/// What is put into a page for one element of a drawing.
std::string drawn(const std::string &elements, std::string_view id = "a") {
    std::size_t room = kRoom;
    UsedDrawings used("page", room);
    used.add(kOne, "<svg xmlns=\"http://www.w3.org/2000/svg\">" + elements + "</svg>");
    return used.place(kOne, id) ? used.markup() : "nothing";
}

TEST(UsedDrawings, onlyWhatIsNamedComes) {
    const std::string text = drawn("<g id=b><path d='M1 1'/></g><symbol id=a viewBox='0 0 9 9'>"
                                   "<circle r='4'/></symbol><g id=c />");
    EXPECT_THAT(text,
                AllOf(HasSubstr("<symbol id=\"nv-"), HasSubstr("viewBox=\"0&#32;0&#32;9&#32;9\""),
                      HasSubstr("<circle r=\"4\""), Not(HasSubstr("path"))));
    EXPECT_EQ(drawn("<g id=b />"), "nothing");
}

TEST(UsedDrawings, whatItNamesInTurnComesUnderItsNewName) {
    std::size_t room = kRoom;
    UsedDrawings used("page", room);
    used.add(kOne, "<svg><linearGradient id='g-1'></linearGradient><path id=p />"
                   "<symbol id=a><rect fill='url(#g-1)' style='stroke:url(\"#g-1\")'/>"
                   "<use xlink:href='#p'/><use href='#none'/></symbol></svg>");
    const std::string first = used.place(kOne, "a").value();
    const std::string id = first.substr(1, first.rfind('-'));
    EXPECT_EQ(used.place(kOne, "a"), first);
    EXPECT_EQ(used.place(kOne, "p"), "#" + id + "3");
    const std::string text = used.markup();
    EXPECT_THAT(text, AllOf(HasSubstr("fill=\"url(&#34;#" + id + "2&#34;)\""),
                            HasSubstr("stroke:url(&#34;#" + id + "2&#34;)"),
                            HasSubstr("<linearGradient id=\"" + id + "2\""),
                            HasSubstr("<use href=\"#" + id + "3\""),
                            HasSubstr("<use href=\"#" + id + "none\""), Not(HasSubstr("g-1"))));
    const std::string name = "id=\"" + id + "2\"";
    EXPECT_EQ(text.find(name), text.rfind(name));
}

TEST(UsedDrawings, theWholeDrawingIsNamedWithoutAnId) {
    EXPECT_THAT(drawn("<rect width='1'/>", ""), HasSubstr("<rect width=\"1\""));
}

TEST(UsedDrawings, stylesReachNothingElse) {
    const std::string text =
        drawn("<style><![CDATA[.x,g > path{fill:red} @import 'a.css'; @media print{.x{fill:blue}}"
              ":root{fill:red} .x:hover{fill:red} #a{fill:url(#b)} *{fill:url(http://live/)}"
              ".y{fill:green;stroke:url(a.svg#b)} .z{fill:red]]></style>"
              "<g id=b /><g id=a class='x other'><path class=\"y\"/></g>");
    const std::size_t begin = text.find("<style>");
    const std::string sheet = text.substr(begin, text.find("</style>") - begin);
    EXPECT_THAT(sheet, AllOf(HasSubstr("-k1-"), HasSubstr("&#62;&#32;path.nv-"),
                             HasSubstr("fill:green;}"), HasSubstr("{fill:url(&#34;#nv-")));
    EXPECT_THAT(sheet,
                AllOf(Not(HasSubstr("live")), Not(HasSubstr("import")), Not(HasSubstr("blue")),
                      Not(HasSubstr("hover")), Not(HasSubstr("root")), Not(HasSubstr("stroke"))));
    EXPECT_THAT(text, Not(HasSubstr("\"x")));
    EXPECT_THAT(drawn("<style>.x{fill:u\\72l/**/(a)}</style><g id=a style='fill:u\\72l/**/(a)' />"),
                Not(HasSubstr("url(")));
}

TEST(UsedDrawings, nothingRunsMovesOrLeadsOut) {
    for (const test::HostilePart &part : test::kHostileParts) {
        std::size_t room = kRoom;
        UsedDrawings used("page", room);
        used.add(kOne, replaceAll(replaceAll(part.body, "@", "http://live"), "%", "@"));
        for (const char *id : {"a", "loop", "f", "m", "c", ""})
            static_cast<void>(used.place(kOne, id));
        const std::string text = used.markup();
        for (const char *word : {"live", "script", "foreign", "iframe", "animate", "<set", "onload",
                                 "onclick", "@import", "ENTITY", "image-set", "ping", "feImage"})
            EXPECT_THAT(text, Not(HasSubstr(word)));
    }
}

TEST(UsedDrawings, drawingsThatShowThemselvesEnd) {
    std::string elements;
    for (int i = 0; i < 60; ++i)
        elements +=
            fmt::format("<g id='u{0}'><use href='#u{1}'/><use href='#u{1}'/></g>", i, i + 1);
    const std::string text = drawn(elements + "<g id=a><use href='#a'/><use href='#u0'/></g>");
    EXPECT_THAT(text, HasSubstr("<use href=\"#nv-"));
    EXPECT_LT(text.size(), 5'000u);
}

TEST(UsedDrawings, noMoreComesThanThereIsRoomFor) {
    std::size_t room = 20'000;
    UsedDrawings used("page", room);
    std::string many;
    for (int i = 0; i < 1'000; ++i)
        many += "<path d='M1 1'/>";
    used.add(kOne, "<svg><g id=small /><g id=a>" + many + "</g></svg>");
    EXPECT_TRUE(used.place(kOne, "small"));
    EXPECT_FALSE(used.place(kOne, "a"));
    EXPECT_FALSE(used.place(kOne, "small"));
    EXPECT_THAT(used.markup(), Not(HasSubstr("M1")));
    EXPECT_LT(room, 20'000u);
}

TEST(UsedDrawings, beyondTheParsersLimitsThereIsNothing) {
    std::string deep;
    for (int i = 0; i < 100'000; ++i)
        deep += "<g>";
    EXPECT_EQ(drawn(deep + "<g id=a>"), "nothing");
    EXPECT_EQ(drawn("<g id=>", std::string(100'000, 'a')), "nothing");
}

class UsedInPages : public test::ExactFixture {
  protected:
    UrlId putSprite(const std::string &elements) {
        return put({.url = "https://host/s.svg",
                    .body = "<svg xmlns='http://www.w3.org/2000/svg'>" + elements + "</svg>",
                    .type = "image/svg+xml"});
    }
};

TEST_F(UsedInPages, theDrawingStandsInThePageAndTheAuditTellsOfItsRecord) {
    putSprite("<symbol id='b t'><path d='M1'/></symbol>");
    const std::string source = "<html><body><svg><use href='/s.svg#b%20t'/></svg></body></html>";
    const UrlId html = putPage(source);
    ASSERT_TRUE(rebuild(html));
    const std::string text = pageText(html);
    EXPECT_THAT(text, AllOf(HasSubstr("<use href='#nv-"), HasSubstr("-1'/></svg><svg width=\"0\""),
                            HasSubstr("<defs><symbol id=\"nv-"), HasSubstr("<path d=\"M1\"")));
    EXPECT_EQ(notes(html).at(0).part, kOne);
    EXPECT_EQ(notes(html).at(0).localName, "0000001.svg");
    UrlRecord stored = get(html);
    ASSERT_TRUE(unpackIngredients(stored, context()));
    EXPECT_EQ(pageText(html), text);
}

TEST_F(UsedInPages, framesHaveTheirOwn) {
    putSprite("<g id=a><path d='M1'/></g>");
    const UrlId frame = put({.url = "https://host/f",
                             .body = "<html><svg><use href=s.svg#a /></svg>",
                             .type = "text/html"});
    const UrlId html = putPage("<body><svg><use href=/s.svg#a /></svg><iframe src=/f></iframe>");
    ASSERT_TRUE(rebuild(html));
    const std::string name = localNameOf(frame, "htm");
    const std::string text = fileOf(html, name);
    EXPECT_THAT(text, HasSubstr("<g id=\"nv-"));
    UrlRecord stored = get(html);
    ASSERT_TRUE(unpackIngredients(stored, context()));
    EXPECT_EQ(fileOf(html, name), text);
}

TEST_F(UsedInPages, aPlaceOfThePageItselfStaysOne) {
    const UrlId html =
        putPage("<body><svg><g id=a /><use href='https://host/dir/page.html#a'/></svg>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(pageText(html), HasSubstr("<use href='#a'/>"));
    EXPECT_TRUE(notes(html).empty());
}

TEST_F(UsedInPages, whereNothingCanBePutTheFileIsNamed) {
    putSprite("<g id=a />");
    const UrlId html = putPage("<body><svg><use href=/s.svg#none /></svg>"
                               "<iframe srcdoc='<svg><use href=/s.svg#a /></svg>'></iframe>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(pageText(html), HasSubstr("href=0000001.svg#none"));
    EXPECT_EQ(notes(html).size(), 2u);
}

} // namespace
} // namespace nv
