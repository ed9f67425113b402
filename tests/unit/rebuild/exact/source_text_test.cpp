#include "base/Text.h"
#include "rebuild/exact/PageReferences.h"
#include "rebuild/exact/SourceText.h"

#include <gtest/gtest.h>

#include <random>

namespace nv {
namespace {

using namespace std::string_view_literals;

/// The bytes with "a.png" replaced, wherever the text names it.
std::string replaced(std::string_view bytes, std::string_view header = {},
                     std::string_view with = "0000017.png") {
    const SourceText source(viewOf(bytes), decodedPage(viewOf(bytes), header));
    std::vector<TextEdit> edits;
    for (std::size_t at = 0; (at = source.text().find("a.png", at)) != std::string::npos; ++at)
        edits.push_back({{at, at + 5}, std::string(with)});
    return source.rewritten(std::move(edits));
}

std::string wide(std::string_view text, bool isLittle) {
    std::string bytes = isLittle ? "\xFF\xFE" : "\xFE\xFF";
    for (const char c : text)
        bytes += isLittle ? std::string{c, '\0'} : std::string{'\0', c};
    return bytes;
}

TEST(SourceText, keepsBytesOfEachEncoding) {
    EXPECT_EQ(replaced("\xE9<img src=a.png>\xE4\x80\x81"), "\xE9<img src=0000017.png>\xE4\x80\x81");
    EXPECT_EQ(replaced("<meta charset=utf-8>\xC3\xA9 a.png \xFF\xFE\xC3"),
              "<meta charset=utf-8>\xC3\xA9 0000017.png \xFF\xFE\xC3");
    EXPECT_EQ(replaced("\xEF\xBB\xBF\xC3\xA9 a.png"), "\xEF\xBB\xBF\xC3\xA9 0000017.png");
    EXPECT_EQ(replaced("\x82\xA0\x83\x5C a.png \x83", "Content-Type: text/html; charset=shift_jis"),
              "\x82\xA0\x83\x5C 0000017.png \x83");
    EXPECT_EQ(replaced("\x81\x30\x81\x30 a.png\xA4\xA4", "Content-Type: x; charset=gb2312"),
              "\x81\x30\x81\x30 0000017.png\xA4\xA4");
    EXPECT_EQ(replaced("\xC0\xE1 a.png", "Content-Type: x; charset=windows-1251"),
              "\xC0\xE1 0000017.png");
}

TEST(SourceText, keepsWideText) {
    EXPECT_EQ(replaced(wide("<p>a.png</p>", true)), wide("<p>0000017.png</p>", true));
    EXPECT_EQ(replaced(wide("<p>a.png</p>", false)), wide("<p>0000017.png</p>", false));
}

TEST(SourceText, aNameThatCantBeTrueIsntUsed) {
    EXPECT_EQ(replaced("<meta charset=utf-16>\xC3\xA9 a.png"),
              "<meta charset=utf-16>\xC3\xA9 0000017.png");
}

/// Only a server can say that such text is wide; in a folder there is none.
TEST(SourceText, wideTextWithoutAMarkGetsOne) {
    const std::string page = wide("<p>a.png</p>", false).substr(2);
    EXPECT_EQ(replaced(page, "Content-Type: text/html; charset=utf-16be"),
              wide("<p>0000017.png</p>", false));
}

TEST(SourceText, whatNoPageCanNameIsWrittenInUtf8) {
    EXPECT_EQ(replaced("\x80 a.png", "Content-Type: x; charset=x-user-defined"),
              "\xEF\xBB\xBF\xEF\x9E\x80 0000017.png");
    EXPECT_EQ(replaced("plain a.png", "Content-Type: x; charset=hz-gb-2312"),
              "\xEF\xBB\xBFplain 0000017.png");
}

TEST(SourceText, longPagesAreReadInParts) {
    std::string bytes = "<meta charset=shift_jis>";
    std::string expected = bytes;
    for (int i = 0; i < 20'000; ++i) {
        bytes += "\x82\xA0\xB1 a.png ";
        expected += "\x82\xA0\xB1 17 ";
    }
    EXPECT_TRUE(replaced(bytes, {}, "17") == expected);
    std::string wideChars = "\xEF\xBB\xBF";
    for (int i = 0; i < 5'000; ++i)
        wideChars += "\xF0\x9F\x98\x80x\xFF";
    EXPECT_TRUE(replaced(wideChars + "a.png", {}, "17") == wideChars + "17");
}

/// A state that goes over the place of an edit would make another text of it.
TEST(SourceText, whatCantBeKeptIsWrittenInUtf8) {
    const std::string page = "<meta charset=iso-2022-jp>\x1B$B$\"$$\x1B(B a.png";
    EXPECT_EQ(replaced(page), "<meta charset=iso-2022-jp>\x1B$B$\"$$\x1B(B 0000017.png");
    const SourceText source(viewOf(page), decodedPage(viewOf(page), {}));
    const std::size_t at = source.text().find("\xE3\x81\x84");
    ASSERT_NE(at, std::string::npos);
    const std::string made = source.rewritten({{{at, at}, "x"}});
    EXPECT_EQ(decodedPage(viewOf(made), {}).text, edited(source.text(), {{{at, at}, "x"}}));
    EXPECT_EQ(replaced("\xE9 a.png", {}, "\xE2\x88\x89"), "\xEF\xBB\xBF\xC3\xA9 \xE2\x88\x89");
}

/// Bytes that mean anything or nothing, with the place of an edit here and there.
std::string anyBytes(std::mt19937 &random, std::size_t count) {
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i) {
        const auto byte = static_cast<char>(random() % 256);
        bytes += byte == '\x1B' || byte == '\x0E' ? ' ' : byte; // these keep a state
        if (random() % 16 == 0)
            bytes += "a.png";
    }
    return bytes;
}

TEST(SourceText, everyOtherByteStays) {
    std::mt19937 random(17);
    for (const std::string_view charset :
         {"utf-8", "windows-1252", "iso-8859-15", "koi8-r", "shift_jis", "euc-jp", "gbk", "big5",
          "euc-kr", "koi8-u"})
        for (int i = 0; i < 50; ++i) {
            const std::string header = "Content-Type: text/html; charset=" + std::string(charset);
            const std::string bytes = ' ' + anyBytes(random, 300);
            SCOPED_TRACE(header);
            EXPECT_TRUE(replaced(bytes, header, "a.png") == bytes);
            const std::string made = replaced(bytes, header, "<17>");
            if (made.starts_with(kUtf8Mark)) // a broken character in front took the edit in
                EXPECT_EQ(made.find("a.png"), std::string::npos);
            else
                EXPECT_TRUE(replaceAll(made, "<17>", "a.png") == bytes);
        }
}

TEST(SourceText, emptyAndUntouchedTextStays) {
    EXPECT_EQ(replaced(""), "");
    EXPECT_EQ(replaced("\xEF\xBB\xBF"), "\xEF\xBB\xBF");
    EXPECT_EQ(replaced("\x80\x81\xFF"), "\x80\x81\xFF");
}

TEST(SourceText, sheetsStayToo) {
    const std::string css = "@charset \"windows-1251\";a{content:'\xC0';background:url(a.png)}";
    const SourceText source(viewOf(css), decodedStyle(viewOf(css), {}, {}));
    std::vector<TextEdit> edits;
    for (const Reference &reference : scanStyle(source.text()))
        edits.push_back({reference.at, spelled(reference, "17.png", source.text())});
    EXPECT_EQ(source.rewritten(edits),
              "@charset \"windows-1251\";a{content:'\xC0';background:url(17.png)}");
}

} // namespace
} // namespace nv
