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
    /// As a body that lies in a file.
    bool unpack(const std::string &bytes) {
        body = {folder.write("body", bytes), false, {}};
        return unpackBody(body, 0, log);
    }
    std::string content() const {
        const Bytes bytes = readWhole(body.file);
        return std::string(ByteView(bytes).raw());
    }
    bool isAlone() const {
        const std::filesystem::directory_iterator files(folder.path());
        return std::distance(begin(files), end(files)) == 1;
    }

    test::TempFolder folder;
    test::MemoryLog log;
    Body body;
};

TEST_F(GZipTest, unpacksWhatWasPacked) {
    const std::string page = "<html>caf\xC3\xA9</html>";
    ASSERT_TRUE(unpack(test::gzip(page)));
    EXPECT_EQ(content(), page);
    EXPECT_FALSE(body.isInMemory);
    EXPECT_TRUE(isAlone());
    EXPECT_TRUE(log.entries.empty());
}

TEST_F(GZipTest, leavesNoFileOfABodyThatFitsInMemory) {
    body = {folder.write("body", test::gzip("text")), false, {}};
    ASSERT_TRUE(unpackBody(body, 4, log));
    EXPECT_TRUE(body.isInMemory);
    EXPECT_EQ(body.raw(), "text");
    EXPECT_FALSE(std::filesystem::exists(body.file));
}

TEST_F(GZipTest, joinsMembersAndLeavesPadding) {
    ASSERT_TRUE(unpack(test::gzip("one ") + test::gzip("two") + std::string(300, '\0')));
    EXPECT_EQ(content(), "one two");
}

TEST_F(GZipTest, keepsDamagedDataPacked) {
    const std::string whole = test::gzip(std::string(5000, 'a') + "b");
    for (std::size_t cut = 0; cut < whole.size() - 8; ++cut) {
        EXPECT_FALSE(unpack(whole.substr(0, cut))) << cut;
        EXPECT_EQ(content(), whole.substr(0, cut)) << cut;
        EXPECT_TRUE(isAlone()) << cut;
    }
    ASSERT_FALSE(log.entries.empty());
    EXPECT_EQ(log.entries[0].procedure, "ParserClass.DecompressGZipFile()");
    EXPECT_EQ(log.entries[0].severity, Severity::Warning);
}

TEST_F(GZipTest, refusesABombAndSaysTheLimit) {
    const std::string bomb = test::gzipOfZeros(limits::kUnpackedBytes + 1);
    EXPECT_FALSE(unpack(bomb));
    EXPECT_EQ(content(), bomb);
    EXPECT_TRUE(isAlone());
    ASSERT_EQ(log.entries.size(), 1u);
    EXPECT_NE(log.entries[0].message.find(std::to_string(limits::kUnpackedBytes)),
              std::string::npos);
}

} // namespace
} // namespace nv
