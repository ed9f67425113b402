#include "readers/Dissection.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(ParseURLFromRawURL, findsTheUrlAfterWhatLeadsIt) {
    EXPECT_EQ(ParseURLFromRawURL("Visited: user@http://x/"), "http://x/");
    EXPECT_EQ(ParseURLFromRawURL(":2013031020130311: -@:Host: www.x.com"), "www.x.com");
    EXPECT_EQ(ParseURLFromRawURL("Visited: u@file:///C:/a"), "file:///C:/a");
    EXPECT_EQ(ParseURLFromRawURL("Visited: u@res://ieframe.dll/x"), "res://ieframe.dll/x");
    EXPECT_EQ(ParseURLFromRawURL("user@about:blank"), "about:blank");
    EXPECT_EQ(ParseURLFromRawURL("plain"), "plain");
    EXPECT_EQ(ParseURLFromRawURL(""), "");
}

// An address within an address is part of it: nobody opened it.
TEST(ParseURLFromRawURL, beginsAtTheProtocolThatStandsFirst) {
    for (const char *url :
         {"http://www.google.com/url?q=https://twitter.com/x", "HTTPS://x/?u=http://y/",
          "http://x/file:///C:/a", "file:///C:/saved/http:/x", "res://a.dll/x#https://y/",
          "https://x/?to=user@host", "http://x/?a=:Host: y", "https://x/res:y?file:z"}) {
        EXPECT_EQ(ParseURLFromRawURL(url), url);
        EXPECT_EQ(ParseURLFromRawURL(std::string("Visited: user@") + url), url);
        EXPECT_EQ(ParseURLFromRawURL(std::string("Visited: user@:Host: ") + url), url);
    }
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

TEST(ParseUserFromURL, takesNoUserOfMoreThanThirtyCharactersAfterADateRange) {
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
