#include "support/TempFolder.h"
#include "views/hex/HexHits.h"

#include <gtest/gtest.h>

namespace nv::test {
namespace {

using namespace std::string_literals;

std::vector<std::uint64_t> placesIn(const std::string &bytes,
                                    const std::vector<std::string> &forms) {
    std::vector<std::uint64_t> places;
    for (const HexMatch &match : HexHits(forms).in(bytes, 0, bytes.size()))
        places.push_back(match.offset);
    return places;
}

using Places = std::vector<std::uint64_t>;

TEST(HexHits, standInEachEncoding) {
    EXPECT_EQ(placesIn("tide Tide TIDE", {"tide"}), (Places{0, 5, 10}));
    EXPECT_EQ(placesIn("caf\xE9 caf\xC3\xA9 CAF\xC3\x89", {"café"}), (Places{0, 5, 11}));
    EXPECT_EQ(placesIn("\x34\x04\x30\x04..\x04\x34\x04\x30"s, {"да"}), (Places{0, 6}));
    EXPECT_EQ(placesIn("tide and moon", {"moon", "tide"}), (Places{0, 9}));
    EXPECT_TRUE(HexHits({}).isEmpty());
    EXPECT_TRUE(placesIn("tide", {}).empty());
    EXPECT_TRUE(placesIn("", {"tide"}).empty());
}

/// Each order of UTF-16 holds most of a text of the other one.
TEST(HexHits, aTextInUtf16IsOneHitAtItsPlace) {
    EXPECT_EQ(placesIn("a\0b\0t\0i\0d\0e\0.\0"s, {"tide"}), (Places{4}));
    EXPECT_EQ(placesIn("\0a\0b\0t\0i\0d\0e\0."s, {"tide"}), (Places{4}));
    EXPECT_EQ(placesIn("\0t\0i\0d\0e\0t\0i\0d\0e"s, {"tide"}), (Places{0, 8}));
    EXPECT_EQ(placesIn("t\0i\0d\0e\0t\0i\0d\0e\0"s, {"tide"}), (Places{0, 8}));
}

TEST(HexHits, noneLiesInAnother) {
    EXPECT_EQ(placesIn("aaaaa", {"aa"}), (Places{0, 2}));
    EXPECT_EQ(placesIn("tidewater", {"tidewater", "water"}), (Places{0}));
}

class HexHitScanTest : public testing::Test {
  protected:
    static void run(HexHitScan &scan, const FileReader &file) {
        for (int steps = 0; !scan.isOver(); ++steps) {
            ASSERT_LT(steps, 1000);
            scan.step(file);
        }
    }
    TempFolder folder;
};

TEST_F(HexHitScanTest, findsAllOfAFileAlsoAcrossSteps) {
    std::string bytes(HexHitScan::kStep * 2, '.');
    bytes.replace(HexHitScan::kStep - 2, 4, "tide");
    bytes.replace(100, 4, "Tide");
    bytes += "tide";
    const FileReader file(folder.write("bytes", bytes));
    HexHitScan scan({"tide"}, file.size());
    run(scan, file);
    ASSERT_EQ(scan.found().size(), 3U);
    EXPECT_EQ(scan.found()[0].offset, 100U);
    EXPECT_EQ(scan.found()[1].offset, HexHitScan::kStep - 2);
    EXPECT_EQ(scan.found()[2].offset, HexHitScan::kStep * 2);
    EXPECT_TRUE(scan.isWhole());
}

TEST_F(HexHitScanTest, aHitAtTheEndOfAStepIsCountedOnce) {
    std::string bytes(HexHitScan::kStep + 10, '.');
    bytes.replace(HexHitScan::kStep - 1, 5, "aaaaa");
    const FileReader file(folder.write("bytes", bytes));
    HexHitScan scan({"aa"}, file.size());
    run(scan, file);
    EXPECT_EQ(scan.found().size(), 2U);
}

TEST_F(HexHitScanTest, endsAtSoManyHitsAndWhenItIsStopped) {
    const FileReader file(folder.write("bytes", std::string(HexHitScan::kMostHits + 5, 'x')));
    HexHitScan most({"x"}, file.size());
    run(most, file);
    EXPECT_EQ(most.found().size(), HexHitScan::kMostHits);
    EXPECT_FALSE(most.isWhole());

    const FileReader big(folder.write("big", std::string(HexHitScan::kStep * 3, 'x')));
    HexHitScan stopped({"y"}, big.size());
    stopped.step(big);
    EXPECT_FALSE(stopped.isOver());
    stopped.stop();
    EXPECT_TRUE(stopped.isOver());
    EXPECT_FALSE(stopped.isWhole());
}

TEST_F(HexHitScanTest, aFileThatBecameShorterOrIsEmptyEndsIt) {
    const FileReader file(folder.write("bytes", "tide"));
    HexHitScan scan({"tide"}, HexHitScan::kStep * 4);
    run(scan, file);
    EXPECT_EQ(scan.found().size(), 1U);
    EXPECT_FALSE(scan.isWhole());
    EXPECT_TRUE(HexHitScan({"tide"}, 0).isOver());
    EXPECT_TRUE(HexHitScan().isOver());
}

} // namespace
} // namespace nv::test
