#include "readers/json/JsonSpans.h"

#include <gtest/gtest.h>

#include <string>

namespace nv {
namespace {

std::vector<JsonFound> objectsIn(std::string_view text, std::uint64_t offset) {
    std::vector<JsonFound> found;
    findJsonObjects(
        text, [offset](const auto &, std::uint64_t at) { return at == offset; },
        [&found](const JsonFound &object) {
            found.push_back(object);
            return true;
        });
    return found;
}

TEST(JsonSpans, tellsWhereMembersLie) {
    const std::string text =
        R"({"a": {"n\u0061me": "x\"y", "deep": {"n": 12}, "list": [1, {"z": 2}]}})";
    const auto found = objectsIn(text, text.find("{\"n"));
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].own.path, "a");
    ASSERT_EQ(found[0].above.size(), 1U);
    ASSERT_EQ(found[0].members.size(), 4U);
    EXPECT_EQ(found[0].members[0].path, "name");
    EXPECT_EQ(found[0].members[0].value, R"("x\"y")");
    EXPECT_EQ(jsonText(found[0].members[0].value), "x\"y");
    EXPECT_EQ(found[0].members[1].path, "deep.n");
    EXPECT_EQ(found[0].members[1].value, "12");
    EXPECT_EQ(found[0].members[2].path, "list.");
    EXPECT_EQ(found[0].members[3].path, "list..z");
}

TEST(JsonSpans, anObjectThatTheEndBreaksOffHasWhatStandsBefore) {
    const auto found = objectsIn(R"({"name": "Bar", "url": "http://cut)", 0);
    ASSERT_EQ(found.size(), 1U);
    ASSERT_EQ(found[0].members.size(), 1U);
    EXPECT_EQ(found[0].members[0].path, "name");
    EXPECT_TRUE(objectsIn("", 0).empty());
    EXPECT_TRUE(objectsIn("}]", 0).empty());
    EXPECT_EQ(objectsIn("{\"a\":\"\\", 0).size(), 1U);
}

TEST(JsonSpans, whatIsDeepOrLongEnds) {
    const std::string deep(100'000, '[');
    EXPECT_TRUE(objectsIn(deep, 5).empty());
    std::string many = "{";
    for (int i = 0; i < 20'000; ++i)
        many += "\"k\":1,";
    const auto found = objectsIn(many + "\"last\":2}", 0);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].members.size(), 5000U);
}

} // namespace
} // namespace nv
