#include "rebuild/exact/TextEdit.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(TextEdit, leavesAllElse) {
    EXPECT_EQ(edited("abcdef", {{{4, 5}, "E"}, {{1, 2}, "BB"}}), "aBBcdEf");
    EXPECT_EQ(edited("abc", {}), "abc");
    EXPECT_EQ(edited("", {{{0, 0}, "x"}}), "x");
    EXPECT_EQ(edited("abc", {{{3, 3}, "d"}, {{0, 1}, ""}}), "bcd");
}

TEST(TextEdit, outerAndEarlierOnesStay) {
    EXPECT_EQ(edited("abcdef", {{{2, 3}, "x"}, {{1, 5}, "-"}}), "a-f");
    EXPECT_EQ(edited("abcdef", {{{1, 3}, "1"}, {{2, 4}, "2"}}), "a1def");
    EXPECT_EQ(edited("abcdef", {{{1, 5}, "-"}, {{5, 5}, "+"}, {{3, 3}, "in"}}), "a-+f");
}

TEST(TextEdit, whatIsPutInKeepsItsOrder) {
    EXPECT_EQ(edited("ab", {{{1, 1}, "1"}, {{1, 2}, "B"}, {{1, 1}, "2"}}), "a12B");
}

TEST(TextEdit, placesBeyondTheTextAreNone) {
    EXPECT_EQ(edited("ab", {{{1, 3}, "x"}, {{5, 5}, "y"}, {{2, 1}, "z"}}), "ab");
}

} // namespace
} // namespace nv
