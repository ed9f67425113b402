#include "base/Base64.h"
#include "base/Text.h"
#include "reports/case/CodedText.h"
#include "reports/case/Redactor.h"
#include "support/WideText.h"
#include "support/builders/Packed.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace nv::test {
namespace {

using testing::HasSubstr;

RedactionRule blur(const std::string &text) {
    return redactionRule(RedactionWay::blur, text);
}
RedactionRule leaveOut(const std::string &text) {
    return redactionRule(RedactionWay::leaveOut, text);
}

std::string utf16Of(const std::string &text, bool isBigEndian) {
    std::string wide;
    for (const char c : text)
        wide += isBigEndian ? std::string("\0", 1) + c : c + std::string("\0", 1);
    return wide;
}

TEST(RedactionTest, rulesAreReadAndWrittenBack) {
    const RedactionRules rules = {leaveOut("Host = a.example"), blur("value=low = tide"),
                                  blur("picture=17")};
    EXPECT_EQ(linesOf(rules), "leave out host=a.example\nblur value=low = tide\nblur picture=17\n");
    EXPECT_EQ(redactionRules("\r\n  " + linesOf(rules) + "\n\n"), rules);
    EXPECT_EQ(chosenText(rules), "1 host, 1 value, 1 picture");
}

TEST(RedactionTest, whatCantBeReadIsRefused) {
    for (const char *wrong : {"", "host", "host=", "host=ab", "value=\xC3\xA4\xC3\xA4", "room=12",
                              "picture=abc", "picture=0", "picture=-1", "picture=99999999999"})
        EXPECT_THROW(blur(wrong), std::invalid_argument) << wrong;
    EXPECT_THROW(blur("value=" + std::string(2000, 'x')), std::invalid_argument);
    EXPECT_THROW(redactionRules("hide host=a.example"), std::invalid_argument);
    std::string many;
    for (std::size_t i = 0; i <= kMostRedactions; ++i)
        many += "blur host=a.example\n";
    EXPECT_THROW(redactionRules(many), std::invalid_argument);
}

TEST(RedactionTest, aWordGoesInWhateverFormItIsWritten) {
    Redactor redactor(
        {blur("value=M\xC3\xA4ra Quill"), blur("person=bea"), blur("host=tide.example")});
    for (const char *written :
         {"M\xC3\xA4ra Quill", "M\xC3\x84RA QUILL", "M%C3%A4ra%20Quill",
          "m&#228;ra&nbsp;quill|M&auml;", "M&#xE4;ra&#32;Quill", "M\\u00e4ra Quill",
          "M\xC3\xA4\xE2\x80\x8Bra Quill", "M\xE4ra Quill"}) {
        const std::string marked = redactor.text(written);
        if (std::string(written).find("nbsp") == std::string::npos) {
            EXPECT_EQ(marked, "[redacted]") << written;
        }
        EXPECT_FALSE(redactor.holds(marked)) << written;
    }
    EXPECT_EQ(redactor.text("C:\\Users\\bea\\Cache"), "C:\\Users\\[redacted]\\Cache");
    EXPECT_EQ(redactor.text("http://www.TIDE.example/a?b=tide%2Eexample&c"),
              "http://www.[redacted]/a?b=[redacted]&c");
    EXPECT_EQ(redactor.text("q=M%C3%A4ra+Quill&x=M\xC3\xA4ra\r\n\tQuill"),
              "q=[redacted]&x=[redacted]");
    EXPECT_EQ(redactor.text("tide.example.bea"), "[redacted].[redacted]");
    EXPECT_EQ(redactor.text("beabea"), "[redacted][redacted]");
    EXPECT_EQ(redactor.text("nothing of it"), "nothing of it");
    EXPECT_EQ(redactor.text(""), "");
}

TEST(RedactionTest, aWordGoesInEveryEscapeOfScripts) {
    Redactor redactor({blur("value=quillfeather"),
                       blur("value=\xF0\x9F\xA6\x91\xF0\x9F\xA6\x91\xF0\x9F\xA6\x91"),
                       blur("value=low tide"), blur("value=o'brien")});
    for (const char *written :
         {R"(\u{71}\u{75}\u{69}\u{000006c}lfeather)", R"(\161\165\151\154\154feather)",
          R"(qu\151llfeather)", "%u0071%U0075illfeather", R"(qu\u{69}ll\x66eather)", R"(low\ntide)",
          R"(Low\r\n\ttide)", R"(O\'Brien)", R"(\ud83e\udd91\uD83E\uDD91\u{1f991})",
          "%uD83E%uDD91%uD83E%uDD91%ud83e%udd91"}) {
        EXPECT_TRUE(redactor.holds(written)) << written;
        EXPECT_EQ(redactor.text(std::string("x ") + written + " y"), "x [redacted] y") << written;
    }
    EXPECT_TRUE(redactor.holds(R"(\134u{71}uillfeather)")) << "one over the other";
    EXPECT_TRUE(redactor.holds("%25u0071uillfeather"));
    for (const char *other : {R"(\u{71uillfeather)", R"(\u{}uillfeather)", "%u71uillfeather",
                              R"(\u{ffffffff}uillfeather)", R"(\ud83euillfeather)", "\\", "%u",
                              R"(\ud83e\ud83e)", R"(\777)"})
        EXPECT_EQ(redactor.text(other), other) << other;
}

TEST(RedactionTest, aWordGoesOnThroughWhatIsNotSeen) {
    Redactor redactor({blur("value=quillfeather")});
    for (const char *hidden :
         {"\u00AD", "\u034F", "\u061C", "\u115F", "\u17B4", "\u180E", "\u200B", "\u2060", "\u206A",
          "\u3164", "\uFE0F", "\uFEFF", "\uFFA0", "\xF3\xA0\x81\xA1"})
        EXPECT_EQ(redactor.text("a quill" + std::string(hidden) + "feather"), "a [redacted]")
            << hidden;
    EXPECT_EQ(redactor.text("quill\u00E9feather"), "quill\u00E9feather");
}

/// The bytes of a chunk of a PNG; nobody here reads its checksum.
std::string chunk(const std::string &kind, const std::string &data) {
    std::string bytes(4, '\0');
    for (int at = 0; at < 4; ++at)
        bytes[static_cast<std::size_t>(at)] = static_cast<char>(data.size() >> (24 - 8 * at));
    return bytes + kind + data + "crc!";
}
std::string png(const std::string &chunks) {
    return "\x89PNG\r\n\x1A\n" + chunk("IHDR", std::string(13, '\1')) + chunks + chunk("IEND", "");
}

TEST(RedactionTest, packedTextsOfAPictureAreLookedThrough) {
    const Redactor redactor({blur("value=quillfeather")});
    const std::string zero(1, '\0');
    const std::string packed = zlibDeflate("Drawn by Quillfeather");
    EXPECT_TRUE(redactor.holds(png(chunk("zTXt", "Author" + zero + zero + packed))));
    EXPECT_TRUE(redactor.holds(png(
        chunk("iTXt", "Author" + zero + "\1" + zero + "en" + zero + "Urheber" + zero + packed))));
    EXPECT_TRUE(redactor.holds(
        png(chunk("iCCP", "screen" + zero + zero + zlibDeflate(utf16Of("Quillfeather", true))))));
    EXPECT_TRUE(redactor.holds("<img src='data:image/png;base64," +
                               base64(viewOf(png(chunk("zTXt", "Author" + zero + zero + packed)))) +
                               "'>"));
    const std::string others = zlibDeflate("Drawn by somebody");
    EXPECT_FALSE(redactor.holds(png(chunk("zTXt", "Author" + zero + zero + others))));
    EXPECT_FALSE(redactor.holds(png(chunk("iTXt", "Author" + zero + zero + zero + zero + zero))));
    EXPECT_FALSE(redactor.holds(png("")));
}

TEST(RedactionTest, packedTextsThatCantBeReadCountAsHoldingTheWord) {
    const Redactor redactor({blur("value=quillfeather")});
    const std::string head = "Author" + std::string(2, '\0');
    const std::string packed = zlibDeflate("Drawn by somebody");
    EXPECT_TRUE(redactor.holds(png(chunk("zTXt", head + packed.substr(0, packed.size() / 2)))));
    EXPECT_TRUE(redactor.holds(png(chunk("zTXt", head + "no zlib"))));
    EXPECT_TRUE(redactor.holds(png(chunk("zTXt", head + zlibDeflate(std::string(9 << 20, 'x'))))));
    const std::string whole = png(chunk("zTXt", head + zlibDeflate("a Quillfeather")));
    for (std::size_t size = 0; size < whole.size(); ++size)
        static_cast<void>(redactor.holds(whole.substr(0, size)));
}

TEST(RedactionTest, aWordThatIsCodedTwiceTakesTheWholeTextWithIt) {
    Redactor redactor({blur("value=secret")});
    EXPECT_EQ(redactor.text("http://a.example/?u=%2573ecret"), "[redacted]");
    EXPECT_EQ(redactor.text("x %73ecret y"), "x [redacted] y");
    EXPECT_EQ(redactor.counts.placesBlurred, 2u);
}

TEST(RedactionTest, whatIsHiddenInAFileIsFound) {
    const Redactor redactor({blur("value=secret")});
    EXPECT_TRUE(redactor.holds("s<b>ecr</b>et"));
    EXPECT_TRUE(redactor.holds("<img src='data:text/plain;base64,YSBzZWNyZXQu'>"));
    EXPECT_TRUE(redactor.holds("url(data:text/css,%73ecret)"));
    EXPECT_TRUE(redactor.holds(std::string_view("S\0E\0c\0r\0e\0t\0", 12)));
    EXPECT_TRUE(redactor.holds(std::string_view("\0s\0e\0c\0r\0e\0t", 12)));
    EXPECT_TRUE(redactor.holds("se&shy;cret"));
    EXPECT_FALSE(redactor.holds("sec ret"));
    EXPECT_FALSE(redactor.holds("<a title='data:"));
}

TEST(RedactionTest, hugeAndBrokenTextsEnd) {
    Redactor redactor({blur("value=secret")});
    EXPECT_EQ(redactor.text(std::string(1 << 20, '%')).size(), std::size_t{1} << 20);
    EXPECT_EQ(redactor.text(std::string(1 << 20, '&')).size(), std::size_t{1} << 20);
    EXPECT_FALSE(redactor.holds(std::string(1 << 20, '<')));
    EXPECT_FALSE(redactor.holds("\\u00"));
    EXPECT_FALSE(redactor.holds("&#"));
    std::string data;
    for (int i = 0; i < 200000; ++i)
        data += "data:,data:";
    EXPECT_FALSE(redactor.holds(data));
}

TEST(RedactionTest, rowsAreLeftOutByHostPersonAndValue) {
    UrlRecord record;
    record.URL = "http://www.tide.example/a";
    record.host = "www.tide.example";
    record.Person = "Mara";
    const auto isOut = [&record](const std::string &rule) {
        return Redactor({leaveOut(rule)}).leavesOut(record, {record.URL});
    };
    EXPECT_TRUE(isOut("host=tide.example"));
    EXPECT_TRUE(isOut("host=WWW.tide.example"));
    EXPECT_FALSE(isOut("host=ide.example"));
    EXPECT_TRUE(isOut("person=mara"));
    EXPECT_FALSE(isOut("person=mar"));
    EXPECT_TRUE(isOut("value=TIDE.ex"));
    EXPECT_FALSE(isOut("picture=1"));
    EXPECT_FALSE(Redactor({blur("host=tide.example")}).leavesOut(record, {}));
    record.host.clear();
    EXPECT_TRUE(isOut("host=tide.example"));
}

std::string hexOf(const std::string &bytes) {
    return bytesToHex(viewOf(bytes), 0, 0);
}

TEST(RedactionTest, codesAreReadWhereverTheyBegin) {
    const auto isFound = [](const std::string &text) {
        return anyCoded(text, 4, [](std::string_view bytes) {
            return bytes.find("tide.example") != std::string_view::npos;
        });
    };
    EXPECT_TRUE(isFound("746964652E6578616D706C65 = text"));
    EXPECT_TRUE(isFound("at 0746964652e6578616d706c65"));
    EXPECT_TRUE(isFound("74 69 64 65 2E 65 78 61 6D 70 6C 65"));
    EXPECT_TRUE(isFound("74:69:64:65:2e:65:78:61:6d:70:6c:65"));
    for (const char *before : {"", "x", "xy", "xyz"})
        for (const char *behind : {"", "1", "12"}) {
            const std::string padded = std::string(before) + "tide.example" + behind;
            const std::string code = base64(viewOf(padded));
            EXPECT_TRUE(isFound("q=" + code)) << code;
            EXPECT_TRUE(isFound("/ab" + code)) << code; // letters of the code in front
            EXPECT_TRUE(isFound(code.substr(0, 9) + "\r\n  " + code.substr(9))) << code;
        }
    EXPECT_FALSE(isFound("tide"));
    EXPECT_FALSE(anyCoded("a.b, c!", 3, [](std::string_view) { return true; }));
}

/// Runs of any length cost what they are long.
TEST(RedactionTest, longRunsOfCodesAreReadOnce) {
    int asked = 0;
    EXPECT_FALSE(anyCoded(std::string(2'000'000, 'a'), 4, [&asked](std::string_view) {
        ++asked;
        return false;
    }));
    EXPECT_EQ(asked, 6); // four of base64, two of hexadecimal digits
    Redactor redactor({blur("value=secret")});
    for (const char *piece : {"V", "ab", "41", "41 ", "Vm", "VjIw", "%56", "a\n"}) {
        std::string text;
        while (text.size() < (std::size_t{1} << 20))
            text += piece;
        EXPECT_EQ(redactor.text(text), text) << piece;
    }
}

TEST(RedactionTest, codedWordsGoWithTheirRun) {
    Redactor redactor({leaveOut("host=secretbank.example"), blur("value=quillon")});
    const std::string bank = "https://SecretBank.example/login";
    const std::string address = "https://r.example/b64/x?d=";
    EXPECT_EQ(redactor.text(address + base64(viewOf(bank)) + "&e=1"), address + "[redacted]&e=1");
    EXPECT_EQ(redactor.counts.placesBlurred, 1u);
    EXPECT_EQ(redactor.text(address + hexOf(bank)), address + "[redacted]");
    EXPECT_EQ(redactor.text(address + "a%20b&" + replaceAll(base64(viewOf(bank)), "=", "")),
              address + "a%20b&[redacted]");
    EXPECT_EQ(redactor.text("https://r.example/go/" + base64(viewOf(bank)) + "/end"),
              "https://r.example/go/[redacted]/end");
    EXPECT_EQ(redactor.counts.placesBlurred, 4u);
    for (const bool isBigEndian : {false, true}) {
        const std::string wide = test::wideText("Of QUILLON.", isBigEndian);
        EXPECT_EQ(redactor.text("q=" + base64(viewOf(wide))), "q=[redacted]");
        EXPECT_EQ(redactor.text("q=" + hexOf(wide)), "q=[redacted]");
    }
    EXPECT_EQ(redactor.text("aGFyYm91ckBleGFtcGxl"), "aGFyYm91ckBleGFtcGxl"); // another text
    EXPECT_EQ(redactor.text("/quite/a/common/path-of_words+and/more"),
              "/quite/a/common/path-of_words+and/more");
}

TEST(RedactionTest, codedWordsGoInWhateverFormTheirCodeIsWritten) {
    Redactor redactor({blur("value=quillon"), blur("value=M\xC3\xA4ra")});
    const auto goes = [&redactor](const std::string &text) {
        const std::string marked = redactor.text("name=" + text);
        const std::string amid = text.substr(text.size() / 2, 8);
        return marked.find("[redacted]") != std::string::npos && !redactor.holds(marked) &&
               marked.find(amid) == std::string::npos;
    };
    const std::string code = base64(viewOf("??? of quillon ???")); // has letters of its own
    std::string ofAddress = replaceAll(code, "/", "_");
    EXPECT_TRUE(goes(ofAddress));
    EXPECT_TRUE(goes(replaceAll(replaceAll(code, "/", "%2F"), "=", "%3D")));
    EXPECT_TRUE(goes(replaceAll(code, "/", "\\/")));
    std::string coded;
    for (const char c : code)
        coded += "%" + hexOf(std::string(1, c));
    EXPECT_TRUE(goes(coded));
    EXPECT_TRUE(goes(replaceAll(coded, "%", "%25")));
    EXPECT_TRUE(goes(base64(viewOf(code))));
    EXPECT_TRUE(goes(hexOf("u=" + coded)));
    EXPECT_TRUE(goes(base64(viewOf(hexOf("a quillon")))));
    EXPECT_TRUE(goes(base64(viewOf("a%20%71uillon"))));
    EXPECT_TRUE(goes(base64(viewOf("by M\xE4ra"))));     // in Windows-1252
    EXPECT_TRUE(goes(base64(viewOf("by M\xC3\x84RA")))); // in another case
    EXPECT_TRUE(goes(hexOf("\xFF\xFE quillon")));
    EXPECT_TRUE(redactor.holds("<meta content=" + code + ">"));
}

TEST(RedactionTest, rowsGoByWhatACodeStandsFor) {
    UrlRecord record;
    record.URL = "http://r.example/?d=" + base64(viewOf("https://secretbank.example/"));
    const auto isOut = [&record](const std::string &rule) {
        return Redactor({leaveOut(rule)}).leavesOut(record, {record.URL});
    };
    EXPECT_TRUE(isOut("value=secretbank"));
    EXPECT_FALSE(isOut("value=otherbank"));
    EXPECT_FALSE(isOut("host=secretbank.example")); // the row is of r.example
}

TEST(RedactionTest, aRuleThatNothingFitsIsKnown) {
    Redactor redactor({leaveOut("host=tide.example"), blur("value=tide.example"),
                       blur("value=tide"), leaveOut("person=mara"), blur("value=quillon"),
                       leaveOut("value=low"), blur("picture=17")});
    EXPECT_EQ(redactor.unmet().size(), 7U);
    redactor.text("nothing of it");
    EXPECT_EQ(redactor.unmet().size(), 7U);
    redactor.text("http://www.tide.example/");
    EXPECT_EQ(linesOf(redactor.unmet()), "leave out person=mara\nblur value=quillon\n"
                                         "leave out value=low\nblur picture=17\n")
        << "a word within another is there, too";
    redactor.text("d=" + base64(viewOf("of quillon")));
    UrlRecord record;
    record.host = "low.example";
    record.Person = "Mara";
    EXPECT_TRUE(redactor.leavesOut(record, {"low water"})) << "by two rules";
    EXPECT_EQ(linesOf(redactor.unmet()), "blur picture=17\n");
    redactor.notePicture(UrlId{17});
    EXPECT_TRUE(redactor.unmet().empty());
}

TEST(RedactionTest, whatBecameOfRulesIsToldInNumbers) {
    EXPECT_EQ(redactedText({}), "");
    RedactionCounts counts;
    counts.rowsLeftOut = 1;
    counts.placesBlurred = 12;
    EXPECT_EQ(redactedText(counts), "1 row left out, 12 places in texts blurred");
}

} // namespace
} // namespace nv::test
