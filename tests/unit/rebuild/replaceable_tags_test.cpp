#include "rebuild/ReplaceableTags.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(IsReplaceablePicture, looksAtTheLastFourCharacters) {
    EXPECT_TRUE(isReplaceablePicture("http://host/a.GIF"));
    EXPECT_TRUE(isReplaceablePicture("x.jpeg")); // "jpeg" itself
    EXPECT_TRUE(isReplaceablePicture("picture?type=jpeg"));
    EXPECT_FALSE(isReplaceablePicture("a.png?x"));
    EXPECT_FALSE(isReplaceablePicture("page.html"));
    EXPECT_FALSE(isReplaceablePicture("ab.js"));
}

TEST(IsReplaceablePicture, knowsNoShortTags) {
    EXPECT_FALSE(isReplaceablePicture("jpeg"));
    EXPECT_FALSE(isReplaceablePicture(".gif"));
    EXPECT_TRUE(isReplaceablePicture("a.gif"));
    EXPECT_FALSE(isReplaceablePicture(""));
    EXPECT_FALSE(isReplaceablePicture("\xC3\xA4.js")); // 4 characters in 5 bytes
}

TEST(IsReplaceablePicture, takesWhatFollowsTheFirstPointOfTheFour) {
    EXPECT_FALSE(isReplaceablePicture("name.a.b"));
    EXPECT_TRUE(isReplaceablePicture("name.a.b", "a.b;"));
}

TEST(IsReplaceableHREF, goesByTheFileExtension) {
    EXPECT_TRUE(isReplaceableHREF("http://host/page.HTML"));
    EXPECT_TRUE(isReplaceableHREF("style.css"));
    EXPECT_FALSE(isReplaceableHREF("page.html?x=1"));
    EXPECT_FALSE(isReplaceableHREF("picture.gif"));
    EXPECT_FALSE(isReplaceableHREF("a.js"));
    EXPECT_FALSE(isReplaceableHREF("ab.js")); // 5 characters are too few for an extension
    EXPECT_TRUE(isReplaceableHREF("abc.js"));
}

TEST(ReplaceableTags, loseTheLastEntryOfAListWithoutClosingSemicolon) {
    EXPECT_TRUE(isReplaceablePicture("pic.gif", "gif;png"));
    EXPECT_FALSE(isReplaceablePicture("pic.png", "gif;png"));
    EXPECT_TRUE(isReplaceableHREF("page.php", "js;php;"));
    EXPECT_FALSE(isReplaceableHREF("page.php", "js;php"));
    EXPECT_FALSE(isReplaceableHREF("page.php", ""));
}

} // namespace
} // namespace nv
