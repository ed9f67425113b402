#include "base/Files.h"
#include "support/TempFolder.h"
#include "views/record/CachedText.h"

#include <gtest/gtest.h>

namespace nv::test {
namespace {

using namespace std::string_literals;

class CachedTextTest : public testing::Test {
  protected:
    CachedText text(const std::string &bytes, std::string_view header = {},
                    std::uint64_t most = 1000) {
        return readCachedText(folder.write("body", bytes), header, most);
    }
    TempFolder folder;
};

TEST_F(CachedTextTest, theCharsetIsSaidWithWhatNamedIt) {
    const CachedText marked = text("\xEF\xBB\xBF"
                                   "caf\xC3\xA9");
    EXPECT_EQ(marked.text, "café");
    EXPECT_EQ(marked.charset, "utf-8");
    EXPECT_EQ(marked.foundIn, "byte-order mark");
    EXPECT_EQ(text("\xFF\xFEh\0i\0"s).text, "hi");
    const CachedText meta =
        text("<meta charset=KOI8-R>\xC1", "Content-Type: text/html; charset=nonsense");
    EXPECT_EQ(meta.charset, "koi8-r");
    EXPECT_EQ(meta.foundIn, "meta tag");
    const CachedText header = text("caf\xC3\xA9", "Content-Type: text/html; charset=UTF-8");
    EXPECT_EQ(header.text, "café");
    EXPECT_EQ(header.foundIn, "HTTP header");
    const CachedText xml = text("<?xml version='1.0' encoding='UTF-8'?>caf\xC3\xA9");
    EXPECT_EQ(xml.charset, "utf-8");
    EXPECT_EQ(xml.foundIn, "XML declaration");
    const CachedText none = text("caf\xE9");
    EXPECT_EQ(none.text, "café");
    EXPECT_EQ(none.charset, "windows-1252");
}

TEST_F(CachedTextTest, aLongTextIsCutAndThatIsTold) {
    const CachedText whole = text("0123456789", {}, 10);
    EXPECT_FALSE(whole.isCut());
    EXPECT_EQ(cutNotice(whole), "");
    const CachedText cut = text("0123456789", {}, 4);
    EXPECT_EQ(cut.text, "0123");
    EXPECT_EQ(cutNotice(cut), "Only the first 4 of 10 bytes are shown.");
}

TEST_F(CachedTextTest, anEmptyFileIsAnEmptyTextAndAMissingOneAFailure) {
    EXPECT_EQ(text("").text, "");
    EXPECT_THROW(readCachedText(folder.path() / "gone", {}, 10), FileFailure);
}

} // namespace
} // namespace nv::test
