#include "app/ThreadClass.h"

#include <gtest/gtest.h>

namespace nv {
namespace {

struct RecordingView final : StatusView {
    void open() override { ++opened; }
    void close() override { ++closed; }
    void update(const ThreadClass &status) override { titles.push_back(status.windowTitle()); }
    void pump() override { ++pumped; }
    int opened = 0;
    int closed = 0;
    int pumped = 0;
    std::vector<std::string> titles;
};

struct ThreadClassTest : testing::Test {
    double seconds = 1000;
    RecordingView view;
    ThreadClass thread{view, [this] { return seconds; }};
};

TEST_F(ThreadClassTest, theClockCountsFromOpenThread) {
    EXPECT_EQ(thread.GetTimeElapsed(), "00:00:00");
    thread.OpenThread();
    seconds += 3725.9;
    EXPECT_EQ(thread.GetTimeElapsed(), "01:02:05");
    thread.CloseThread();
    EXPECT_EQ(thread.GetTimeElapsed(), "00:00:00");
}

TEST_F(ThreadClassTest, aTaskInsideALargerOneKeepsItsWindowAndClock) {
    {
        const OpenTask outer(thread, {"OUTER", "", "", ""});
        seconds += 60;
        {
            const OpenTask inner(thread, {"INNER", "", "", ""});
            EXPECT_EQ(thread.Msg1, "INNER");
        }
        EXPECT_TRUE(thread.IsOpen);
        EXPECT_EQ(thread.GetTimeElapsed(), "00:01:00");
    }
    EXPECT_FALSE(thread.IsOpen);
    EXPECT_EQ(view.opened, 1);
    EXPECT_EQ(view.closed, 1);
}

TEST_F(ThreadClassTest, theTitleTellsPercentOrQueue) {
    EXPECT_EQ(thread.windowTitle(), "Thread Status");
    thread.QueueItemCount = 3;
    thread.QueueIndex = 1;
    EXPECT_EQ(thread.windowTitle(), "Thread Status - Queued: 2");
    thread.describe({"T", "", "", ""});
    seconds += 1;
    EXPECT_TRUE(thread.advance(0.42));
    EXPECT_EQ(thread.windowTitle(), "42% Norvelane Thread Status");
}

TEST_F(ThreadClassTest, textsChangeOnTheTimeStepOnly) {
    thread.OpenThread();
    thread.describe({"T", "", "", ""});
    EXPECT_TRUE(thread.wantsStep());
    thread.show({"Reading Hash Table 1 of 2", 1, 2, "Processing Hash Record 1 of 8", 4, 8});
    EXPECT_EQ(thread.BottomPercent, 50);
    EXPECT_FALSE(thread.wantsStep());
    seconds += 4.9;
    EXPECT_TRUE(thread.advance(0.1));
    EXPECT_FALSE(thread.wantsStep());
    seconds += 0.2;
    EXPECT_TRUE(thread.advance(0.1));
    EXPECT_TRUE(thread.wantsStep());
}

TEST_F(ThreadClassTest, eventsRunOftenButNotForEveryRecord) {
    thread.OpenThread();
    const int before = view.pumped;
    for (int i = 0; i < 1000; ++i)
        EXPECT_TRUE(thread.advance(0));
    EXPECT_EQ(view.pumped, before);
    seconds += 0.1;
    EXPECT_TRUE(thread.advance(0));
    EXPECT_EQ(view.pumped, before + 1);
}

TEST_F(ThreadClassTest, cancelHoldsUntilTheNextTaskStarts) {
    thread.OpenThread();
    thread.CancelTask = true;
    EXPECT_FALSE(thread.advance(1));
    thread.CloseThread();
    EXPECT_TRUE(thread.CancelTask);
    thread.OpenThread();
    EXPECT_TRUE(thread.advance(0));
}

} // namespace
} // namespace nv
