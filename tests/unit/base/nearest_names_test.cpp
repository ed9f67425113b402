#include "base/NearestNames.h"

#include <gmock/gmock.h>

namespace nv {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

const std::vector<std::string> kNames = {"DateFormat", "TimeFormat", "Theme", "DateFormat"};

TEST(NearestNames, theLikestComesFirst) {
    EXPECT_EQ(nearestNames("DateFromat", kNames).front(), "DateFormat");
    EXPECT_EQ(nearestNames("theem", kNames).front(), "Theme");
}

TEST(NearestNames, thoseThatHoldItStandOnceInTheirOrder) {
    EXPECT_THAT(nearestNames("format", kNames), ElementsAre("DateFormat", "TimeFormat", "Theme"));
}

TEST(NearestNames, ofNothingThereIsNone) {
    EXPECT_THAT(nearestNames("Theme", {}), IsEmpty());
}

} // namespace
} // namespace nv
