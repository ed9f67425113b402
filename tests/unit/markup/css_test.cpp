#include "markup/CssItems.h"
#include "markup/CssWriter.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

std::string written(std::string_view css) {
    CssWriter writer;
    for (const CssToken &token : cssTokens(css))
        writer.token(token);
    return writer.take();
}

TEST(CssTokens, sayWhereTheyStand) {
    const std::string css = "/* a */ b\\65 {c:ur\\6c( 'd\\'' )}";
    const auto tokens = cssTokens(css);
    std::vector<std::string> stands;
    for (const CssToken &token : tokens)
        stands.emplace_back(token.at.in(css));
    EXPECT_EQ(stands, (std::vector<std::string>{" ", "b\\65 ", "{", "c", ":", "ur\\6c(", " ",
                                                "'d\\''", " ", ")", "}"}));
    EXPECT_EQ(tokens[1].text, "be");
    EXPECT_EQ(tokens[5].text, "url");
    EXPECT_EQ(tokens[5].partner, 9U);
    EXPECT_EQ(tokens[2].partner, 10U);
    EXPECT_EQ(tokens[7].text, "d'");
}

TEST(CssTokens, closeOnlyWhatWasOpenedLast) {
    const auto tokens = cssTokens("{(]}");
    EXPECT_EQ(tokens[0].partner, 4U);
    EXPECT_EQ(tokens[1].partner, 4U);
}

TEST(CssTokens, ofAHugeTextAreReadInTime) {
    EXPECT_EQ(cssTokens(std::string(1'000'000, '(')).size(), 1'000'000U);
    std::string rules;
    for (int i = 0; i < 100'000; ++i)
        rules += "a:b{} ";
    const auto tokens = cssTokens(rules);
    EXPECT_EQ(cssBlock(tokens, {0, tokens.size()}).size(), 100'000U);
}

TEST(CssWriter, writesWhatIsReadAsTheSame) {
    for (const char *css : {"a/**/b",
                            "a/**/(b)",
                            "@a/**/b",
                            "#a/**/b",
                            "1/**/2",
                            "1/**/a",
                            "1px/**/a",
                            "1/**/%",
                            "-/**/-",
                            "-/**/a",
                            "#/**/a",
                            "@/**/a",
                            "./**/1",
                            "+/**/1",
                            "/\\*",
                            "$/**/=",
                            "|/**/|",
                            "3\\65-2",
                            "\\31 a",
                            "-\\31",
                            "\\-",
                            "--a",
                            "\"a\\22 \\A b\"",
                            "'</style>'",
                            "url(a\\)b)",
                            "a\xC3\xA9",
                            "<\\/style",
                            "< a",
                            "<a",
                            "&amp",
                            "&#0",
                            "[a]>b",
                            "u+1-2",
                            "u/**/+a",
                            "1e/**/3",
                            "1\\65 3",
                            "a(",
                            "1/**/-a",
                            "1-->",
                            "12/**/-->",
                            "!/**/important",
                            "--/**/>",
                            "a|b",
                            "*|*",
                            "a:b::c"}) {
        const auto read = [](std::string_view text) {
            std::vector<std::tuple<CssKind, std::string, std::string>> all;
            for (const CssToken &token : cssTokens(text))
                if (token.kind != CssKind::blank && token.kind != CssKind::cdc)
                    all.emplace_back(token.kind, token.text, token.unit);
            return all;
        };
        const std::string once = written(css);
        EXPECT_EQ(written(once), once) << css;
        if (std::string_view(css).find("url") == std::string_view::npos) {
            EXPECT_EQ(read(once), read(css)) << css << " became " << once;
        }
    }
}

TEST(CssWriter, writesOneBlankWhereWhatStoodBetweenTwoHasNoForm) {
    EXPECT_EQ(written("a url(b(c) d"), "a d");
    EXPECT_EQ(written("a /* b */ /* c */ d"), "a d");
    EXPECT_EQ(written("a 'b\n c"), "a c");
    EXPECT_EQ(written("<!-- -->"), " ");
}

TEST(CssWriter, writesNothingThatIsATagOrACharacterReference) {
    EXPECT_EQ(written("a{content:'</style><img src=x>&lt;'}"),
              "a{content:\"\\3c /style\\3e \\3c img src=x\\3e \\26 lt;\"}");
    EXPECT_EQ(written("a<b"), "a< b");
    EXPECT_EQ(written("&lt"), "&/**/lt");
    EXPECT_EQ(written("<!--a -->"), "a ");
    EXPECT_EQ(written("[[a]]>b"), "[[a]] >b");
    EXPECT_EQ(written("\xC3\xA9{}"), "\\e9 {}");
}

} // namespace
} // namespace nv
