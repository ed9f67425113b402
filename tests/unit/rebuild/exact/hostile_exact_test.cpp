#include "rebuild/LocalNames.h"
#include "unit/rebuild/exact/ExactFixture.h"

#include <gmock/gmock.h>

#include <chrono>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

/// Pages made to hold an examiner up, or to show what they aren't. The bounds are far above what
/// the tests take.
class HostileExactPages : public test::ExactFixture {
  protected:
    static std::string repeated(std::string_view text, int times) {
        std::string all;
        all.reserve(text.size() * static_cast<std::size_t>(times));
        for (int i = 0; i < times; ++i)
            all += text;
        return all;
    }
    bool rebuildSoon(UrlId html) {
        const auto begin = std::chrono::steady_clock::now();
        const bool rebuilt = rebuild(html);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
        return rebuilt;
    }
};

TEST_F(HostileExactPages, ofMoreReferencesThanAreTold) {
    std::string text;
    for (int i = 0; i < 50'010; ++i)
        text += fmt::format("<img src=/{}x>", i);
    put({.url = "https://host/50009x", .body = "GIF89a"});
    const UrlId html = putPage(text);
    ASSERT_TRUE(rebuildSoon(html));
    EXPECT_EQ(notes(html).size(), 50'000u);
    EXPECT_THAT(pageText(html), Not(HasSubstr("<img src=/")));
    EXPECT_THAT(pageText(html), Not(HasSubstr("0000001")));
}

TEST_F(HostileExactPages, ofPoliciesAndBasesWithoutNumber) {
    std::string text = repeated("<meta http-equiv=content-security-policy content='base-uri " +
                                    repeated("a.example ", 10'000) + "'>",
                                100);
    for (int i = 0; i < 2'000; ++i)
        text +=
            fmt::format("<iframe srcdoc='<base href=https://h{}/><img src=a.gif>'></iframe>", i);
    const UrlId html = putPage(text);
    ASSERT_TRUE(rebuildSoon(html));
    ASSERT_EQ(notes(html).size(), 2'000u);
    EXPECT_EQ(notes(html).back().address, "https://host/dir/a.gif") << "none of them is allowed";
}

TEST_F(HostileExactPages, ofThousandsOfRowsOfOneAddress) {
    for (int i = 0; i < 3'000; ++i)
        put({.url = "https://host/a.gif", .body = i == 7 ? "GIF89a" : "", .day = 40000.0 + i});
    const UrlId html = putPage(repeated("<img src=/a.gif>", 2'000));
    ASSERT_TRUE(rebuildSoon(html));
    EXPECT_EQ(notes(html).back().part, UrlId{8});
}

TEST_F(HostileExactPages, ofRedirectsThatFanOut) {
    for (int to = 0; to < 12; ++to)
        for (int from = 0; from < 12; ++from)
            put({.url = fmt::format("https://host/r{}", from),
                 .body = "",
                 .status = "302 Found",
                 .location = fmt::format("/r{}", to)});
    std::string text;
    for (int i = 0; i < 12; ++i)
        text += fmt::format("<img src=/r{}>", i);
    const UrlId html = putPage(text);
    ASSERT_TRUE(rebuildSoon(html));
    EXPECT_EQ(notes(html).size(), 12u);
}

TEST_F(HostileExactPages, ofAFrameThatIsNestedBeyondAllMeasure) {
    put({.url = "https://host/f",
         .body = "<html><img src=/a.gif><iframe src=http://live/></iframe>" +
                 repeated("<div>", 100'000),
         .type = "text/html"});
    put({.url = "https://host/a.gif", .body = "GIF89a"});
    const UrlId html = putPage("<iframe src=/f></iframe><img src=/a.gif>");
    ASSERT_TRUE(rebuildSoon(html));
    EXPECT_FALSE(notes(html)[0].isShown());
    UrlRecord stored = get(html);
    const std::string note = fileOf(html, "0000001.htm");
    ASSERT_TRUE(unpackIngredients(stored, context()));
    EXPECT_EQ(fileOf(html, "0000001.htm"), note);
    EXPECT_THAT(found(html), ElementsAre("https://host/f: too large -> 1",
                                         "https://host/a.gif: exact address -> 2"));
    EXPECT_THAT(fileOf(html, "0000001.htm"), Not(HasSubstr("live")));
    EXPECT_EQ(project.log.entries.size(), 2u); // each time that it is read
}

TEST_F(HostileExactPages, thatAreNestedBeyondAllMeasure) {
    const UrlId html = putPage("<html>" + repeated("<div>", 100'000));
    EXPECT_FALSE(rebuildSoon(html));
    EXPECT_EQ(project.log.entries.size(), 1u);
    EXPECT_FALSE(get(html).CacheFileRebuilt);
}

TEST_F(HostileExactPages, ofAddressesThatAreNoPlainText) {
    const UrlId html = putPage("<img src=\"a';DROP/**/TABLE/**/URLs;--.gif\"><img src='x|y\n|z'>"
                               "<img src='%00%'><img src='\xC3\x28\xFF'><img src='../../../etc'>"
                               "<img src='" +
                               std::string(1'000'000, 'a') + "'><img src='\\\\host\\a.gif'>");
    ASSERT_TRUE(rebuildSoon(html));
    EXPECT_EQ(project.number("SELECT count(*) FROM URLs"), 1);
    EXPECT_EQ(notes(html).size(), 7u);
    EXPECT_EQ(substitutionsOf(get(html).IngredientIDs, settings).size(), 7u);
}

TEST_F(HostileExactPages, ofZeroBytesAndWithoutAnEnd) {
    put({.url = "https://host/a.gif", .body = "GIF89a"});
    const std::string zeros(100'000, '\0');
    const UrlId html = putPage("<html>" + zeros + "<img src=/a.gif>" + zeros + "<!-- ");
    ASSERT_TRUE(rebuildSoon(html));
    EXPECT_EQ(notes(html).size(), 1u);
    EXPECT_EQ(get(html).RebuiltSourceCode.size(), fromAnsi(pageText(html)).size());
    UrlRecord stored = get(html);
    const std::string before = pageText(html);
    ASSERT_TRUE(unpackIngredients(stored, context()));
    EXPECT_EQ(pageText(html), before);
}

TEST_F(HostileExactPages, ofSheetsThatImportEachOther) {
    for (int i = 0; i < 40; ++i) {
        std::string text;
        for (int other = 0; other < 40; ++other)
            text += fmt::format("@import url(s{}.css);", other);
        put({.url = fmt::format("https://host/s{}.css", i), .body = text, .type = "text/css"});
    }
    const UrlId html = putPage("<link rel=stylesheet href=/s0.css>");
    ASSERT_TRUE(rebuildSoon(html));
    EXPECT_EQ(notes(html).size(), 1u + 40u * 40u);
}

} // namespace
} // namespace nv
