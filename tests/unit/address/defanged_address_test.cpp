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

TEST(DefangedAddress, textsWithoutASchemeAreTakenForHosts) {
    EXPECT_EQ(defangedAddress("www.example.com/a.b"), "www[.]example[.]com/a.b");
    EXPECT_EQ(defangedAddress(""), "");
    EXPECT_EQ(defangedAddress("http://"), "hxxp://");
    EXPECT_EQ(defangedAddress("://"), "[:]//");
}

} // namespace
} // namespace nv
