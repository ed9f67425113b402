#include "rebuild/exact/BasePolicy.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(BasePolicy, tellsTheSourcesOfItsFirstBaseUri) {
    EXPECT_EQ(baseSourcesOf("default-src *; \tBASE-URI  'self' a.example ; base-uri 'none'"),
              "'self' a.example");
    EXPECT_EQ(baseSourcesOf("base-uri"), "");
    EXPECT_EQ(baseSourcesOf("base-uris 'none'; x base-uri"), std::nullopt);
    EXPECT_EQ(baseSourcesOf(""), std::nullopt);
}

TEST(BasePolicy, readsEachPolicyOfAnAnswer) {
    EXPECT_EQ(baseSourcesIn("HTTP/1.1 200 OK\r\ncontent-security-policy: base-uri a, img-src *\r\n"
                            "Content-Security-Policy-Report-Only: base-uri b\r\n"
                            "Content-Security-Policy: base-uri c\r\n"),
              (std::vector<std::string>{"a", "c"}));
}

struct AllowedCase {
    const char *sources;
    const char *base;
    bool isAllowed;
};

TEST(BasePolicy, allowsWhatASourceMatches) {
    for (const AllowedCase &each : {
             AllowedCase{"'none'", "https://host/", false},
             {"", "https://host/", false},
             {"'self'", "https://host/x/", true},
             {"'SELF'", "https://host:444/", false},
             {"'self'", "http://host/", false},
             {"'none' 'self'", "https://host/", true},
             {"'nonce-host'", "https://host/", false},
             {"*", "http://other/", true},
             {"*", "ftp://other/", false},
             {"https:", "https://other/", true},
             {"http:", "https://other/", true},
             {"https:", "http://other/", false},
             {"other", "https://OTHER/", true},
             {"other", "http://other/", false},
             {"http://other", "https://other/", true},
             {"*.other", "https://a.other/", true},
             {"*.other", "https://other/", false},
             {"other:8080", "https://other:8080/", true},
             {"other", "https://other:8080/", false},
             {"other:*", "https://other:8080/", true},
             {"other:443", "https://other/", true},
             {"other/a/", "https://other/a/b", true},
             {"other/a", "https://other/a/b", false},
             {"https://[::1]:1/", "https://[::1]:1/", true},
         })
        EXPECT_EQ(isBaseAllowed({each.sources}, *WebAddress::parsed(each.base),
                                *WebAddress::parsed("https://host/dir/page.html")),
                  each.isAllowed)
            << each.sources << " " << each.base;
}

TEST(BasePolicy, eachPolicyHasToAllowIt) {
    const auto base = *WebAddress::parsed("https://host/");
    EXPECT_TRUE(isBaseAllowed({}, base, base));
    EXPECT_TRUE(isBaseAllowed({"host", "*"}, base, base));
    EXPECT_FALSE(isBaseAllowed({"host", "other"}, base, base));
}

} // namespace
} // namespace nv
