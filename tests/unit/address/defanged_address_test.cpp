#include "address/DefangedAddress.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(DefangedAddress, canNotBeFollowedByAClick) {
    EXPECT_EQ(defangedAddress("http://www.example.com/a.html?b=c.d#e.f"),
              "hxxp://www[.]example[.]com/a.html?b=c.d#e.f");
    EXPECT_EQ(defangedAddress("HTTPS://User@Example.com:8080"), "hxxpS://User@Example[.]com:8080");
    EXPECT_EQ(defangedAddress("ftp://1.2.3.4/x"), "fxp://1[.]2[.]3[.]4/x");
    EXPECT_EQ(defangedAddress("chrome://settings/a.b"), "chrome[:]//settings/a.b");
}

TEST(DefangedAddress, addressesWithinItArentLiveEither) {
    EXPECT_EQ(defangedAddress("https://r.example/go?u=https://secretbank.example/a.b&v=c.d"),
              "hxxps://r[.]example/go?u=hxxps://secretbank[.]example/a.b&v=c.d");
    EXPECT_EQ(defangedAddress("http://r.example/?u=HTTPS%3A%2F%2Fa.b%2ec%2Fx.y&w"),
              "hxxp://r[.]example/?u=hxxpS%3A%2F%2Fa[.]b[%2e]c%2Fx.y&w");
    EXPECT_EQ(defangedAddress("http://r.example/?u=http%253a%252F%252Fa.b%252Fx"),
              "hxxp://r[.]example/?u=hxxp%253a%252F%252Fa[.]b%252Fx");
    EXPECT_EQ(defangedAddress("http://r.example/http://a.b/ftp:%2F%2Fc.d/e.f"),
              "hxxp://r[.]example/hxxp://a[.]b/fxp:%2F%2Fc[.]d/e.f");
    EXPECT_EQ(defangedAddress("r.example/?u=chrome%3A//a.b"), "r[.]example/?u=chrome[%3A]//a[.]b");
    EXPECT_EQ(defangedAddress("r.example/?u%3Dhttp%3A//a.b%253Dftp%253A//c.d"),
              "r[.]example/?u%3Dhxxp%3A//a[.]b%253Dfxp%253A//c[.]d");
}

TEST(DefangedAddress, brokenEscapesStand) {
    for (const char *text : {"a/%", "a/%3", "a/%3A", "a/%3A%2F", "a/%2525", "a/:%2", "a/::/::"})
        EXPECT_EQ(defangedAddress(text), text);
}

TEST(DefangedAddress, textsWithoutASchemeAreTakenForHosts) {
    EXPECT_EQ(defangedAddress("www.example.com/a.b"), "www[.]example[.]com/a.b");
    EXPECT_EQ(defangedAddress(""), "");
    EXPECT_EQ(defangedAddress("http://"), "hxxp://");
    EXPECT_EQ(defangedAddress("://"), "[:]//");
}

} // namespace
} // namespace nv
