#include "base/Files.h"
#include "readers/GZip.h"
#include "readers/Limits.h"
#include "support/TempFolder.h"
#include "support/TestDoubles.h"
#include "support/builders/Packed.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

class GZipTest : public testing::Test {
  protected:
    bool unpack(const std::string &bytes) {
        packed = folder.write("packed", bytes);
        target = folder.path() / "target";
        return DecompressGZipFile(packed, target, log);
    }
    std::string unpacked() const { return std::string(ByteView(readWhole(target)).raw()); }

    test::TempFolder folder;
    test::MemoryLog log;
    std::filesystem::path packed;
    std::filesystem::path target;
};

TEST_F(GZipTest, unpacksWhatWasPacked) {
    const std::string page = "<html>caf\xC3\xA9</html>";
    ASSERT_TRUE(unpack(test::gzip(page)));
    EXPECT_EQ(unpacked(), page);
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(GZipTest, unpacksOverItself) {
    const auto file = folder.write("body", test::gzip("text"));
    ASSERT_TRUE(DecompressGZipFile(file, file, log));
    EXPECT_EQ(ByteView(readWhole(file)).raw(), "text");
}

TEST_F(GZipTest, joinsMembersAndLeavesPadding) {
    ASSERT_TRUE(unpack(test::gzip("one ") + test::gzip("two") + std::string(300, '\0')));
    EXPECT_EQ(unpacked(), "one two");
}

TEST_F(GZipTest, keepsDamagedDataPacked) {
    const std::string whole = test::gzip(std::string(5000, 'a') + "b");
    for (std::size_t cut = 0; cut < whole.size() - 8; ++cut) {
        EXPECT_FALSE(unpack(whole.substr(0, cut))) << cut;
        EXPECT_FALSE(std::filesystem::exists(target)) << cut;
        EXPECT_EQ(readWhole(packed).size(), cut);
    }
    ASSERT_FALSE(log.entries.empty());
    EXPECT_EQ(log.entries[0].procedure, "ParserClass.DecompressGZipFile()");
    EXPECT_EQ(log.entries[0].severity, Severity::Warning);
}

TEST_F(GZipTest, refusesABombAndSaysTheLimit) {
    EXPECT_FALSE(unpack(test::gzipOfZeros(limits::kUnpackedBytes + 1)));
    EXPECT_FALSE(std::filesystem::exists(target));
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_NE(log.entries[0].message.find(std::to_string(limits::kUnpackedBytes)),
              std::string::npos);
}

} // namespace
} // namespace nv
