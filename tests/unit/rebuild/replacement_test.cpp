#include "base/Text.h"
#include "rebuild/Replacement.h"
#include "rebuild/Tags.h"

#include <gtest/gtest.h>

#include <chrono>
#include <random>
#include <string>
#include <vector>

namespace nv {
namespace {

/// The way it was laid down: the whole page, once for each reference and spelling.
std::string plainly(std::string text, const std::vector<Replacement> &replacements) {
    for (const Replacement &replacement : replacements)
        text = replacedEverywhere(text, replacement);
    return text;
}

TEST(Replacement, takesEverySpellingInThePage) {
    EXPECT_EQ(replacedEverywhere("<img SRC=\"a/B.gif\"><img src='a/b.gif'><img src=a/b.gif>"
                                 "<img src= a/b.gif><a href=\"a/b.gif\">",
                                 {"src=", "a/b.gif", "0000001.gif"}),
              "<img src=\"0000001.gif\"><img src='0000001.gif'><img src=0000001.gif>"
              "<img src= a/b.gif><a href=\"a/b.gif\">");
}

TEST(Replacement, ofAStyleWorksOnlyForTheRuleThatHoldsTheParenthesis) {
    const std::string style = "x{background: url(a/b.gif) }";
    EXPECT_EQ(replacedEverywhere(style, {"background: url", "a/b.gif", "0000001.gif"}), style);
    EXPECT_EQ(replacedEverywhere(style, {"url(", "a/b.gif", "0000001.gif"}),
              "x{background: url(0000001.gif) }");
}

TEST(Replacement, tellsWhichOnesChangedSomething) {
    const std::vector<Replacement> all = {{"src=", "a.gif", "0000001.gif"},
                                          {"background:url", "a.gif", "0000001.gif"},
                                          {"src=", "A.gif", "0000001.gif"},
                                          {"src=", "b.gif", "b.gif"}};
    const std::string page = "<img src=\"a.gif\" style=\"background:url(a.gif)\" src=\"b.gif\" >";
    EXPECT_EQ(replacedInOrder(page, all).made, (std::vector<bool>{true, false, false, false}));
    EXPECT_EQ(replacedInOrder(page + "\n", all).made,
              (std::vector<bool>{true, false, false, false}));
}

TEST(Replacement, takesBreaksAfterTheRuleAway) {
    EXPECT_EQ(replacedEverywhere("src=\na.gif src=\ra.gif", {"src=", "a.gif", "1.gif"}),
              "src=1.gif src=1.gif");
}

TEST(Replacement, ofAShortValueDamagesALongerOneAfterIt) {
    const std::vector<Replacement> order = {{"src=", "a", "0000001"},
                                            {"src=", "a.gif", "0000002.gif"}};
    EXPECT_EQ(replacedInOrder("src=\"a.gif\" src=\"a\" ", order).text,
              "src=\"0000001.gif\" src=\"0000001\" ");
}

TEST(Replacement, ofAValueThatItsOwnNameBeginsWithIsRepeated) {
    const std::vector<Replacement> twice(2, {"src=", "0", "0000001.gif"});
    EXPECT_EQ(replacedInOrder("src=\"0\"", twice).text, "src=\"0000001.gif000001.gif\"");
}

TEST(Replacement, ofAPageThatGrowsBeyondAllMeasureIsGivenUp) {
    const std::vector<Replacement> many(2, {"src=", "0", std::string(40U << 20, '0')});
    EXPECT_THROW(replacedInOrder("src=0 ", many), std::length_error);
}

class Pages {
  public:
    explicit Pages(unsigned seed) : m_random(seed) {}

    std::size_t below(std::size_t end) { return m_random() % end; }
    std::string any(const std::vector<std::string> &from) { return from[below(from.size())]; }
    std::string rule() {
        const URLTagDefs rules = urlTagDefs();
        return std::string(trim(rules.item(1 + below(rules.count())).tagDefinition));
    }
    std::string value() {
        static const std::vector<std::string> parts = {
            "a",   "A", "b",    "0", "0000001",        ".gif", "/", "src=", "url(", "value=",
            "src", ":", "href", "=", "background:url", "url",  "?", "(",    "1",    "\xE9"};
        std::string text;
        for (std::size_t left = 1 + below(4); left > 0; --left)
            text += any(parts);
        return text;
    }
    std::string page() {
        static const std::vector<std::string> between = {"",  "\"", "'",  "(", ")",  " ",
                                                         ">", " ",  "\"", "=", ": ", "background:"};
        std::string text;
        for (int i = 0; i < 60; ++i) {
            text += below(3) != 0 ? rule() : "";
            text += any(between) + value() + any(between);
        }
        return text;
    }
    std::vector<Replacement> replacements() {
        static const std::vector<std::string> names = {"0000001.gif", "0000002", "0000001.src",
                                                       "0000012.url", "0000012.href"};
        std::vector<Replacement> list;
        for (int i = 0; i < 25; ++i) {
            const std::string old = value();
            list.push_back({rule(), old, below(3) == 0 ? old : any(names)});
            if (below(4) == 0)
                list.push_back(list[below(list.size())]);
        }
        return list;
    }

  private:
    std::mt19937 m_random;
};

TEST(Replacement, inOrderAgreesWithThePlainWay) {
    for (unsigned seed = 1; seed <= 1000; ++seed) { // the same on every run
        Pages pages(seed);
        const std::string page = pages.page();
        const std::vector<Replacement> replacements = pages.replacements();
        ASSERT_EQ(replacedInOrder(page, replacements).text, plainly(page, replacements))
            << seed << ": " << page;
    }
}

TEST(Replacement, ofThousandsInALargePageIsAMatterOfAMoment) {
    std::string page;
    std::vector<Replacement> replacements;
    for (int i = 0; i < 5000; ++i) {
        const std::string name = "http://host/pictures/" + std::to_string(i) + "/b.gif";
        page += "<p>" + std::string(160, '.') + "<img src=\"" + name + "\" >";
        replacements.push_back({"src=", name, "0000001.gif"});
    }
    const auto begin = std::chrono::steady_clock::now();
    const std::string replaced = replacedInOrder(page, replacements).text;
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
    EXPECT_EQ(replaced.find("http"), std::string::npos);
}

} // namespace
} // namespace nv
