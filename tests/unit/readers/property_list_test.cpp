#include "readers/Limits.h"
#include "readers/plist/PropertyList.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

constexpr std::size_t kMost = 1 << 20;

std::string valuesOf(const std::string &dict) {
    const PropertyList list(dict, kMost);
    std::string values;
    eachValue(list.document().first_child(), [&](std::string_view key, pugi::xml_node value) {
        values += std::string(key) + "=" + textOf(value) + ";";
    });
    return values;
}

std::string failureOf(const std::string &xml, std::size_t most = kMost) {
    try {
        const PropertyList list(xml, most);
    } catch (const PropertyListDamage &damage) {
        return damage.what();
    }
    return "none";
}

std::string nested(int depth) {
    std::string xml;
    for (int i = 0; i < depth; ++i)
        xml += "<array>";
    for (int i = 0; i < depth; ++i)
        xml += "</array>";
    return xml;
}

TEST(PropertyLists, pairEachKeyWithTheElementAfterIt) {
    EXPECT_EQ(valuesOf("<dict>\n <key>a</key>\n <string>1</string>\n <key></key>"
                       "<string>2</string></dict>"),
              "a=1;=2;");
    EXPECT_EQ(valuesOf("<dict><key>a</key><!-- b --><string>1<!-- c -->2</string></dict>"),
              "a=12;");
    EXPECT_EQ(valuesOf("<dict><key/><string><![CDATA[<b>&amp;]]></string></dict>"), "=<b>&amp;;");
}

TEST(PropertyLists, takeNoKeyForAValue) {
    EXPECT_EQ(valuesOf("<dict><key>a</key><key>b</key><string>1</string><key>c</key></dict>"),
              "b=1;");
}

TEST(PropertyLists, keepWhiteSpaceThatIsTheWholeValue) {
    EXPECT_EQ(valuesOf("<dict><key>a</key><string>  </string></dict>"), "a=  ;");
    EXPECT_EQ(valuesOf("<dict><key>a</key><string/><key>b</key><string></string></dict>"),
              "a=;b=;");
}

TEST(PropertyLists, decodeTheirText) {
    EXPECT_EQ(
        valuesOf("<dict><key>a</key><string>caf\u00e9 &amp; &#233;&#xE9; &lt;</string></dict>"),
        "a=caf\u00e9 & \u00e9\u00e9 <;");
    EXPECT_EQ(valuesOf("<dict><key>a</key><string>caf\xE9</string></dict>"), "a=caf\u00e9;");
    EXPECT_EQ(valuesOf("\xEF\xBB\xBF<dict><key>a</key><string>\u20ac</string></dict>"),
              "a=\u20ac;");
}

TEST(PropertyLists, expandNoEntity) {
    std::string xml = "<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY a0 \"ha\">";
    for (int i = 1; i < 40; ++i) {
        const std::string before = "&a" + std::to_string(i - 1) + ";";
        xml += "<!ENTITY a" + std::to_string(i) + " \"" + before + before + before + "\">";
    }
    EXPECT_EQ(
        textOf(PropertyList(xml + "]><string>&a39;</string>", kMost).document().first_child()),
        "&a39;");
}

TEST(PropertyLists, readNoFileAndFetchNothing) {
    const std::string xml = "<!DOCTYPE plist SYSTEM \"http://192.0.2.1/x.dtd\" ["
                            "<!ENTITY f SYSTEM \"file:///etc/passwd\">"
                            "<!ENTITY % p SYSTEM \"http://192.0.2.1/p\"> %p;]>"
                            "<string>&f;</string>";
    EXPECT_EQ(textOf(PropertyList(xml, kMost).document().first_child()), "&f;");
}

TEST(PropertyLists, areFoundAsArraysInTheirOrder) {
    const PropertyList list("<plist><array><array>2</array></array><array>3</array></plist>",
                            kMost);
    ASSERT_EQ(list.arrays().size(), 3U);
    EXPECT_EQ(textOf(list.arrays().first().node()), "");
    EXPECT_TRUE(list.arrays().first().node().child("array"));
    EXPECT_EQ(list.damage(), "");
}

TEST(PropertyLists, thatAreNoneAreRefused) {
    for (const char *text : {"", "   ", "bplist00", "{ a = 1; }", "<", "<plist>", "plist></plist>"})
        EXPECT_NE(failureOf(text).find("a property list in XML form was expected"),
                  std::string::npos)
            << text;
    EXPECT_TRUE(isBinaryPropertyList(viewOf("bplist00")));
    EXPECT_FALSE(isBinaryPropertyList(viewOf("bplis")));
    EXPECT_FALSE(isBinaryPropertyList(viewOf("<?xml?>")));
}

TEST(PropertyLists, thatAreTooLongOrTooDeepAreRefused) {
    EXPECT_EQ(failureOf("<a>12</a>", 9), "none");
    EXPECT_EQ(failureOf("<a>12</a>", 8), "a property list longer than the 8 bytes that are read");
    EXPECT_EQ(failureOf(nested(limits::kPropertyListDepth)), "none");
    EXPECT_EQ(failureOf(nested(40'000)), "a property list that nests deeper than 256 elements");
}

TEST(PropertyLists, thatAreCutKeepWhatHadEnded) {
    const std::string first = "<plist><array><dict><key>a</key><string>1</string></dict>";
    const std::string whole =
        first + "<dict><key>b</key><string>22</string></dict><dict></dict></array></plist>";
    for (std::size_t length = first.size(); length < first.size() + 20; ++length) {
        const PropertyList list(whole.substr(0, length), kMost);
        EXPECT_TRUE(list.damage().starts_with("at offset ")) << length;
        const pugi::xml_node array = list.arrays().first().node();
        ASSERT_TRUE(array.child("dict")) << length;
        EXPECT_FALSE(array.child("dict").next_sibling("dict")) << length;
    }
    const PropertyList cut(whole.substr(0, whole.size() - 8), kMost);
    EXPECT_EQ(cut.dictsNotReached(), 0U);
    std::string damaged = whole;
    damaged[whole.find("22") + 3] = '!';
    EXPECT_EQ(PropertyList(damaged, kMost).dictsNotReached(), 2U);
}

} // namespace
} // namespace nv
