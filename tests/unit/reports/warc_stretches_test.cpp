#include "base/Files.h"
#include "reports/warc/Stretches.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace nv {
namespace {

TEST(WarcStretches, areReadFromTheFactWhereItTellsAll) {
    const auto read = [](std::string_view fact, std::uint64_t size) {
        std::string text;
        for (const WarcStretch &each : stretchesIn(fact, size))
            text += fmt::format("{}+{} ", each.first, each.size);
        return text;
    };
    EXPECT_EQ(read("0-3, 6-8; missing 4-5", 7), "0+4 6+3 ");
    EXPECT_EQ(read("0-8", 9), "0+9 ");
    for (const std::string_view none :
         {"", "none; missing 0-8", "0-3, 6-8 and 3 more; missing 4-5", "0-3, 6-9", "3-0", "0-",
          "0-18446744073709551615", "a-b", "0-3, , 6-8"})
        EXPECT_EQ(read(none, 7), "") << none;
    constexpr std::uint64_t kMany = std::uint64_t{64} << 20;
    EXPECT_EQ(
        stretchesIn(fmt::format("0-{}, {}-{}", kMany - 1, kMany + 5, kMany + 5), kMany + 1).size(),
        3U);
}

TEST(WarcStretches, partsOfAContentAreItsBytes) {
    Body content;
    content.isInMemory = true;
    content.bytes = {'a', 'b', 'c', 'd'};
    EXPECT_EQ(partOf(content, 1, 2).raw(), "bc");
    EXPECT_THROW(partOf(content, 3, 2), StorageFailure);
    EXPECT_THROW(partOf(content, 9, 1), StorageFailure);
}

} // namespace
} // namespace nv
