#include "base/TimeLeft.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace nv {
namespace {

/// A task on a clock of its own.
struct TimeLeftTest : testing::Test {
    TimeLeftTest() { left.start(now); }
    /// Ten steps a second to `fraction` in `seconds`.
    void run(double to, double seconds) {
        const double from = fraction;
        const int steps = static_cast<int>(seconds * 10);
        for (int step = 1; step <= steps; ++step) {
            now += 0.1;
            fraction = from + (to - from) * step / steps;
            left.advance(fraction, now);
        }
    }
    double now = 5000;
    double fraction = 0;
    TimeLeft left;
};

TEST_F(TimeLeftTest, saysNothingUntilItCanKnow) {
    EXPECT_EQ(left.text(), "");
    run(0.2, 4); // fast, but it has only just begun
    EXPECT_EQ(left.text(), "");
    run(0.3, 2);
    EXPECT_NE(left.text(), "");
}

TEST_F(TimeLeftTest, saysNothingWhileHardlyAnythingIsDone) {
    run(0.01, 60);
    EXPECT_EQ(left.text(), "");
}

TEST_F(TimeLeftTest, steadyWorkIsToldAsItIs) {
    run(0.25, 60);
    ASSERT_TRUE(left.seconds());
    EXPECT_NEAR(*left.seconds(), 180, 5);
    EXPECT_EQ(left.text(), "about 3 minutes left");
    run(0.75, 120);
    EXPECT_NEAR(*left.seconds(), 60, 3);
    EXPECT_EQ(left.text(), "about 1 minute left");
    run(0.98, 55.2);
    EXPECT_EQ(left.text(), "a few seconds left");
}

TEST_F(TimeLeftTest, oneSlowFileDoesNotMakeItJump) {
    run(0.5, 100);
    const double before = *left.seconds();
    run(0.501, 5); // a file that takes its time
    ASSERT_TRUE(left.seconds());
    EXPECT_LT(*left.seconds(), before * 1.25);
    const double slow = *left.seconds();
    run(0.6, 1); // and a fast one
    EXPECT_GT(*left.seconds(), slow * 0.9);
}

TEST_F(TimeLeftTest, itFollowsWorkThatBecomesSlow) {
    run(0.5, 50);
    EXPECT_NEAR(*left.seconds(), 50, 5);
    run(0.6, 100); // ten times as slow: 400 s are left at this speed
    ASSERT_TRUE(left.seconds());
    EXPECT_GT(*left.seconds(), 150);
    EXPECT_LT(*left.seconds(), 450);
}

TEST_F(TimeLeftTest, isSilentWhileNothingMoves) {
    run(0.5, 60);
    EXPECT_NE(left.text(), "");
    run(0.5, 31);
    EXPECT_EQ(left.text(), "");
    run(0.7, 20);
    EXPECT_NE(left.text(), "");
}

TEST_F(TimeLeftTest, anUnknownTotalIsNeverTold) {
    run(0, 600);
    EXPECT_EQ(left.text(), "");
    EXPECT_FALSE(left.seconds());
}

TEST_F(TimeLeftTest, aTaskOfTwoStagesIsMeasuredAnewAndOneOfManyIsSilent) {
    run(1, 60);
    fraction = 0;
    run(0.05, 2);
    EXPECT_EQ(left.text(), "");
    run(0.5, 18);
    ASSERT_TRUE(left.seconds());
    EXPECT_NEAR(*left.seconds(), 20, 4);
    for (int stage = 0; stage < 3; ++stage) {
        fraction = 0;
        run(0.9, 30);
    }
    EXPECT_EQ(left.text(), "");
}

TEST_F(TimeLeftTest, isNeverNegativeAndNothingAtTheEnd) {
    run(0.2, 10);
    for (int i = 0; i < 500; ++i) {
        now += 0.1;
        fraction = std::min(1.0, fraction + (i % 7 == 0 ? 0.01 : 0.0));
        left.advance(fraction, now);
        EXPECT_GE(left.seconds().value_or(0), 0);
    }
    run(1, 10);
    EXPECT_EQ(left.text(), "");
}

TEST_F(TimeLeftTest, whatIsNoFractionAndAClockThatGoesBackArePassedOver) {
    run(0.5, 50);
    const auto before = left.seconds();
    left.advance(std::numeric_limits<double>::quiet_NaN(), now + 1);
    left.advance(-1, now + 1);
    left.advance(std::numeric_limits<double>::infinity(), now + 1);
    left.advance(2, now + 1);
    left.advance(0.6, now - 40);
    EXPECT_EQ(left.seconds(), before);
}

TEST_F(TimeLeftTest, aMachineThatSleptForHoursDoesNotUpsetIt) {
    run(0.5, 50);
    now += 3600 * 8;
    left.advance(0.51, now);
    if (left.seconds()) {
        EXPECT_TRUE(std::isfinite(*left.seconds()));
        EXPECT_LT(*left.seconds(), 200);
    }
}

TEST(TimeLeftTextTest, theLongerTheRounder) {
    EXPECT_EQ(timeLeftText(0), "a few seconds left");
    EXPECT_EQ(timeLeftText(9.9), "a few seconds left");
    EXPECT_EQ(timeLeftText(30), "less than a minute left");
    EXPECT_EQ(timeLeftText(46), "about 1 minute left");
    EXPECT_EQ(timeLeftText(170), "about 3 minutes left");
    EXPECT_EQ(timeLeftText(17 * 60), "about 15 minutes left");
    EXPECT_EQ(timeLeftText(58 * 60), "about 1 hour left");
    EXPECT_EQ(timeLeftText(85 * 60), "about 1 hour 30 minutes left");
    EXPECT_EQ(timeLeftText(5 * 3600), "about 5 hours left");
    EXPECT_EQ(timeLeftText(7.2 * 3600), "about 7 hours left");
    EXPECT_EQ(timeLeftText(90.0 * 3600), "more than 2 days left");
}

} // namespace
} // namespace nv
