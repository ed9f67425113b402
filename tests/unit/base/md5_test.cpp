#include "base/Files.h"
#include "base/Md5.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(Md5, agreesWithThePublishedAlgorithm) {
    EXPECT_EQ(md5Hex(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(md5Hex("message digest"), "f96b697d7cb7938d525a2f31aaf161d0");
}

TEST(Md5, hashesAUrlInItsAnsiForm) {
    EXPECT_EQ(hashOfUrl("http://x/\u00e9"), md5Hex("http://x/\xE9"));
    EXPECT_NE(hashOfUrl("HTTP://x/"), hashOfUrl("http://x/"));
}

TEST(FileMD5, readsAFileOfManyBlocksAndStopsWhenTold) {
    const test::TempFolder folder;
    const std::string big(3'500'000, 'x');
    const auto file = folder.write("big.bin", big);
    EXPECT_EQ(fileMD5(file), md5Hex(big));
    EXPECT_EQ(fileMD5(file, [](std::uint64_t) { return false; }), std::nullopt);
    EXPECT_THROW(fileMD5(folder.path() / "none"), FileFailure);
}

} // namespace
} // namespace nv
