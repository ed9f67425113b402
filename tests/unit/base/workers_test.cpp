#include "base/Workers.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <stdexcept>
#include <thread>
#include <vector>

namespace nv {
namespace {

class WorkersTest : public testing::TestWithParam<std::size_t> {};

TEST_P(WorkersTest, doEachJobOnce) {
    constexpr std::size_t kJobs = 500;
    std::vector<std::atomic<int>> done(kJobs);
    Workers workers(GetParam());
    std::vector<std::future<void>> jobs;
    jobs.reserve(kJobs);
    for (std::atomic<int> &each : done)
        jobs.push_back(workers.start([&each] { ++each; }));
    for (const std::future<void> &job : jobs)
        workers.waitFor(job);
    for (const std::atomic<int> &each : done)
        EXPECT_EQ(each, 1);
}

TEST_P(WorkersTest, handOnWhatAJobThrows) {
    Workers workers(GetParam());
    std::future<void> job = workers.start([] { throw std::runtime_error("of the job"); });
    workers.waitFor(job);
    EXPECT_THROW(job.get(), std::runtime_error);
}

TEST_P(WorkersTest, endWithJobsThatNobodyWaitsFor) {
    std::atomic<int> done = 0;
    std::vector<std::future<void>> jobs;
    {
        Workers workers(GetParam());
        for (int i = 0; i < 100; ++i)
            jobs.push_back(workers.start([&done] {
                ++done;
                std::this_thread::yield();
            }));
    }
    const int atTheEnd = done;
    EXPECT_LE(atTheEnd, 100);
    std::this_thread::yield();
    EXPECT_EQ(done, atTheEnd);
}

TEST(Workers, withoutThreadsDoTheOldestFirstWhereOneWaits) {
    Workers workers(0);
    std::vector<int> order;
    const std::future<void> first = workers.start([&order] { order.push_back(1); });
    const std::future<void> second = workers.start([&order] { order.push_back(2); });
    EXPECT_TRUE(order.empty());
    workers.waitFor(second);
    EXPECT_EQ(order, (std::vector{1, 2}));
    workers.waitFor(first);
}

INSTANTIATE_TEST_SUITE_P(Threads, WorkersTest, testing::Values(0, 1, 3));

} // namespace
} // namespace nv
