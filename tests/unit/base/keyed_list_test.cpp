#include "base/KeyedList.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

KeyedList<std::string> threeNames() {
    KeyedList<std::string> list;
    list.Add("one", "a");
    list.Add("two");
    list.Add("three", "C");
    return list;
}

std::string joined(const KeyedList<std::string> &list) {
    std::string text;
    for (const std::string &entry : list)
        text += entry + " ";
    return text;
}

TEST(KeyedList, findsByPositionFromOneAndByKeyInEitherCase) {
    const auto list = threeNames();
    EXPECT_EQ(list.Count(), 3u);
    EXPECT_EQ(list.Item(1), "one");
    EXPECT_EQ(list.Item(3), "three");
    EXPECT_EQ(list.Item("A"), "one");
    EXPECT_EQ(list.Item("c"), "three");
    EXPECT_EQ(list.positionOf("c"), 3u);
    EXPECT_EQ(list.positionOf("b"), std::nullopt);
}

TEST(KeyedList, anEmptyKeyIsNoKey) {
    auto list = threeNames();
    list.Add("four", "");
    EXPECT_EQ(list.Count(), 4u);
    EXPECT_EQ(list.positionOf(""), std::nullopt);
    EXPECT_THROW(list.Item(""), std::out_of_range);
}

TEST(KeyedList, refusesATakenKeyAndStaysAsItWas) {
    auto list = threeNames();
    EXPECT_THROW(list.Add("other", "A"), std::invalid_argument);
    EXPECT_EQ(joined(list), "one two three ");
}

TEST(KeyedList, insertsBeforeAndAfterAndKeysFollow) {
    auto list = threeNames();
    list.AddBefore(1, "zero", "z");
    list.AddAfter(2, "half", "h");
    EXPECT_EQ(joined(list), "zero one half two three ");
    EXPECT_EQ(list.Item("a"), "one");
    EXPECT_EQ(list.Item("h"), "half");
    EXPECT_EQ(list.Item("c"), "three");
}

TEST(KeyedList, removesByPositionAndByKeyAndKeysFollow) {
    auto list = threeNames();
    list.Remove(2);
    EXPECT_EQ(list.Item("c"), "three");
    list.Remove("A");
    EXPECT_EQ(joined(list), "three ");
    EXPECT_EQ(list.positionOf("a"), std::nullopt);
    EXPECT_EQ(list.positionOf("c"), 1u);
    list.Add("one again", "a");
    EXPECT_EQ(list.Item("a"), "one again");
}

TEST(KeyedList, throwsForWhatIsNotThere) {
    auto list = threeNames();
    EXPECT_THROW(list.Item(0), std::out_of_range);
    EXPECT_THROW(list.Item(4), std::out_of_range);
    EXPECT_THROW(list.Item("nobody"), std::out_of_range);
    EXPECT_THROW(list.Remove(4), std::out_of_range);
    EXPECT_THROW(list.Remove("nobody"), std::out_of_range);
    EXPECT_THROW(list.AddAfter(4, "x"), std::out_of_range);
}

TEST(KeyedList, isEmptyAndFreeOfKeysAfterClear) {
    auto list = threeNames();
    list.Clear();
    EXPECT_EQ(list.Count(), 0u);
    list.Add("new", "a");
    EXPECT_EQ(list.Item("a"), "new");
}

} // namespace
} // namespace nv
