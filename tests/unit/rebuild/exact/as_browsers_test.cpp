#include "rebuild/LocalNames.h"
#include "rebuild/exact/RecordProfile.h"
#include "unit/rebuild/exact/ExactFixture.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

using test::kPng;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// Which answers count, and how a page is read, as browsers do it.
class AsBrowsersTest : public test::ExactFixture {};

/// Two computers have profiles of the same words.
TEST_F(AsBrowsersTest, aProfileIsOnePersonsOnOneComputer) {
    const auto on = [this](const std::string &computer, const std::string &profile,
                           const std::string &person) {
        const std::int64_t row = source(profile);
        project.connection().exec(
            fmt::format("UPDATE SourceFiles SET Person = '{}', FilePath = '/case/{}/Users/{}/Data/"
                        "{}/Cache' WHERE SourceFile_ID = {}",
                        person, computer, person, profile, row));
        return row;
    };
    const std::int64_t own = on("pc1", "Default", "anna");
    const std::int64_t other = on("pc2", "Default", "anna");
    const std::int64_t unknown = on("pc1", "", "");
    const std::int64_t unknownToo = on("pc3", "", "");
    const std::string url = "https://host/a.png";
    put({.url = url, .body = kPng, .day = 40000, .source = other});
    put({.url = url, .body = kPng, .day = 40009, .source = own});
    const auto pageOf = [this](std::int64_t from) {
        return put({.url = "https://host/page",
                    .body = "<html><img src=a.png>",
                    .type = "text/html",
                    .source = from});
    };
    const UrlId html = pageOf(own);
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(notes(html).at(0).part, UrlId{2});
    RecordProfiles profiles(project.connection());
    EXPECT_TRUE(profiles.isSame(own, own));
    EXPECT_FALSE(profiles.isSame(own, other));
    EXPECT_FALSE(profiles.isSame(unknown, unknownToo));
    EXPECT_TRUE(profiles.isSame(own, on("pc1", "Default", "anna")));
    EXPECT_FALSE(profiles.isSame(own, on("pc1", "Profile 1", "anna")));
    EXPECT_EQ(profiles.textOf(UrlId{1}),
              "Chrome, Default, anna: /case/pc2/Users/anna/Data/Default/Cache");
    EXPECT_EQ(profiles.textOf(UrlId::none), "");
    EXPECT_EQ(profiles.of(own).place, "/case/pc1/Users/anna");
}

TEST_F(AsBrowsersTest, whatAPageAsksForByHttpBrowsersMayHaveByHttps) {
    put({.url = "https://host/a.png", .body = kPng});
    put({.url = "http://host/b.png", .body = kPng});
    put({.url = "https://host/b.png", .body = kPng});
    put({.url = "https://host:8080/c.png", .body = kPng});
    put({.url = "https://host/d.png?v=1", .body = kPng});
    put({.url = "http://host/d.png?v=2", .body = kPng});
    const std::string text = "<html><img src='http://host/a.png#x'><img src='http://host/b.png'>"
                             "<img src='http://host:8080/c.png'><img src='http://host/d.png?v=1'>";
    const UrlId html = putPage(text);
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html), ElementsAre("http://host/a.png#x: the same address by https -> 1",
                                         "http://host/b.png: exact address -> 2",
                                         "http://host:8080/c.png: the same address by https -> 4",
                                         "http://host/d.png?v=1: the same address by https -> 5"));
    const UrlId plain = putPage(text, "http://host/dir/page.html");
    ASSERT_TRUE(rebuild(plain));
    EXPECT_THAT(found(plain), ElementsAre("http://host/a.png#x: not in any cache -> 0",
                                          "http://host/b.png: exact address -> 2",
                                          "http://host:8080/c.png: not in any cache -> 0",
                                          "http://host/d.png?v=1: same path, other query -> 6"));
}

TEST_F(AsBrowsersTest, aRedirectToNothingGivesWayToTheNextAnswer) {
    const auto redirect = [](const std::string &from, const std::string &to, double day) {
        return test::Answer{.url = from,
                            .body = "moved",
                            .type = "text/html",
                            .day = day,
                            .status = "302 Found",
                            .location = to};
    };
    put(redirect("https://host/r.png", "/gone", 40000));
    put({.url = "https://host/r.png", .body = kPng, .day = 40009});
    // Each answer leads to all of the next address: told in time.
    for (int i = 0; i < 5; ++i)
        for (int answer = 0; answer < 11; ++answer)
            put(redirect(fmt::format("https://host/{}", i), fmt::format("/{}", i + 1),
                         40000 + answer));
    const UrlId html = putPage("<img src=/r.png><img src=/0>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html), ElementsAre("https://host/r.png: exact address -> 2",
                                         "https://host/0: not in any cache -> 0"));
}

TEST_F(AsBrowsersTest, aBaseThatNothingLiesBelowIsNone) {
    put({.url = "https://host/dir/a.png", .body = kPng});
    for (const std::string base : {"javascript:void(0)", "data:text/plain,x", "https://[bad"}) {
        const UrlId html = putPage("<base href='" + base + "'><img src=a.png>");
        ASSERT_TRUE(rebuild(html));
        EXPECT_THAT(found(html), ElementsAre("https://host/dir/a.png: exact address -> 1")) << base;
    }
}

/// Read as HTML it would be a script, a title or a frame to the end of the page.
TEST_F(AsBrowsersTest, elementsOfXmlThatEndAtOnceDo) {
    put({.url = "https://host/a.png", .body = kPng});
    const std::string xhtml =
        "<?xml version='1.0'?>\n<html xmlns='http://www.w3.org/1999/xhtml'><head><title/>"
        "<script src='x.js' /><style><![CDATA[p &gt; b{color:red}]]></style></head><body>"
        "<iframe src=\"gone.htm\"/><textarea/><div class='a'/><br/><p>text \xC3\xA9</p>"
        "<svg xmlns='http://www.w3.org/2000/svg'><path d=''/></svg><img "
        "src='/a.png'/></body></html>";
    const UrlId html =
        put({.url = "https://host/x.xhtml", .body = xhtml, .type = "application/xhtml+xml"});
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html), ElementsAre("https://host/gone.htm: not in any cache -> 0",
                                         "https://host/a.png: exact address -> 1"));
    const std::string text = pageText(html);
    EXPECT_THAT(text, HasSubstr("<!DOCTYPE html><html"));
    EXPECT_THAT(text, HasSubstr("<title></title>"));
    EXPECT_THAT(text, HasSubstr("</iframe><textarea></textarea><div class='a'></div><br/>"
                                "<p>text \xC3\xA9</p>"));
    EXPECT_THAT(text, HasSubstr("<style>p > b{color:red}</style>"));
    EXPECT_THAT(text, HasSubstr("<img src='0000001.png'/>"));
    EXPECT_THAT(text, Not(HasSubstr("x.js")));
    const UrlId plain = put(
        {.url = "https://host/x.html", .body = "<html><div/><p>a</p></html>", .type = "text/html"});
    ASSERT_TRUE(rebuild(plain));
    EXPECT_THAT(pageText(plain), HasSubstr("<div/><p>a</p>"));
}

TEST_F(AsBrowsersTest, sheetsOfAnotherTypeCountOnlyForOldPages) {
    const std::string css = "p{color:red}";
    put({.url = "https://host/plain.css", .body = css, .type = "text/plain"});
    put({.url = "https://host/js.css", .body = css, .type = "text/javascript"});
    put({.url = "https://host/none.css", .body = css});
    put({.url = "https://other/plain.css", .body = css, .type = "application/octet-stream"});
    put({.url = "https://host/main.css", .body = "@import 'plain.css';", .type = "text/css"});
    const std::string links =
        "<link rel=stylesheet href=/plain.css><link rel=stylesheet href=/js.css>"
        "<link rel=stylesheet href=/none.css><link rel=stylesheet href=//other/plain.css>"
        "<link rel=stylesheet href=/main.css>";
    const UrlId today = putPage("<!DOCTYPE html>" + links);
    ASSERT_TRUE(rebuild(today));
    EXPECT_THAT(found(today),
                ElementsAre("https://host/plain.css: answered with another type -> 0",
                            "https://host/js.css: answered with another type -> 0",
                            "https://host/none.css: exact address -> 3",
                            "https://other/plain.css: answered with another type -> 0",
                            "https://host/main.css: exact address -> 5",
                            "https://host/plain.css: answered with another type -> 0"));
    const UrlId old = putPage("<html>" + links);
    ASSERT_TRUE(rebuild(old));
    EXPECT_THAT(found(old), ElementsAre("https://host/plain.css: exact address -> 1",
                                        "https://host/js.css: exact address -> 2",
                                        "https://host/none.css: exact address -> 3",
                                        "https://other/plain.css: answered with another type -> 0",
                                        "https://host/main.css: exact address -> 5",
                                        "https://host/plain.css: exact address -> 1"));
}

TEST_F(AsBrowsersTest, aBaseThatAPolicyForbidsIsPassedOver) {
    put({.url = "https://host/dir/a.png", .body = kPng});
    put({.url = "https://host/other/a.png", .body = kPng});
    const std::string base = "<base href=/other/>";
    const std::string none =
        "<meta http-equiv=' Content-Security-Policy' content=\"img-src *; Base-URI 'none'\">";
    const auto partOf = [this](const std::string &text, const std::string &header = {}) {
        const UrlId html = putPage(text + "<img src=a.png>");
        project.connection().exec(
            fmt::format("UPDATE URLs SET MetaData = MetaData || '{}' || char(13, 10) WHERE "
                        "URL_ID = {}",
                        replaceAll(header, "'", "''"), number(html)));
        EXPECT_TRUE(rebuild(html));
        return found(html).at(0);
    };
    const std::string own = "https://host/dir/a.png: exact address -> 1";
    const std::string other = "https://host/other/a.png: exact address -> 2";
    EXPECT_EQ(partOf(base), other);
    EXPECT_EQ(partOf(none + base), own);
    EXPECT_EQ(partOf(base + none), other) << "it comes too late";
    EXPECT_EQ(partOf("<body>" + none + base), other) << "it isn't in the head";
    EXPECT_EQ(partOf(base, "Content-Security-Policy: default-src *, base-uri 'none'"), own);
    EXPECT_EQ(partOf(base, "Content-Security-Policy: base-uri 'self'"), other);
    EXPECT_EQ(partOf(base, "Content-Security-Policy-Report-Only: base-uri 'none'"), other);
}

TEST_F(AsBrowsersTest, aFramesOwnBaseCountsForWhatStandsInIt) {
    put({.url = "https://host/dir/a.png", .body = kPng});
    put({.url = "https://host/dir/in/a.png", .body = kPng});
    const UrlId html = putPage("<iframe srcdoc='<base href=in/><img src=a.png>'></iframe>"
                               "<iframe srcdoc='<img src=a.png>'></iframe><img src=a.png>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html), ElementsAre("https://host/dir/in/a.png: exact address -> 2",
                                         "https://host/dir/a.png: exact address -> 1",
                                         "https://host/dir/a.png: exact address -> 1"));
}

TEST_F(AsBrowsersTest, aPageThatOnlyItsServerCallsWideIsRead) {
    using namespace std::string_literals;
    put({.url = "https://host/dir/a.png", .body = kPng});
    std::string bytes;
    for (const char c : "<html><body>\x01<img src=a.png></body></html>"s)
        bytes += {c == '\x01' ? '\x20' : '\0', c == '\x01' ? '\xAC' : c};
    const UrlId html = put({.url = "https://host/dir/page.html",
                            .body = bytes,
                            .type = "text/html",
                            .charset = "utf-16be"});
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html), ElementsAre("https://host/dir/a.png: exact address -> 1"));
    EXPECT_TRUE(pageText(html).starts_with("\xFE\xFF"));
}

} // namespace
} // namespace nv
