#include "views/gallery/Pard.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace nv {
namespace {

constexpr GalleryMedia kNoMedia{false, false};

PardChoice range(std::int16_t from, std::int16_t to) {
    PardChoice pard;
    pard.enablePARD = true;
    pard.fromValue = from;
    pard.toValue = to;
    return pard;
}

TEST(PardValue, tellsPhotographsFromBanners) {
    EXPECT_EQ(pardValue(100, 100), 0);
    EXPECT_EQ(pardValue(1, 1), 0);
    EXPECT_EQ(pardValue(100, 75), 25);
    EXPECT_EQ(pardValue(75, 100), 25);
    EXPECT_EQ(pardValue(300, 7), 98);
    EXPECT_EQ(pardValue(468, 60), 88);
}

TEST(PardValue, cutsAndDoesNotRound) {
    EXPECT_EQ(pardValue(1000, 999), 1); // 99.9 is 99
    EXPECT_EQ(pardValue(3, 2), 34);
}

TEST(PardValue, isZeroForAPictureWithoutSize) {
    EXPECT_EQ(pardValue(0, 0), 0);
    EXPECT_EQ(pardValue(0, 5), 100);
}

TEST(PardValue, survivesHostileSizes) {
    constexpr auto kHuge = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(pardValue(kHuge, kHuge), 0);
    EXPECT_EQ(pardValue(kHuge, 1), 100);
    EXPECT_EQ(pardValue(-5, -7), 0);
    EXPECT_EQ(pardValue(-5, 7), 100);
}

TEST(BuildGalleryFilter, standsAloneWithoutASizeFlag) {
    EXPECT_EQ(buildGalleryFilter(range(15, 40), kNoMedia),
              " AND (PARDValue >= 15 AND PARDValue <= 40)");
    EXPECT_EQ(buildGalleryFilter(range(15, 15), kNoMedia),
              " AND (PARDValue >= 15 AND PARDValue <= 15)");
}

TEST(BuildGalleryFilter, joinsTheSizesInTheirOrder) {
    PardChoice pard = range(0, 100);
    pard.showXLargePics = pard.showXSmallPics = true;
    EXPECT_EQ(buildGalleryFilter(pard, kNoMedia),
              " AND (PARDValue >= 0 AND PARDValue <= 100) AND ((PictureWidth <= 39 AND "
              "PictureHeight <= 39) OR (PictureWidth > 1199 AND PictureHeight > 1199))");
}

TEST(BuildGalleryFilter, keepsTheBoundsOfEachClass) {
    const auto of = [](bool PardChoice::*flag) {
        PardChoice pard = range(0, 100);
        pard.*flag = true;
        return buildGalleryFilter(pard, kNoMedia)
            .substr(buildGalleryFilter(range(0, 100), kNoMedia).size());
    };
    EXPECT_EQ(of(&PardChoice::showXSmallPics),
              " AND ((PictureWidth <= 39 AND PictureHeight <= 39))");
    EXPECT_EQ(of(&PardChoice::showSmallPics),
              " AND ((PictureWidth > 39 AND PictureWidth <= 299 AND PictureHeight > 39 AND "
              "PictureHeight <= 299))");
    EXPECT_EQ(of(&PardChoice::showMediumPics),
              " AND ((PictureWidth > 299 AND PictureWidth <= 599 AND PictureHeight > 99 AND "
              "PictureHeight <= 599))");
    EXPECT_EQ(of(&PardChoice::showLargePics),
              " AND ((PictureWidth > 599 AND PictureWidth <= 1199 AND PictureHeight > 599 AND "
              "PictureHeight <= 1199))");
    EXPECT_EQ(of(&PardChoice::showXLargePics),
              " AND ((PictureWidth > 1199 AND PictureHeight > 1199))");
}

TEST(BuildGalleryFilter, dropsAllOfARangeThatRunsBackwards) {
    PardChoice pard = range(41, 40);
    pard.showSmallPics = true;
    EXPECT_EQ(buildGalleryFilter(pard, kNoMedia), "");
    EXPECT_EQ(buildGalleryFilter(pard, {true, false}), " AND IsPicture = True");
}

TEST(BuildGalleryFilter, leavesSizesUnusedWithoutPard) {
    PardChoice pard = range(15, 40);
    pard.enablePARD = false;
    pard.showSmallPics = true;
    EXPECT_EQ(buildGalleryFilter(pard, kNoMedia), "");
}

TEST(BuildGalleryFilter, choosesTheMedia) {
    EXPECT_EQ(buildGalleryFilter({}, {true, true}),
              " AND CacheFileExists AND (IsWebPage = True OR Category = 'HTML' OR IsPicture = "
              "True)");
    EXPECT_EQ(buildGalleryFilter({}, {false, true}),
              " AND CacheFileExists AND (IsWebPage = True OR Category = 'HTML') AND IsPicture = "
              "True");
    EXPECT_EQ(buildGalleryFilter({}, {true, false}), " AND IsPicture = True");
    EXPECT_EQ(buildGalleryFilter(range(15, 40), {true, false}),
              " AND (PARDValue >= 15 AND PARDValue <= 40) AND IsPicture = True");
}

} // namespace
} // namespace nv
