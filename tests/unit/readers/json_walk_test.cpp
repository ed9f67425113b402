#include "readers/Limits.h"
#include "readers/json/JsonWalk.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nv {
namespace {

/// Writes each value down: "a.b=1".
struct Written final : JsonReceiver {
    void opened(const JsonPlace &place, bool isArray) override {
        lines.push_back(
            fmt::format("{}{}@{}", fmt::join(place.path, "."), isArray ? "[" : "{", place.offset));
    }
    void closed(const JsonPlace &place) override {
        lines.push_back(fmt::format("{}}}", fmt::join(place.path, ".")));
    }
    void scalar(const JsonPlace &place, JsonScalar value) override {
        lines.push_back(fmt::format("{}={}", fmt::join(place.path, "."), scalarText(value)));
    }
    std::vector<std::string> lines;
};

using Lines = std::vector<std::string>;

struct JsonWalk : testing::Test {
    const Lines &walk(const std::string &text, int steps = -1) {
        written.lines.clear();
        end = walkJson(viewOf(text), written, [&steps](double) { return steps-- != 0; });
        return written.lines;
    }
    Written written;
    JsonEnd end;
};

TEST_F(JsonWalk, givesEachValueWithItsPlace) {
    EXPECT_EQ(walk(R"({"a": {"b": [1, {"c": "x"}], "d": true}, "e": null, "f": 1.5})"),
              (Lines{"{@0", "a{@6", "a.b[@12", "a.b.=1", "a.b.{@16", "a.b..c=x", "a.b.}", "a.b}",
                     "a.d=yes", "a}", "e=", "f=1.5", "}"}));
    EXPECT_TRUE(end.isWhole);
    EXPECT_EQ(damageText(end), "");
}

TEST_F(JsonWalk, givesWhatStandsBeforeDamage) {
    EXPECT_EQ(walk(R"({"a": 1, "b": {"c": 2, "d)"), (Lines{"{@0", "a=1", "b{@14", "b.c=2"}));
    EXPECT_FALSE(end.isWhole);
    EXPECT_EQ(end.damagedAt, 25U);
    EXPECT_NE(damageText(end).find("byte 25"), std::string::npos);
    EXPECT_EQ(walk("[1, oops, 2]"), (Lines{"[@0", "=1"}));
    EXPECT_FALSE(end.isWhole);
}

TEST_F(JsonWalk, anythingElseIsDamage) {
    for (const char *text : {"", "no", "{", "\"", "{\"a\"", "{} {}", "SQLite format 3"}) {
        walk(text);
        EXPECT_FALSE(end.isWhole) << text;
        EXPECT_NE(damageText(end), "") << text;
    }
}

TEST_F(JsonWalk, anyCutEndsTheWalk) {
    const std::string text = R"({"a": [1, "x\u00e9", {"b": -1.5e3}], "c": {"d": false}})";
    walk(text);
    EXPECT_TRUE(end.isWhole);
    for (std::size_t length = 0; length < text.size(); ++length) {
        walk(text.substr(0, length));
        EXPECT_FALSE(end.isWhole) << length;
    }
}

TEST_F(JsonWalk, passesOverWhatIsNestedTooDeep) {
    const std::size_t depth = limits::kJsonDepth + 1000;
    std::string text =
        "{\"a\":" + std::string(depth, '[') + "7" + std::string(depth, ']') + ",\"b\":8}";
    const Lines lines = walk(text);
    EXPECT_TRUE(end.isWhole);
    EXPECT_EQ(end.tooDeep, 1U);
    EXPECT_NE(damageText(end).find("1 object within"), std::string::npos);
    EXPECT_EQ(lines[lines.size() - 2], "b=8");
    walk(std::string(1 << 20, '['));
    EXPECT_FALSE(end.isWhole);
}

TEST_F(JsonWalk, bytesThatAreNoUtf8AreShownAsSuch) {
    EXPECT_EQ(walk("{\"a\": \"gr\xF6\xDF"
                   "er\", \"b\": \"\uFFFDo\"}"),
              (Lines{"{@0", "a=gr??er", "b=\uFFFDo", "}"}));
    EXPECT_EQ(end.noUtf8, 2U);
    EXPECT_TRUE(end.isWhole);
    EXPECT_EQ(walk("{\"a\": \"x\\u0000y\"}").at(1), "a=x\u2400y");
}

TEST_F(JsonWalk, aCancelEndsIt) {
    std::string text = "[0";
    for (int i = 0; i < 5000; ++i)
        text += ",1";
    EXPECT_LT(walk(text + "]", 2).size(), 2000U);
    EXPECT_TRUE(end.isCancelled);
    EXPECT_EQ(damageText(end), "");
}

TEST_F(JsonWalk, numbersAreThoseOfTextsToo) {
    EXPECT_EQ(numberOf(std::string("13439778074459291")), 13439778074459291);
    EXPECT_EQ(numberOf(std::string("12x")), std::nullopt);
    EXPECT_EQ(numberOf(std::string("99999999999999999999")), std::nullopt);
    EXPECT_EQ(numberOf(1.3439778073330692e+16), 13439778073330692);
    EXPECT_EQ(numberOf(1e300), std::nullopt);
    EXPECT_EQ(numberOf(true), std::nullopt);
    EXPECT_EQ(walk("[18446744073709551615]").at(1), "=1.8446744073709552e+19");
}

} // namespace
} // namespace nv
