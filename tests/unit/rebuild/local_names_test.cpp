#include "rebuild/LocalNames.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(LocalNames, areTheLastSevenDigitsOfTheKey) {
    EXPECT_EQ(sidOf(UrlId{17}), "0000017");
    EXPECT_EQ(sidOf(UrlId{0}), "0000000");
    EXPECT_EQ(sidOf(UrlId{9'999'999}), "9999999");
    EXPECT_EQ(sidOf(UrlId{12'345'678}), "2345678");
}

TEST(LocalNames, takeExtensionsOfOneToFourLettersOrDigits) {
    EXPECT_EQ(localNameOf(UrlId{17}, "gif"), "0000017.gif");
    EXPECT_EQ(localNameOf(UrlId{17}, "j"), "0000017.j");
    EXPECT_EQ(localNameOf(UrlId{17}, "HTML"), "0000017.HTML");
    EXPECT_EQ(localNameOf(UrlId{17}, "mp3"), "0000017.mp3");
    EXPECT_EQ(localNameOf(UrlId{17}, ""), "0000017");
    EXPECT_EQ(localNameOf(UrlId{17}, "class"), "0000017");
}

TEST(LocalNames, neverLeadOutOfTheirFolder) {
    EXPECT_EQ(localNameOf(UrlId{17}, "/../"), "0000017");
    EXPECT_EQ(localNameOf(UrlId{17}, "a\\b"), "0000017");
    EXPECT_EQ(localNameOf(UrlId{17}, "\xC3\xA9"), "0000017");
    EXPECT_EQ(localNameOf(UrlId{17}, std::string_view("a\0b", 3)), "0000017");
}

} // namespace
} // namespace nv
