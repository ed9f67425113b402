#include "rebuild/ReplaceableTags.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(IsReplaceablePicture, looksAtTheLastFourCharacters) {
    EXPECT_TRUE(IsReplaceablePicture("http://host/a.GIF"));
    EXPECT_TRUE(IsReplaceablePicture("x.jpeg")); // "jpeg" itself
    EXPECT_TRUE(IsReplaceablePicture("picture?type=jpeg"));
    EXPECT_FALSE(IsReplaceablePicture("a.png?x"));
    EXPECT_FALSE(IsReplaceablePicture("page.html"));
    EXPECT_FALSE(IsReplaceablePicture("ab.js"));
}

TEST(IsReplaceablePicture, knowsNoShortTags) {
    EXPECT_FALSE(IsReplaceablePicture("jpeg"));
    EXPECT_FALSE(IsReplaceablePicture(".gif"));
    EXPECT_TRUE(IsReplaceablePicture("a.gif"));
    EXPECT_FALSE(IsReplaceablePicture(""));
    EXPECT_FALSE(IsReplaceablePicture("\xC3\xA4.js")); // 4 characters in 5 bytes
}

TEST(IsReplaceablePicture, takesWhatFollowsTheFirstPointOfTheFour) {
    EXPECT_FALSE(IsReplaceablePicture("name.a.b"));
    EXPECT_TRUE(IsReplaceablePicture("name.a.b", "a.b;"));
}

TEST(IsReplaceableHREF, goesByTheFileExtension) {
    EXPECT_TRUE(IsReplaceableHREF("http://host/page.HTML"));
    EXPECT_TRUE(IsReplaceableHREF("style.css"));
    EXPECT_FALSE(IsReplaceableHREF("page.html?x=1"));
    EXPECT_FALSE(IsReplaceableHREF("picture.gif"));
    EXPECT_FALSE(IsReplaceableHREF("a.js"));
    EXPECT_FALSE(IsReplaceableHREF("ab.js")); // 5 characters are too few for an extension
    EXPECT_TRUE(IsReplaceableHREF("abc.js"));
}

TEST(ReplaceableTags, loseTheLastEntryOfAListWithoutClosingSemicolon) {
    EXPECT_TRUE(IsReplaceablePicture("pic.gif", "gif;png"));
    EXPECT_FALSE(IsReplaceablePicture("pic.png", "gif;png"));
    EXPECT_TRUE(IsReplaceableHREF("page.php", "js;php;"));
    EXPECT_FALSE(IsReplaceableHREF("page.php", "js;php"));
    EXPECT_FALSE(IsReplaceableHREF("page.php", ""));
}

} // namespace
} // namespace nv
