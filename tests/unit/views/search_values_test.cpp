#include "MadeProject.h"
#include "db/marks/RecordTags.h"
#include "search/FoldedText.h"
#include "support/TestDoubles.h"
#include "views/limits/SearchValues.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

struct SearchValuesTest : testing::Test, test::MadeProject {
    SearchValuesTest() {
        addRow("Chrome Cache", "Edge", "www.harbour.example");
        addRow("Chrome Cache", "Edge", "WWW.Harbour.example");
        addRow("Chrome History", "", "forum.example");
        addRow("IE Daily History", "", "forum.example");
        addRow("Of another program", "", "");
    }
    void addRow(const std::string &kind, const std::string &browser, const std::string &host) {
        add({{"CacheType", kind}, {"Browser", browser}, {"Host", host}});
    }
    const SearchValues &load() {
        EXPECT_EQ(loadSearchValues(db(), task, values), Walk::Finished);
        return values;
    }
    static std::vector<std::string> linesOf(const NamedCounts &counts) {
        std::vector<std::string> lines;
        for (const auto &[name, rows] : counts)
            lines.push_back(fmt::format("{} {}", name, rows));
        return lines;
    }
    std::vector<std::string> advice(const std::string &text) {
        return searchAdvice(parseSearch(text), load());
    }

    test::MemoryTask task;
    SearchValues values;
};

TEST_F(SearchValuesTest, namesWithTheirRowsTheMostFrequentFirst) {
    load();
    EXPECT_TRUE(values.areAll);
    EXPECT_THAT(linesOf(values.hosts), ElementsAre("forum.example 2", "www.harbour.example 2"));
    EXPECT_THAT(linesOf(values.browsers), ElementsAre("Edge 2", "Chrome 1", "Internet Explorer 1"));
    EXPECT_THAT(linesOf(values.kinds),
                ElementsAre("history 2", "cache 2", "other 1", "Chrome Cache 2", "Chrome History 1",
                            "IE Daily History 1", "Of another program 1"));
    EXPECT_THAT(values.tags, IsEmpty());
    const NamedTag tag = NamedTags(db()).add(
        {.tagID = 0, .name = "Important", .color = {}, .position = 0, .note = {}});
    RecordTags(db()).set(tag.tagID, RowIds{1, 2, 4}, "", task);
    EXPECT_THAT(linesOf(load().tags), ElementsAre("Important 3"));
    EXPECT_NE(values.of(ClauseKind::tag), nullptr);
    EXPECT_EQ(values.of(ClauseKind::before), nullptr);
}

/// Each name that is offered finds the rows that stand beside it.
TEST_F(SearchValuesTest, aNameTakesItsRows) {
    load();
    for (const ClauseKind kind : {ClauseKind::host, ClauseKind::browser, ClauseKind::kind})
        for (const auto &[name, rows] : *values.of(kind)) {
            RowMatch match(parseSearch(std::string(operatorWord(kind)) + operatorValue(name)));
            EXPECT_EQ(scanRows(db(), match, task).ids.size(), static_cast<std::size_t>(rows))
                << name;
        }
}

TEST_F(SearchValuesTest, namesThatBeginSoComeFirst) {
    const NamedCounts names = {{"a.forum", 9}, {"Forum", 2}, {"shop", 8}, {"forum.b", 1}};
    EXPECT_THAT(linesOf(valuesWith(names, "FORUM", 10)),
                ElementsAre("Forum 2", "forum.b 1", "a.forum 9"));
    EXPECT_EQ(valuesWith(names, "", 3).size(), 3U);
    EXPECT_THAT(valuesWith(names, "none", 3), IsEmpty());
}

TEST_F(SearchValuesTest, theNearestNamesComeFirstThenTheMostFrequent) {
    const NamedCounts names = {{"shop.example", 90}, {"mail.example", 50}, {"harbour.example", 2}};
    EXPECT_THAT(linesOf(nearestValues(names, "harber", 2)),
                ElementsAre("harbour.example 2", "shop.example 90"));
    EXPECT_THAT(linesOf(nearestValues(names, "qqqq", 2)),
                ElementsAre("shop.example 90", "mail.example 50"));
    EXPECT_THAT(nearestValues({}, "x", 5), IsEmpty());
    EXPECT_EQ(nearestValues(names, std::string(100'000, 'h'), 5).size(), 3U);
}

TEST_F(SearchValuesTest, aNameThatNoRowHasIsTold) {
    EXPECT_THAT(advice("kind:foo"),
                ElementsAre("no row is of kind \"foo\"; there are: history (2), cache (2), other "
                            "(1), Chrome Cache (2), Chrome History (1), IE Daily History (1), Of "
                            "another program (1)"));
    EXPECT_THAT(advice("host:harbuor").front(),
                HasSubstr("there are: www.harbour.example (2), forum.example (2)"));
    EXPECT_THAT(advice("tide -browser:opera").front(),
                HasSubstr("no row is of a browser with \"opera\" in its name; there are: "));
    EXPECT_THAT(advice("tag:x"), ElementsAre("no row has a tag \"x\": the project has no tags"));
    EXPECT_THAT(advice("hashset:x"),
                ElementsAre("no row is in a hash set \"x\": no row was found in a hash set"));
    EXPECT_THAT(advice("kind:cookies").front(), HasSubstr("no row is of kind \"cookies\""));
    for (const char *found : {"kind:other", "kind:histor", "kind:CACHE", "browser:EDGE",
                              "host:forum", "tide", "before:1990"})
        EXPECT_THAT(advice(found), IsEmpty()) << found;
    EXPECT_THAT(advice("kind:foo host:bar"), testing::SizeIs(2));
}

TEST_F(SearchValuesTest, aTagWithoutRowsIsToldToo) {
    NamedTags(db()).add({.tagID = 0, .name = "Later", .color = {}, .position = 0, .note = {}});
    EXPECT_THAT(advice("tag:later"),
                ElementsAre("no row has a tag \"later\"; there are: Later (0)"));
    EXPECT_THAT(advice("-tag:*"), testing::SizeIs(1));
}

TEST_F(SearchValuesTest, manyNamesAreCounted) {
    for (int row = 0; row < 20; ++row)
        addRow("IE Cache", "", fmt::format("host{}.example", row));
    EXPECT_THAT(advice("host:zzz").front(), HasSubstr(" and 12 more"));
}

TEST_F(SearchValuesTest, whatLooksLikeAnOperatorIsTold) {
    EXPECT_THAT(advice("site:harbour").front(), HasSubstr("\"site:\" is no operator"));
    for (const char *text : {"http://a.example/", "12:30", "a:", ":a", "\"b c:d\""})
        EXPECT_THAT(advice(text), IsEmpty()) << text;
    EXPECT_FALSE(canBeAdvised(parseSearch("tide")));
    EXPECT_TRUE(canBeAdvised(parseSearch("tide site:x")));
    EXPECT_TRUE(canBeAdvised(parseSearch("tide tag:x")));
}

TEST_F(SearchValuesTest, nothingIsToldOfWhatIsNotKnown) {
    EXPECT_THAT(searchAdvice(parseSearch("kind:foo"), {}), IsEmpty());
}

} // namespace
} // namespace nv
