#include "rebuild/Scripts.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(StriptScriptTags, putsScriptsIntoComments) {
    EXPECT_EQ(striptScriptTags("<p><SCRIPT src=a.js>x()</Script></p>"),
              "<p><!-- <script src=a.js>x()</script> --></p>");
    EXPECT_EQ(striptScriptTags("<noscript>no</noscript>"), "<!-- <noscript>no</noscript> -->");
}

TEST(StriptScriptTags, takesTheirTypeAway) {
    EXPECT_EQ(striptScriptTags("type=\"Text/JavaScript\""), "type=\"\"");
}

TEST(StriptScriptTags, mendsTheEndsOfCommentsThatAdjoin) {
    EXPECT_EQ(striptScriptTags("--> -->"), " -->");
    EXPECT_EQ(striptScriptTags("-->  -->"), " -->");
    EXPECT_EQ(striptScriptTags("--> --> -->"), " --> -->");
    EXPECT_EQ(striptScriptTags("<script>x</script> -->"), // a script that was in a comment
              "<!-- <script>x</script>  -->");
}

TEST(StriptScriptTags, switchesOnloadOffWhereverItStands) {
    EXPECT_EQ(striptScriptTags("<body onLoad='x()'> window.onload = y"),
              "<body void='x()'> window.void = y");
}

TEST(StriptScriptTags, commentsAPageTwiceWhenItIsRunTwice) {
    const std::string once = striptScriptTags("<script>x</script>");
    EXPECT_EQ(striptScriptTags(once), "<!-- <!-- <script>x</script>  -->");
}

TEST(StriptScriptTags, leavesTheRestAlone) {
    EXPECT_EQ(striptScriptTags("<p>plain --> text</p>"), "<p>plain --> text</p>");
    EXPECT_EQ(striptScriptTags(""), "");
}

TEST(NeutraliseEventHandlers, switchesFourOfThemOff) {
    EXPECT_EQ(neutraliseEventHandlers("<a onload=1 onUnload=2 ONMOUSEOVER=3 onmouseout=4>"),
              "<a void=1 void=2 void=3 void=4>");
    EXPECT_EQ(neutraliseEventHandlers("<a onclick=1\tonload=2 xonload=3 onload =4>"),
              "<a onclick=1\tonload=2 xonload=3 onload =4>");
}

} // namespace
} // namespace nv
