#include "views/Pard.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace nv {
namespace {

constexpr GalleryMedia kNoMedia{false, false};

PARDClass range(std::int16_t from, std::int16_t to) {
    PARDClass PARD;
    PARD.EnablePARD = true;
    PARD.FromValue = from;
    PARD.ToValue = to;
    return PARD;
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
    EXPECT_EQ(BuildGalleryFilter(range(15, 40), kNoMedia),
              " AND (PARDValue >= 15 AND PARDValue <= 40)");
    EXPECT_EQ(BuildGalleryFilter(range(15, 15), kNoMedia),
              " AND (PARDValue >= 15 AND PARDValue <= 15)");
}

TEST(BuildGalleryFilter, joinsTheSizesInTheirOrder) {
    PARDClass PARD = range(0, 100);
    PARD.ShowXLargePics = PARD.ShowXSmallPics = true;
    EXPECT_EQ(BuildGalleryFilter(PARD, kNoMedia),
              " AND (PARDValue >= 0 AND PARDValue <= 100) AND ((PictureWidth <= 39 AND "
              "PictureHeight <= 39) OR (PictureWidth > 1199 AND PictureHeight > 1199))");
}

TEST(BuildGalleryFilter, keepsTheBoundsOfEachClass) {
    const auto of = [](bool PARDClass::*flag) {
        PARDClass PARD = range(0, 100);
        PARD.*flag = true;
        return BuildGalleryFilter(PARD, kNoMedia)
            .substr(BuildGalleryFilter(range(0, 100), kNoMedia).size());
    };
    EXPECT_EQ(of(&PARDClass::ShowXSmallPics),
              " AND ((PictureWidth <= 39 AND PictureHeight <= 39))");
    EXPECT_EQ(of(&PARDClass::ShowSmallPics),
              " AND ((PictureWidth > 39 AND PictureWidth <= 299 AND PictureHeight > 39 AND "
              "PictureHeight <= 299))");
    EXPECT_EQ(of(&PARDClass::ShowMediumPics),
              " AND ((PictureWidth > 299 AND PictureWidth <= 599 AND PictureHeight > 99 AND "
              "PictureHeight <= 599))");
    EXPECT_EQ(of(&PARDClass::ShowLargePics),
              " AND ((PictureWidth > 599 AND PictureWidth <= 1199 AND PictureHeight > 599 AND "
              "PictureHeight <= 1199))");
    EXPECT_EQ(of(&PARDClass::ShowXLargePics),
              " AND ((PictureWidth > 1199 AND PictureHeight > 1199))");
}

TEST(BuildGalleryFilter, dropsAllOfARangeThatRunsBackwards) {
    PARDClass PARD = range(41, 40);
    PARD.ShowSmallPics = true;
    EXPECT_EQ(BuildGalleryFilter(PARD, kNoMedia), "");
    EXPECT_EQ(BuildGalleryFilter(PARD, {true, false}), " AND IsPicture = True");
}

TEST(BuildGalleryFilter, leavesSizesUnusedWithoutPard) {
    PARDClass PARD = range(15, 40);
    PARD.EnablePARD = false;
    PARD.ShowSmallPics = true;
    EXPECT_EQ(BuildGalleryFilter(PARD, kNoMedia), "");
}

TEST(BuildGalleryFilter, choosesTheMedia) {
    EXPECT_EQ(BuildGalleryFilter({}, {true, true}),
              " AND CacheFileExists AND (IsWebPage = True OR Category = 'HTML' OR IsPicture = "
              "True)");
    EXPECT_EQ(BuildGalleryFilter({}, {false, true}),
              " AND CacheFileExists AND (IsWebPage = True OR Category = 'HTML') AND IsPicture = "
              "True");
    EXPECT_EQ(BuildGalleryFilter({}, {true, false}), " AND IsPicture = True");
    EXPECT_EQ(BuildGalleryFilter(range(15, 40), {true, false}),
              " AND (PARDValue >= 15 AND PARDValue <= 40) AND IsPicture = True");
}

} // namespace
} // namespace nv
