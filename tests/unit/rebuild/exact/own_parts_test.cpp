#include "base/Text.h"
#include "markup/HtmlDocument.h"
#include "rebuild/exact/OwnParts.h"
#include "rebuild/exact/PageReferences.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace nv {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return c >= ' ' && c < 0x7F; });
}

TEST(OwnHead, namesEncodingAndPolicy) {
    EXPECT_THAT(ownHead("windows-1251"), HasSubstr("<meta charset=\"windows-1251\"/>"));
    EXPECT_THAT(ownHead("windows-1251"), HasSubstr("default-src 'none'"));
    EXPECT_THAT(ownHead({}), Not(HasSubstr("charset")));
    EXPECT_THAT(ownHead("\"><script>"), Not(HasSubstr("<script>")));
    EXPECT_EQ(ownSheetStart("windows-1251", "HTTP header"), "@charset \"windows-1251\";");
    EXPECT_EQ(ownSheetStart("windows-1251", "@charset"), "");
}

TEST(MissingPart, tellsItsAddress) {
    const std::string picture = missingPicture("http://h/a&b<c>\"\xC3\xA9.png");
    EXPECT_TRUE(picture.starts_with("data:image/svg+xml,%3Csvg"));
    EXPECT_TRUE(isAscii(picture));
    EXPECT_EQ(picture.find_first_of(" \"'()<>"), std::string::npos);
    EXPECT_EQ(picture.find(',', 20), std::string::npos);
    const std::string svg = percentDecode(picture.substr(picture.find(',') + 1));
    EXPECT_THAT(svg, HasSubstr("http://h/a&amp;b&#60;c&#62;&#34;&#233;.png"));
    EXPECT_THAT(svg, HasSubstr("width=\"240\""));
    EXPECT_THAT(percentDecode(missingPart(RefUse::image, "a", RefForm::styleUrl)),
                HasSubstr("width=\"100%\" height=\"100%\">"));
    const std::string page = missingPart(RefUse::frame, "http://h/</body><script>");
    EXPECT_TRUE(page.starts_with("data:text/html"));
    EXPECT_THAT(percentDecode(page), Not(HasSubstr("<script")));
    EXPECT_EQ(missingPart(RefUse::link, "http://h/"), "http://h/");
}

TEST(MissingPart, longAddressesAreCutBetweenCharacters) {
    std::string address = "http://h/x";
    for (int i = 0; i < 100'000; ++i)
        address += "\xC3\xA9";
    EXPECT_LT(missingPicture(address).size(), 30'000U);
    EXPECT_TRUE(isAscii(missingPicture(address)));
    EXPECT_TRUE(isAscii(missingPicture("\xFF\xFE\x01\n\xEF\xBF\xBF")));
}

/// What stands for a part is read from where it stands, in every form.
TEST(MissingPart, standsInEveryPlace) {
    const std::string html = "<img src=a><img srcset='b 1x, c 2x'><p style=background:url(d)>"
                             "<style>e{f:url('g')}</style>";
    const PageScan scan = scanPage(html, "page");
    ASSERT_EQ(scan.references.size(), 5U);
    const std::string missing = missingPicture("http://h/a b,c)'\"");
    std::vector<TextEdit> edits;
    for (const Reference &reference : scan.references)
        edits.push_back({reference.at, spelled(reference, missing, html)});
    const std::string made = edited(html, edits);
    EXPECT_THAT(scanPage(made, "page").references, IsEmpty());
    std::size_t count = 0;
    for (std::size_t at = 0; (at = made.find(missing, at)) != std::string::npos; ++at)
        ++count;
    EXPECT_EQ(count, 5U);
}

TEST(BannerFor, saysWhatIsKnown) {
    BannerFacts facts;
    facts.caches = {"Chrome Cache: /e/<b>/Cache"};
    facts.address = "http://h/";
    facts.pageDate = "01/02/2026 10:00:00 UTC";
    facts.oldestPart = "01/01/2026 UTC";
    facts.newestPart = "03/02/2026 UTC";
    facts.found = 3;
    facts.parts = 1200;
    const std::string banner = bannerFor(facts);
    EXPECT_TRUE(isAscii(banner));
    const std::string plain = replaceAll(banner, "&#32;", " ");
    EXPECT_THAT(plain, HasSubstr("From Chrome Cache: /e/&#60;b&#62;/Cache"));
    EXPECT_THAT(plain, HasSubstr("Page of 01/02/2026 10:00:00 UTC"));
    EXPECT_THAT(plain, HasSubstr("of 01/01/2026 UTC to 03/02/2026 UTC"));
    EXPECT_THAT(plain, HasSubstr("3 of "));
    EXPECT_THAT(banner, Not(HasSubstr("<script")));
    // Whatever is important in an attribute, no rule of the banner's puts it away.
    EXPECT_THAT(banner, Not(HasSubstr("all:initial!important")));
    EXPECT_THAT(banner, Not(HasSubstr("display:block!important")));
    EXPECT_THAT(scanPage(banner, "page").references, IsEmpty());
    EXPECT_THAT(scanPage(banner, "page").disarming, IsEmpty());
}

} // namespace
} // namespace nv
