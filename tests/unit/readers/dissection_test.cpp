#include "readers/Dissection.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(ParseURLFromRawURL, findsTheUrlAfterWhatLeadsIt) {
    EXPECT_EQ(parseURLFromRawURL("Visited: user@http://x/"), "http://x/");
    EXPECT_EQ(parseURLFromRawURL(":2013031020130311: -@:Host: www.x.com"), "www.x.com");
    EXPECT_EQ(parseURLFromRawURL("Visited: u@file:///C:/a"), "file:///C:/a");
    EXPECT_EQ(parseURLFromRawURL("Visited: u@res://ieframe.dll/x"), "res://ieframe.dll/x");
    EXPECT_EQ(parseURLFromRawURL("user@about:blank"), "about:blank");
    EXPECT_EQ(parseURLFromRawURL("plain"), "plain");
    EXPECT_EQ(parseURLFromRawURL(""), "");
}

// An address within an address is part of it: nobody opened it.
TEST(ParseURLFromRawURL, beginsAtTheProtocolThatStandsFirst) {
    for (const char *url :
         {"http://www.google.com/url?q=https://twitter.com/x", "HTTPS://x/?u=http://y/",
          "http://x/file:///C:/a", "file:///C:/saved/http:/x", "res://a.dll/x#https://y/",
          "https://x/?to=user@host", "http://x/?a=:Host: y", "https://x/res:y?file:z"}) {
        EXPECT_EQ(parseURLFromRawURL(url), url);
        EXPECT_EQ(parseURLFromRawURL(std::string("Visited: user@") + url), url);
        EXPECT_EQ(parseURLFromRawURL(std::string("Visited: user@:Host: ") + url), url);
    }
}

TEST(ParseURLFromRawURL, passesOverMarksThatEndTheText) {
    EXPECT_EQ(parseURLFromRawURL("user@:Host: "), ":Host: ");
    EXPECT_EQ(parseURLFromRawURL("user@"), "user@");
}

TEST(ParseUserFromURL, knowsThePrefixesOfTheIndexes) {
    EXPECT_EQ(parseUserFromURL("Visited: user@http://x/"), "user");
    EXPECT_EQ(parseUserFromURL("Cookie:user@host.com/"), "user");
    EXPECT_EQ(parseUserFromURL(":2009010120090108: user@http://host/"), "user");
    EXPECT_EQ(parseUserFromURL("  someone.else@host/path  "), "someone.else");
    EXPECT_EQ(parseUserFromURL("Visited: J\u00fcrgen@http://x/"), "J\u00fcrgen");
}

TEST(ParseUserFromURL, findsNoneInShortTextsOrWithoutTheSign) {
    EXPECT_EQ(parseUserFromURL("ab@34567890123"), ""); // 14 characters
    EXPECT_EQ(parseUserFromURL("ab@345678901234"), "ab");
    EXPECT_EQ(parseUserFromURL("http://host/without/user"), "");
}

TEST(ParseUserFromURL, takesNoUserOfMoreThanThirtyCharactersAfterADateRange) {
    const std::string thirty(30, 'u');
    EXPECT_EQ(parseUserFromURL(":2009010120090108: " + thirty + "@http://x/"), thirty);
    EXPECT_EQ(parseUserFromURL(":2009010120090108: " + thirty + "u@http://x/"), "");
}

TEST(GetURLProtocol, takesTheWordBeforeTheColon) {
    EXPECT_EQ(getURLProtocol("http://x/"), "http");
    EXPECT_EQ(getURLProtocol("user@http://x/"), "http");
    EXPECT_EQ(getURLProtocol("about:blank"), "about");
    EXPECT_EQ(getURLProtocol("C:/temp"), "C");
    EXPECT_EQ(getURLProtocol("place:folder=X"), "place");
    EXPECT_EQ(getURLProtocol("javascript:x"), "");
    EXPECT_EQ(getURLProtocol("nothing"), "");
    EXPECT_EQ(getURLProtocol(""), "");
}

TEST(ParseHost, leavesOutUserPortAndPath) {
    EXPECT_EQ(parseHost("http://u:p@www.x.com:8080/a?b"), "www.x.com");
    EXPECT_EQ(parseHost("http://x.com?b=/"), "x.com");
    EXPECT_EQ(parseHost("http://[::1]:80/"), "[::1]");
    EXPECT_EQ(parseHost("http://[::1"), "");
    EXPECT_EQ(parseHost("file:///C:/a"), "");
    EXPECT_EQ(parseHost("about:blank"), "");
}

TEST(ParametersOf, takesWhatFollowsTheFirstQuestionMark) {
    EXPECT_EQ(parametersOf("http://x/?a=b?c"), "a=b?c");
    EXPECT_EQ(parametersOf("http://x/?"), "");
    EXPECT_EQ(parametersOf("http://x/"), "");
}

} // namespace
} // namespace nv
