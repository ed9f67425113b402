#include "rebuild/LocalNames.h"
#include "support/WideText.h"
#include "unit/rebuild/exact/ExactFixture.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <gmock/gmock.h>
#include <sqlite3.h>

#include <string_view>

namespace nv {
namespace {

using test::kPng;
using testing::ElementsAre;
using testing::HasSubstr;

/// Caches whose readers store addresses in other ways than browsers ask for them.
class KeptAddresses : public test::ExactFixture {
  protected:
    UrlId putAs(const std::string &url, const std::string &raw, const std::string &body = kPng) {
        return put({.url = url, .body = body, .raw = raw});
    }
};

TEST_F(KeptAddresses, decodedOnesAreFoundByTheirRawValue) {
    putAs("https://host/dir/caf\u00E9.png", "https://host/dir/caf%E9.png");
    putAs("https://host/dir/caf\u00E9.png", "https://host/dir/caf%C3%A9.png");
    putAs("https://host/dir/two words.png", "https://host/dir/two%20words.png");
    putAs("https://host/dir/a/b.png", "https://host/dir/a%2Fb.png");
    putAs("https://host/dir/x?n=J\u00FCrgen", "https://host/dir/x?n=J%FCrgen");
    const UrlId html =
        putPage("<img src='caf\u00E9.png'><img src=caf%E9.png><img src='two words.png'>"
                "<img src=a/b.png><img src=a%2Fb.png><img src='x?n=J%FCrgen'>"
                "<img src='x?n=J\u00FCrgen'>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html),
                ElementsAre("https://host/dir/caf%C3%A9.png: exact address -> 2",
                            "https://host/dir/caf%E9.png: exact address -> 1",
                            "https://host/dir/two%20words.png: exact address -> 3",
                            "https://host/dir/a/b.png: not in any cache -> 0",
                            "https://host/dir/a%2Fb.png: exact address -> 4",
                            "https://host/dir/x?n=J%FCrgen: exact address -> 5",
                            "https://host/dir/x?n=J%C3%BCrgen: same path, other query -> 5"));
    EXPECT_EQ(get(UrlId{2}).URL, "https://host/dir/caf\u00E9.png") << "what is stored stays";
}

TEST_F(KeptAddresses, lettersAloneAreToldAndComeBehindWhatIsKnown) {
    const std::string decoded = "https://host/dir/caf\u00E9.png";
    putAs(decoded, decoded);
    const UrlId html = putPage("<img src='caf\u00E9.png'><img src='caf%E9.png#a'>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html),
                ElementsAre("https://host/dir/caf%C3%A9.png: same address, decoded -> 1",
                            "https://host/dir/caf%E9.png#a: same address, decoded -> 1"));
    const UrlId certain = putAs("https://host/dir/caf%C3%A9.png", "");
    ASSERT_TRUE(rebuild(html));
    EXPECT_EQ(notes(html).at(0).part, certain);
    EXPECT_EQ(notes(html).at(0).rule, partrule::kExact);
    EXPECT_EQ(notes(html).at(1).part, UrlId{1});
}

TEST_F(KeptAddresses, theLettersOfTheWholeAddressCountBeforeAnotherQuery) {
    putAs("https://host/caf\u00E9.png?v=1", "https://host/caf%C3%A9.png?v=1");
    const UrlId html = putPage("<img src='/caf\u00E9.png?v=2'>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html),
                ElementsAre("https://host/caf%C3%A9.png?v=2: same path, other query -> 1"));
    putAs("https://host/caf\u00E9.png?v=2", "https://host/caf\u00E9.png?v=2");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html),
                ElementsAre("https://host/caf%C3%A9.png?v=2: same address, decoded -> 3"));
}

TEST_F(KeptAddresses, keysWithTheBrowsersPartInFrontAreAddresses) {
    putAs("HTTP:https://host/dir/a.png", "HTTP:https://host/dir/a.png");
    putAs("HTTP:anon&uri=https://host/dir/f.woff", "HTTP:anon&uri=https://host/dir/f.woff",
          "wOFF...");
    putAs("HTTP:https://host/dir/s.css?v=1", "HTTP:https://host/dir/s.css?v=1",
          "@font-face{src:url(f.woff)}");
    const UrlId html = put({.url = "HTTP:https://host/dir/page.html",
                            .body = "<html><link rel=stylesheet href=s.css?v=2><img src=a.png>",
                            .type = "text/html"});
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html), ElementsAre("https://host/dir/s.css?v=2: same path, other query -> 3",
                                         "https://host/dir/a.png: exact address -> 1",
                                         "https://host/dir/f.woff: exact address -> 2"));
}

TEST_F(KeptAddresses, redirectsOfTheFirstFirefoxAreFollowed) {
    const UrlId moved = put({.url = "https://host/moved.png", .body = ""});
    project.connection().exec(
        "UPDATE URLs SET MetaData = 'request-method GET response-head HTTP/1.1 302 Found' || "
        "char(13, 10) || 'Location: /a.png' || char(13, 10) || ' ' WHERE URL_ID = " +
        std::to_string(number(moved)));
    put({.url = "https://host/a.png", .body = kPng});
    const UrlId html = putPage("<img src=/moved.png>");
    ASSERT_TRUE(rebuild(html));
    EXPECT_THAT(found(html),
                ElementsAre("https://host/moved.png: redirect, then exact address -> 2"));
}

TEST_F(KeptAddresses, aPageInUtf16IsAPageWhateverIsKnownOfIt) {
    put({.url = "https://host/a.png", .body = kPng});
    for (const bool isBigEndian : {false, true}) {
        const std::string bytes =
            test::markedWideText("<!doctype html><p><img src=/a.png>", isBigEndian);
        const UrlId html = put({.url = "https://host/page", .body = bytes, .headers = false});
        ASSERT_TRUE(rebuild(html));
        EXPECT_THAT(found(html), ElementsAre("https://host/a.png: exact address -> 1"));
    }
    const UrlId none = put({.url = "https://host/x", .body = "\xFF\xFEx", .headers = false});
    EXPECT_FALSE(rebuild(none));
}

/// Counts the rows that statements on the table of records have walked over without an index.
int countWalked(unsigned, void *steps, void *statement, void *) {
    auto *const done = static_cast<sqlite3_stmt *>(statement);
    const char *const text = sqlite3_sql(done);
    if (text && std::string_view(text).find("FROM URLs WHERE URL") != std::string_view::npos)
        *static_cast<int *>(steps) += sqlite3_stmt_status(done, SQLITE_STMTSTATUS_FULLSCAN_STEP, 0);
    return 0;
}

TEST_F(KeptAddresses, noLookUpWalksTheTable) {
    constexpr int kRows = 2'000;
    for (int i = 0; i < kRows; ++i)
        project.connection().exec(
            fmt::format("INSERT INTO URLs (URL, URLRawValue, CacheType) VALUES ('HTTP:https://host/"
                        "{0}', 'x', 'Firefox Cache')",
                        i));
    putAs("https://host/caf\u00E9.png", "https://host/caf%C3%A9.png");
    const UrlId html = putPage("<img src='/caf\u00E9.png'><img src='/\u00E9?x'><img src=/b.png>");
    int walked = 0;
    sqlite3_trace_v2(project.connection().getHandle(), SQLITE_TRACE_PROFILE, countWalked, &walked);
    ASSERT_TRUE(rebuild(html));
    sqlite3_trace_v2(project.connection().getHandle(), 0, nullptr, nullptr);
    EXPECT_EQ(notes(html).at(0).rule, partrule::kExact);
    EXPECT_EQ(walked, 0);
}

} // namespace
} // namespace nv
