#include "address/RegisteredDomain.h"

#include <gtest/gtest.h>

#include <string>

namespace nv {
namespace {

TEST(RegisteredDomain, isWhatStandsBelowAPublicSuffix) {
    EXPECT_EQ(registeredDomain("www.harbour-news.com"), "harbour-news.com");
    EXPECT_EQ(registeredDomain("harbour-news.com"), "harbour-news.com");
    EXPECT_EQ(registeredDomain("a.b.c.Example.CO.UK"), "example.co.uk");
    EXPECT_EQ(registeredDomain("www.example.co.uk."), "example.co.uk");
    EXPECT_EQ(registeredDomain("xn--bcher-kva.de"), "xn--bcher-kva.de");
    EXPECT_EQ(registeredDomain("www.b\xC3\xBC"
                               "cher.de"),
              "b\xC3\xBC"
              "cher.de");
    // Suffixes that nobody knows are of one label.
    EXPECT_EQ(registeredDomain("mail.harbour.intranet"), "harbour.intranet");
}

TEST(RegisteredDomain, sitesOfOneKeeperAreTold) {
    EXPECT_EQ(registeredDomain("ada.github.io"), "ada.github.io");
    EXPECT_EQ(registeredDomain("www.ada.github.io"), "ada.github.io");
}

TEST(RegisteredDomain, hostsWithoutOneStandForThemselves) {
    for (const char *host : {"", "localhost", "1.2.3.4", "[2001:db8::1]", "2001:db8::1", "co.uk",
                             "com", "host:8080", ".com", "a b.com", "github.io"})
        EXPECT_EQ(registeredDomain(host), host);
    EXPECT_EQ(registeredDomain("LOCALHOST"), "localhost");
    EXPECT_EQ(registeredDomain("..."), "");
}

TEST(RegisteredDomain, hostileHostsAreNoNames) {
    const std::string bytes = "\xFF\xFE.com";
    EXPECT_EQ(registeredDomain(bytes), bytes);
    const std::string cut("www.exam\0ple.com", 16);
    EXPECT_EQ(registeredDomain(cut), cut);
    const std::string labels = [] {
        std::string text;
        for (int i = 0; i < 100'000; ++i)
            text += "a.";
        return text + "com";
    }();
    EXPECT_EQ(registeredDomain(labels), labels);
}

} // namespace
} // namespace nv
