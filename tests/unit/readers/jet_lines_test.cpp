#include "readers/results/JetLines.h"

#include <gtest/gtest.h>

#include <optional>

namespace nv {
namespace {

struct JetLinesTest : testing::Test {
    JetLines lines{2,
                   {[this](const JetHead &line) { head = line; },
                    [this](const JetRow &line) {
                        rows.push_back(line);
                        return goesOn;
                    }}};
    std::optional<JetHead> head;
    std::vector<JetRow> rows;
    bool goesOn = true;
    static constexpr std::string_view kHead = R"({"rows":28,"kinds":["text",null]})";
};

TEST_F(JetLinesTest, makesRows) {
    EXPECT_TRUE(lines.take(kHead));
    EXPECT_TRUE(lines.take(
        R"({"row":["caf\u00e9\u0000",-1.5],"place":4110,"cut":[0,7],"at":[[4200,5],null]})"));
    EXPECT_TRUE(lines.take(R"({"row":[true,null],"place":4112})"));
    EXPECT_TRUE(lines.take(R"({"damage":"torn","place":4114})"));
    EXPECT_FALSE(lines.hasEnded());
    EXPECT_TRUE(lines.take(R"({"end":true,"deleted":3,"damage":"cut"})"));
    EXPECT_TRUE(lines.hasEnded());
    EXPECT_EQ(lines.failure(), "");
    EXPECT_EQ(lines.damage(), "cut");
    EXPECT_EQ(lines.deletedRows(), 3U);
    EXPECT_EQ(head->rows, 28U);
    EXPECT_EQ(head->kinds, (std::vector<std::string>{"text", ""}));
    ASSERT_EQ(rows.size(), 3U);
    EXPECT_EQ(rows[0].cells, (std::vector<JetCell>{"caf\u00e9\u2400", -1.5}));
    EXPECT_EQ(rows[0].place, 4110U);
    EXPECT_EQ(rows[0].cut, std::vector<std::size_t>{0});
    EXPECT_EQ(rows[0].places.at(0), std::pair(std::uint64_t{4200}, std::uint64_t{5}));
    EXPECT_EQ(rows[0].places.at(1).second, 0U);
    EXPECT_EQ(rows[1].places.size(), 2U) << "a program of an earlier build";
    EXPECT_EQ(rows[1].cells, (std::vector<JetCell>{true, {}}));
    EXPECT_EQ(rows[2].damage, "torn");
}

TEST_F(JetLinesTest, endsWhereTheProgramSaysSo) {
    EXPECT_FALSE(lines.take(R"({"error":"no table"})"));
    EXPECT_EQ(lines.failure(), "no table");
}

TEST_F(JetLinesTest, endsWhenNothingMoreIsWanted) {
    goesOn = false;
    EXPECT_TRUE(lines.take(kHead));
    EXPECT_FALSE(lines.take(R"({"row":[null,null]})"));
    EXPECT_EQ(lines.failure(), "");
}

TEST_F(JetLinesTest, refusesWhatMakesNoSense) {
    const std::vector<std::vector<std::string_view>> wrong = {
        {""},
        {"{"},
        {"[]"},
        {"null"},
        {R"({"error":""})"},
        {R"({"rows":1,"kinds":["text"]})"},
        {R"({"rows":1})"},
        {kHead, R"({"row":[1]})"},
        {kHead, R"({"place":1})"},
        {kHead, kHead},
        {kHead, "\xFF"},
        {kHead, R"({"end":true})", R"({"row":[1,2]})"}};
    for (const auto &input : wrong) {
        JetLines each(2, {[](const JetHead &) {}, [](const JetRow &) { return true; }});
        for (std::size_t i = 0; i < input.size(); ++i)
            EXPECT_EQ(each.take(input[i]), i + 1 < input.size()) << input[i];
        EXPECT_EQ(each.failure(), "what the program norvelane-jet wrote makes no sense");
    }
}

TEST_F(JetLinesTest, takesNumbersOfNoSenseForNone) {
    EXPECT_TRUE(lines.take(R"({"rows":-1,"kinds":[1,[]]})"));
    EXPECT_EQ(head->rows, 0U);
    EXPECT_EQ(head->kinds, (std::vector<std::string>{"", ""}));
    EXPECT_TRUE(lines.take(R"({"row":[[1],{}],"place":"x","cut":[-1,"a"]})"));
    EXPECT_EQ(rows.at(0).cells, (std::vector<JetCell>{{}, {}}));
    EXPECT_TRUE(rows.at(0).cut.empty());
}

} // namespace
} // namespace nv
