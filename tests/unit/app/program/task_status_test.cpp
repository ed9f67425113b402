#include "app/program/TaskStatus.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace nv {
namespace {

struct RecordingView final : StatusView {
    void open() override { ++opened; }
    void close() override { ++closed; }
    void update(const TaskStatus &status) override { titles.push_back(status.windowTitle()); }
    void pump() override { ++pumped; }
    int opened = 0;
    int closed = 0;
    int pumped = 0;
    std::vector<std::string> titles;
};

struct ThreadClassTest : testing::Test {
    double seconds = 1000;
    RecordingView view;
    TaskStatus thread{view, [this] { return seconds; }};
};

TEST_F(ThreadClassTest, theClockCountsFromOpenThread) {
    EXPECT_EQ(thread.getTimeElapsed(), "00:00:00");
    thread.openThread();
    seconds += 3725.9;
    EXPECT_EQ(thread.getTimeElapsed(), "01:02:05");
    thread.closeThread();
    EXPECT_EQ(thread.getTimeElapsed(), "00:00:00");
}

TEST_F(ThreadClassTest, aTaskInsideALargerOneKeepsItsWindowAndClock) {
    {
        const OpenTask outer(thread, {"OUTER", "", "", ""});
        seconds += 60;
        {
            const OpenTask inner(thread, {"INNER", "", "", ""});
            EXPECT_EQ(thread.msg1, "INNER");
        }
        EXPECT_TRUE(thread.isOpen);
        EXPECT_EQ(thread.getTimeElapsed(), "00:01:00");
    }
    EXPECT_FALSE(thread.isOpen);
    EXPECT_EQ(view.opened, 1);
    EXPECT_EQ(view.closed, 1);
}

TEST_F(ThreadClassTest, theTitleTellsPercentOrQueue) {
    EXPECT_EQ(thread.windowTitle(), "Thread Status");
    thread.queueItemCount = 3;
    thread.queueIndex = 1;
    EXPECT_EQ(thread.windowTitle(), "Thread Status - Queued: 2");
    thread.describe({"T", "", "", ""});
    seconds += 1;
    EXPECT_TRUE(thread.advance(0.42));
    EXPECT_EQ(thread.windowTitle(), "42% Norvelane Thread Status");
}

TEST_F(ThreadClassTest, textsChangeOnTheTimeStepOnly) {
    thread.openThread();
    thread.describe({"T", "", "", ""});
    EXPECT_TRUE(thread.wantsStep());
    thread.show({"Reading Hash Table 1 of 2", 1, 2, "Processing Hash Record 1 of 8", 4, 8});
    EXPECT_EQ(thread.bottomPercent, 50);
    EXPECT_FALSE(thread.wantsStep());
    seconds += 4.9;
    EXPECT_TRUE(thread.advance(0.1));
    EXPECT_FALSE(thread.wantsStep());
    seconds += 0.2;
    EXPECT_TRUE(thread.advance(0.1));
    EXPECT_TRUE(thread.wantsStep());
}

TEST_F(ThreadClassTest, eventsRunOftenButNotForEveryRecord) {
    thread.openThread();
    const int before = view.pumped;
    for (int i = 0; i < 1000; ++i)
        EXPECT_TRUE(thread.advance(0));
    EXPECT_EQ(view.pumped, before);
    seconds += 0.1;
    EXPECT_TRUE(thread.advance(0));
    EXPECT_EQ(view.pumped, before + 1);
}

TEST_F(ThreadClassTest, theTimeLeftIsThatOfTheWholeTask) {
    {
        const OpenTask outer(thread, {"OUTER", "", "", ""});
        EXPECT_EQ(thread.getTimeLeft(), "");
        for (int i = 1; i <= 25; ++i) {
            seconds += 2.4;
            const OpenTask inner(thread, {"INNER", "", "", ""});
            EXPECT_TRUE(thread.advance(i * 0.01));
        }
        EXPECT_EQ(thread.getTimeLeft(), "about 3 minutes left");
    }
    EXPECT_EQ(thread.getTimeLeft(), "");
    const OpenTask next(thread, {"NEXT", "", "", ""});
    EXPECT_EQ(thread.getTimeLeft(), "");
}

TEST_F(ThreadClassTest, aTaskIsCalledByItsWorkOrByItsFirstTitle) {
    {
        const OpenTask import(thread, {}, "Import");
        thread.describe({"PARSING FIREFOX CACHE", "", "", ""});
        EXPECT_EQ(thread.workName(), "Import");
    }
    const OpenTask copying(thread, {"COPYING URLS", "", "", ""});
    thread.describe({"PARSING FIREFOX CACHE", "", "", ""});
    EXPECT_EQ(thread.workName(), "Copying URLs");
}

TEST_F(ThreadClassTest, aWatcherHearsOfEachStepAndOfTheEnd) {
    std::vector<std::string> heard;
    thread.watcher = [&heard](const TaskStatus &status) {
        heard.push_back(status.isOpen ? std::to_string(status.topPercent) : "end");
    };
    try {
        const OpenTask task(thread, {"T", "", "", ""});
        seconds += 1;
        EXPECT_TRUE(thread.advance(0.42));
        throw std::runtime_error("a failure");
    } catch (const std::runtime_error &) {
    }
    ASSERT_GE(heard.size(), 2U);
    EXPECT_EQ(heard[heard.size() - 2], "42");
    EXPECT_EQ(heard.back(), "end");
    EXPECT_EQ(thread.secondsElapsed(), 0);
}

TEST_F(ThreadClassTest, cancelHoldsUntilTheNextTaskStarts) {
    thread.openThread();
    thread.cancelTask = true;
    EXPECT_FALSE(thread.advance(1));
    thread.closeThread();
    EXPECT_TRUE(thread.cancelTask);
    thread.openThread();
    EXPECT_TRUE(thread.advance(0));
}

} // namespace
} // namespace nv
