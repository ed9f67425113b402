#include "base/Files.h"
#include "readers/ContentProbe.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

using namespace std::string_literals;

ContentFacts factsOf(const std::string &bytes) {
    const test::TempFolder folder;
    return ContentProbe().scratchFacts(folder.write("content", bytes));
}

TEST(GetExtBySignature, knowsItsSignaturesAndNoOthers) {
    EXPECT_EQ(GetExtBySignature(viewOf("GIF89a..")), "gif");
    EXPECT_EQ(GetExtBySignature(viewOf("GIF87a..")), "");
    EXPECT_EQ(GetExtBySignature(viewOf("\xFF\xD8\xFF\xE0")), "jpg");
    EXPECT_EQ(GetExtBySignature(viewOf("\xFF\xD8\xFF\xE1")), "");
    EXPECT_EQ(GetExtBySignature(viewOf("BM")), "bmp");
    EXPECT_EQ(GetExtBySignature(viewOf("\0\0\1\0\2\0  \x10"s)), "ico");
    EXPECT_EQ(GetExtBySignature(viewOf("\0\1\0\0Standard Jet DB"s)), "mdb");
    EXPECT_EQ(GetExtBySignature(viewOf("B")), "");
    EXPECT_EQ(GetExtBySignature(viewOf("")), "");
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
