#include "base/KeyedList.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

KeyedList<std::string> threeNames() {
    KeyedList<std::string> list;
    list.add("one", "a");
    list.add("two");
    list.add("three", "C");
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
    EXPECT_EQ(list.count(), 3u);
    EXPECT_EQ(list.item(1), "one");
    EXPECT_EQ(list.item(3), "three");
    EXPECT_EQ(list.item("A"), "one");
    EXPECT_EQ(list.item("c"), "three");
    EXPECT_EQ(list.positionOf("c"), 3u);
    EXPECT_EQ(list.positionOf("b"), std::nullopt);
}

TEST(KeyedList, anEmptyKeyIsNoKey) {
    auto list = threeNames();
    list.add("four", "");
    EXPECT_EQ(list.count(), 4u);
    EXPECT_EQ(list.positionOf(""), std::nullopt);
    EXPECT_THROW(list.item(""), std::out_of_range);
}

TEST(KeyedList, refusesATakenKeyAndStaysAsItWas) {
    auto list = threeNames();
    EXPECT_THROW(list.add("other", "A"), std::invalid_argument);
    EXPECT_EQ(joined(list), "one two three ");
}

TEST(KeyedList, removesByPositionAndByKeyAndKeysFollow) {
    auto list = threeNames();
    list.remove(2);
    EXPECT_EQ(list.item("c"), "three");
    list.remove("A");
    EXPECT_EQ(joined(list), "three ");
    EXPECT_EQ(list.positionOf("a"), std::nullopt);
    EXPECT_EQ(list.positionOf("c"), 1u);
    list.add("one again", "a");
    EXPECT_EQ(list.item("a"), "one again");
}

TEST(KeyedList, throwsForWhatIsNotThere) {
    auto list = threeNames();
    EXPECT_THROW(list.item(0), std::out_of_range);
    EXPECT_THROW(list.item(4), std::out_of_range);
    EXPECT_THROW(list.item("nobody"), std::out_of_range);
    EXPECT_THROW(list.remove(4), std::out_of_range);
    EXPECT_THROW(list.remove("nobody"), std::out_of_range);
}

TEST(KeyedList, isEmptyAndFreeOfKeysAfterClear) {
    auto list = threeNames();
    list.clear();
    EXPECT_EQ(list.count(), 0u);
    list.add("new", "a");
    EXPECT_EQ(list.item("a"), "new");
}

} // namespace
} // namespace nv
