#include "base/Text.h"
#include "rebuild/exact/RecordAddress.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

using testing::ElementsAre;

AddressMatch match(const std::string &asked, const std::string &wanted) {
    return ComparedAddress(asked).to(ComparedAddress(wanted));
}

/// Of a reader that undoes escapes: what its row says of the address that the browser has kept.
AddressMatch ofDecoded(const std::string &kept, const std::string &wanted) {
    return match(askedAddress(percentDecode(kept), kept), wanted);
}

TEST(RecordAddress, isTheRawValueWhereItsEscapesWereUndone) {
    EXPECT_EQ(askedAddress("http://h/caf\u00E9", "http://h/caf%C3%A9"), "http://h/caf%C3%A9");
    EXPECT_EQ(askedAddress("http://h/a b", "Visited: anna@http://h/a%20b"), "http://h/a%20b");
    EXPECT_EQ(askedAddress("http://h/a", "http://h/a"), "http://h/a");
    EXPECT_EQ(askedAddress("http://h/a", ""), "http://h/a");
    EXPECT_EQ(askedAddress("https://h/a%20b", "1/0/_dk_https://h https://h https://h/a%20b"),
              "https://h/a%20b")
        << "a key says more than the address";
}

TEST(RecordAddress, losesTheNameOfTheBrowsersPart) {
    const auto asked = [](const std::string &key) { return askedAddress(key, key); };
    EXPECT_EQ(asked("HTTP:https://h/a"), "https://h/a");
    EXPECT_EQ(asked("HTTP:anon&uri=http://h/a"), "http://h/a");
    EXPECT_EQ(asked("HTTP:anon&uri=https://h/a"), "https://h/a");
    EXPECT_EQ(asked("HTTP:id=4&uri=http://h/a"), "HTTP:id=4&uri=http://h/a")
        << "the answer to a form that was sent is no answer to a reference";
    EXPECT_EQ(asked("HTTP:"), "HTTP:");
    EXPECT_EQ(asked("HTTP:anon&uri="), "HTTP:anon&uri=");
}

TEST(RecordAddress, isTheSameInOneNormalForm) {
    EXPECT_EQ(match("http://H:80/a/../b c", "http://h/b%20c"), AddressMatch::exact);
    EXPECT_EQ(match("http://h/a%2fb", "http://h/a%2Fb"), AddressMatch::decoded);
    EXPECT_EQ(match("http://h/%61", "http://h/a"), AddressMatch::decoded);
    EXPECT_EQ(match("http://h/a", "http://h/A"), AddressMatch::other);
    EXPECT_EQ(match("no address", "http://h/A"), AddressMatch::other);
    EXPECT_EQ(match("", "http://h/A"), AddressMatch::other);
}

TEST(RecordAddress, isAnotherWhereItsBytesAreKnownToDiffer) {
    EXPECT_EQ(ofDecoded("http://h/caf%C3%A9.png", "http://h/caf%C3%A9.png"), AddressMatch::exact);
    EXPECT_EQ(ofDecoded("http://h/caf%E9.png", "http://h/caf%C3%A9.png"), AddressMatch::other);
    EXPECT_EQ(ofDecoded("http://h/a%2Fb.png", "http://h/a/b.png"), AddressMatch::other);
    EXPECT_EQ(ofDecoded("http://h/a%3Fb.png", "http://h/a?b.png"), AddressMatch::other);
    EXPECT_EQ(ofDecoded("http://h/100%25.png", "http://h/100%25.png"), AddressMatch::exact);
    EXPECT_EQ(ofDecoded("http://h/?q=J%FCrgen", "http://h/?q=J%FCrgen"), AddressMatch::exact);
}

TEST(RecordAddress, mayBeTheSameWhereOnlyItsLettersAreKnown) {
    EXPECT_EQ(match("http://h/caf\u00E9.png", "http://h/caf%C3%A9.png"), AddressMatch::decoded);
    EXPECT_EQ(match("http://h/caf\u00E9.png", "http://h/caf%E9.png"), AddressMatch::decoded);
    EXPECT_EQ(match("http://h/caf\u00E8.png", "http://h/caf%E9.png"), AddressMatch::other);
    EXPECT_EQ(match("http://h/\u00E9/a%2Fb", "http://h/%C3%A9/a/b"), AddressMatch::other);
    EXPECT_EQ(match("http://h/\u00E9/a b", "http://h/%E9/a%20b"), AddressMatch::decoded);
}

TEST(RecordAddress, isLookedForInEachSpelling) {
    EXPECT_THAT(spellingsOf("http://h/a", false), ElementsAre("http://h/a"));
    EXPECT_THAT(spellingsOf("http://h/%E9%20b", false),
                ElementsAre("http://h/%E9%20b", "http://h/\u00E9 b"));
    EXPECT_THAT(spellingsOf("https://h/a", true),
                ElementsAre("https://h/a", "HTTP:https://h/a", "HTTP:anon&uri=https://h/a"));
    EXPECT_THAT(spellingsOf("http://h/a", true),
                ElementsAre("http://h/a", "HTTP:anon&uri=http://h/a"));
}

} // namespace
} // namespace nv
