#include "base/Files.h"
#include "support/TempFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>

namespace nv {
namespace {

TEST(ReadWhole, takesNoMoreRoomThanTheFile) {
    const test::TempFolder folder;
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, (std::size_t{5} << 20) + 1}) {
        const Bytes bytes = readWhole(folder.write("file", std::string(size, 'x')));
        EXPECT_EQ(bytes.size(), size);
        EXPECT_EQ(bytes.capacity(), size);
    }
}

TEST(ReadWhole, readsFilesThatHaveNoSizeBeforehand) {
    EXPECT_GT(readWhole("/proc/self/status").size(), 100U);
    EXPECT_EQ(readHead("/proc/self/status", 5).size(), 5U);
}

TEST(ReadingFiles, leavesTheTimeOfTheirLastAccess) {
    const test::TempFolder folder;
    const std::filesystem::path file = folder.write("file", "bytes");
    constexpr time_t kLongAgo = 1'262'304'000; // so that a disk with "relatime" would change it
    const std::array<timespec, 2> times = {timespec{kLongAgo, 0}, timespec{kLongAgo, 0}};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times.data(), 0), 0);
    EXPECT_EQ(readWhole(file).size(), 5U);
    EXPECT_EQ(FileReader(file).read(0, 5).size(), 5U);
    struct stat facts {};
    ASSERT_EQ(stat(file.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_atim.tv_sec, kLongAgo);
}

TEST(ReadHead, endsWithTheFile) {
    const test::TempFolder folder;
    const auto file = folder.write("file", "abc");
    EXPECT_EQ(ByteView(readHead(file, 2)).raw(), "ab");
    EXPECT_EQ(ByteView(readHead(file, 9)).raw(), "abc");
}

TEST(ReadInBlocks, handsOnEveryByte) {
    const test::TempFolder folder;
    for (const std::size_t size : {0, 1, 4096, 5000, (2 << 20) + 3}) {
        std::string content(size, 'x');
        for (std::size_t i = 0; i < size; ++i)
            content[i] = static_cast<char>(i * 7);
        std::string read;
        EXPECT_TRUE(readInBlocks(folder.write("file", content),
                                 [&](std::string_view block, std::uint64_t readSoFar) {
                                     read += block;
                                     return readSoFar == read.size();
                                 }));
        EXPECT_EQ(read, content);
    }
}

} // namespace
} // namespace nv
