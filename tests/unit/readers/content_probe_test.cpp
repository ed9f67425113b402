#include "base/Files.h"
#include "readers/ContentProbe.h"
#include "support/TempFolder.h"
#include "support/WideText.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using namespace std::string_literals;

ContentFacts factsOf(const std::string &bytes) {
    const test::TempFolder folder;
    return ContentProbe().scratchFacts(folder.write("content", bytes));
}

TEST(GetExtBySignature, knowsItsSignaturesAndNoOthers) {
    EXPECT_EQ(getExtBySignature(viewOf("GIF89a..")), "gif");
    EXPECT_EQ(getExtBySignature(viewOf("GIF87a..")), "");
    EXPECT_EQ(getExtBySignature(viewOf("\xFF\xD8\xFF\xE0")), "jpg");
    EXPECT_EQ(getExtBySignature(viewOf("\xFF\xD8\xFF\xE1")), "");
    EXPECT_EQ(getExtBySignature(viewOf("BM")), "bmp");
    EXPECT_EQ(getExtBySignature(viewOf("\0\0\1\0\2\0  \x10"s)), "ico");
    EXPECT_EQ(getExtBySignature(viewOf("\0\1\0\0Standard Jet DB"s)), "mdb");
    EXPECT_EQ(getExtBySignature(viewOf("B")), "");
    EXPECT_EQ(getExtBySignature(viewOf("")), "");
}

TEST(ContentProbe, findsTheTagsInEitherCase) {
    const ContentFacts facts = factsOf("<!doctype><HTML><Body><?xml ><taBLE>");
    EXPECT_TRUE(facts.hasHtml && facts.hasBody && facts.hasXml && facts.hasTable);
    const ContentFacts plain = factsOf("html body < table");
    EXPECT_FALSE(plain.hasHtml || plain.hasBody || plain.hasXml || plain.hasTable);
}

TEST(ContentProbe, takesTheFirstTitleTrimmed) {
    EXPECT_EQ(factsOf("<html><title> One\n</title><title>Two</title>").title, "One");
    EXPECT_EQ(factsOf("<TITLE>\xE9t\xE9</TITLE>").title, "\u00e9t\u00e9");
    EXPECT_EQ(factsOf("<title>never closed").title, "");
    EXPECT_EQ(factsOf("<title>a<b>c</title>").title, "a<b>c");
}

TEST(ContentProbe, findsTagsAndTitlesThatABlockCuts) {
    constexpr std::size_t kBlock = std::size_t{1} << 20;
    for (std::size_t shift = 0; shift < 30; ++shift) {
        const std::string page =
            std::string(kBlock - shift, '.') + "<html><title>Across the border</title><body>";
        const ContentFacts facts = factsOf(page);
        EXPECT_TRUE(facts.hasHtml) << shift;
        EXPECT_TRUE(facts.hasBody) << shift;
        EXPECT_EQ(facts.title, "Across the border") << shift;
    }
}

constexpr std::string_view kTides = "<HTML><table><?xml?><title> Tides </title><body>";

TEST(ContentProbe, readsUtf16ByItsMarkOrByTheServersWord) {
    for (const bool isBigEndian : {false, true}) {
        const std::string marked = test::markedWideText(kTides, isBigEndian);
        for (const std::string &page : {marked, marked + "<"}) { // an odd byte at the end
            const ContentFacts facts = factsOf(page);
            EXPECT_TRUE(facts.hasHtml && facts.hasBody && facts.hasXml && facts.hasTable);
            EXPECT_EQ(facts.title, "Tides");
        }
        const std::string bare = test::wideText(kTides, isBigEndian);
        EXPECT_FALSE(nv::factsOf(bare).hasHtml);
        EXPECT_EQ(nv::factsOf(bare).title, "");
        const std::string header =
            "Content-Type: text/html; charset=utf-16"s + (isBigEndian ? "be" : "le");
        EXPECT_TRUE(nv::factsOf(bare, header).hasHtml);
        EXPECT_EQ(nv::factsOf(bare, header).title, "Tides");
    }
    EXPECT_FALSE(factsOf("\xFF\xFE").hasHtml);
    EXPECT_TRUE(factsOf("\xFF\xFE..<html>").hasHtml) << "the mark begins other files as well";
}

TEST(ContentProbe, readsHalvesOfLettersInUtf16) {
    const auto titleOfUnits = [](const std::string &units) {
        return factsOf(test::markedWideText("<title>", false) + units +
                       test::wideText("</title>", false))
            .title;
    };
    EXPECT_EQ(titleOfUnits("\x3D\xD8\x00\xDE"s), "\U0001F600");
    EXPECT_EQ(titleOfUnits("\x3D\xD8"), "\uFFFD");
    EXPECT_EQ(titleOfUnits("\x00\xDE"s), "\uFFFD");
    EXPECT_EQ(titleOfUnits("\x3D\xD8\x3D\xD8\x00\xDE"s), "\uFFFD\U0001F600");
}

TEST(ContentProbe, findsTagsInUtf16ThatABlockCuts) {
    constexpr std::size_t kBlock = std::size_t{1} << 20;
    for (std::size_t shift = 0; shift < 40; ++shift) {
        const std::string page = test::markedWideText(
            std::string(kBlock / 2 - shift, '.') + "<html><title>Across</title>", shift % 2 == 0);
        EXPECT_TRUE(factsOf(page).hasHtml) << shift;
        EXPECT_EQ(factsOf(page).title, "Across") << shift;
    }
}

TEST(ContentProbe, asksAgainWhenTheServersWordIsAnother) {
    const test::TempFolder folder;
    const auto file = folder.write("page", test::wideText(kTides, false));
    ContentProbe probe;
    EXPECT_FALSE(probe.scratchFacts(file).hasHtml);
    EXPECT_TRUE(probe.scratchFacts(file, "Content-Type: a; charset=utf-16").hasHtml);
    EXPECT_FALSE(probe.scratchFacts(file, "Content-Type: a; charset=utf-8").hasHtml);
}

TEST(ContentProbe, findsTheTitleAlone) {
    EXPECT_EQ(titleOf("<html><TITLE> \u00e9t\u00e9 </TITLE><title>Two</title>"), "\u00e9t\u00e9");
    EXPECT_EQ(titleOf("<title>never closed"), "");
    EXPECT_EQ(titleOf(""), "");
    for (std::size_t shift = 0; shift < 32; ++shift) // a tag that a piece of the search cuts
        EXPECT_EQ(titleOf(std::string(4096 - shift, '.') + "<title>Across</title>"), "Across");
}

TEST(ContentProbe, givesUpOnATitleWithoutEnd) {
    EXPECT_EQ(factsOf("<title>" + std::string(200'000, 'x') + "</title>").title, "");
}

TEST(ContentProbe, saysWhatItCouldNotRead) {
    ContentProbe probe;
    EXPECT_THROW(probe.scratchFacts("/nowhere/at/all"), FileFailure);
    EXPECT_THROW(probe.facts(Evidence({}), "/nowhere/at/all"), EvidenceFailure);
    EXPECT_EQ(factsOf("x").extension, "");
}

} // namespace
} // namespace nv
