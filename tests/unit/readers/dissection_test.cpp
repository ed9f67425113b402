#include "readers/Dissection.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(ParseURLFromRawURL, takesTheFirstMarkInOrderOfTrial) {
    EXPECT_EQ(ParseURLFromRawURL("Visited: user@http://x/"), "http://x/");
    EXPECT_EQ(ParseURLFromRawURL("Visited: user@HTTPS://x/?u=http://y/"), "HTTPS://x/?u=http://y/");
    EXPECT_EQ(ParseURLFromRawURL("http://x/?u=https://y/"),
              "https://y/"); // "https:" is tried first
    EXPECT_EQ(ParseURLFromRawURL(":2013031020130311: -@:Host: www.x.com"), "www.x.com");
    EXPECT_EQ(ParseURLFromRawURL("Visited: u@file:///C:/a"), "file:///C:/a");
    EXPECT_EQ(ParseURLFromRawURL("Visited: u@res://ieframe.dll/x"), "res://ieframe.dll/x");
    EXPECT_EQ(ParseURLFromRawURL("user@about:blank"), "about:blank");
    EXPECT_EQ(ParseURLFromRawURL("plain"), "plain");
    EXPECT_EQ(ParseURLFromRawURL(""), "");
}

TEST(ParseURLFromRawURL, passesOverMarksThatEndTheText) {
    EXPECT_EQ(ParseURLFromRawURL("user@:Host: "), ":Host: ");
    EXPECT_EQ(ParseURLFromRawURL("user@"), "user@");
}

TEST(ParseUserFromURL, knowsThePrefixesOfTheIndexes) {
    EXPECT_EQ(ParseUserFromURL("Visited: user@http://x/"), "user");
    EXPECT_EQ(ParseUserFromURL("Cookie:user@host.com/"), "user");
    EXPECT_EQ(ParseUserFromURL(":2009010120090108: user@http://host/"), "user");
    EXPECT_EQ(ParseUserFromURL("  someone.else@host/path  "), "someone.else");
    EXPECT_EQ(ParseUserFromURL("Visited: J\u00fcrgen@http://x/"), "J\u00fcrgen");
}

TEST(ParseUserFromURL, findsNoneInShortTextsOrWithoutTheSign) {
    EXPECT_EQ(ParseUserFromURL("ab@34567890123"), ""); // 14 characters
    EXPECT_EQ(ParseUserFromURL("ab@345678901234"), "ab");
    EXPECT_EQ(ParseUserFromURL("http://host/without/user"), "");
}

TEST(ParseUserFromURL, takesNoUserOfMoreThanThirtyCharactersBehindADateRange) {
    const std::string thirty(30, 'u');
    EXPECT_EQ(ParseUserFromURL(":2009010120090108: " + thirty + "@http://x/"), thirty);
    EXPECT_EQ(ParseUserFromURL(":2009010120090108: " + thirty + "u@http://x/"), "");
}

TEST(GetURLProtocol, takesTheWordBeforeTheColon) {
    EXPECT_EQ(GetURLProtocol("http://x/"), "http");
    EXPECT_EQ(GetURLProtocol("user@http://x/"), "http");
    EXPECT_EQ(GetURLProtocol("about:blank"), "about");
    EXPECT_EQ(GetURLProtocol("C:/temp"), "C");
    EXPECT_EQ(GetURLProtocol("place:folder=X"), "place");
    EXPECT_EQ(GetURLProtocol("javascript:x"), "");
    EXPECT_EQ(GetURLProtocol("nothing"), "");
    EXPECT_EQ(GetURLProtocol(""), "");
}

TEST(ParseHost, leavesOutUserPortAndPath) {
    EXPECT_EQ(ParseHost("http://u:p@www.x.com:8080/a?b"), "www.x.com");
    EXPECT_EQ(ParseHost("http://x.com?b=/"), "x.com");
    EXPECT_EQ(ParseHost("http://[::1]:80/"), "[::1]");
    EXPECT_EQ(ParseHost("http://[::1"), "");
    EXPECT_EQ(ParseHost("file:///C:/a"), "");
    EXPECT_EQ(ParseHost("about:blank"), "");
}

TEST(ParametersOf, takesWhatFollowsTheFirstQuestionMark) {
    EXPECT_EQ(parametersOf("http://x/?a=b?c"), "a=b?c");
    EXPECT_EQ(parametersOf("http://x/?"), "");
    EXPECT_EQ(parametersOf("http://x/"), "");
}

} // namespace
} // namespace nv
