#include "base/Workers.h"

#include <algorithm>
#include <chrono>
#include <thread>
#include <utility>

namespace nv {

std::size_t spareProcessors() {
    constexpr std::size_t kMost = 7; // the one that gives the jobs can't keep more of them busy
    const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
    return std::min(processors - 1, kMost);
}

Workers::~Workers() {
    {
        const std::lock_guard lock(m_lock);
        m_isEnding = true;
        m_jobs.clear();
    }
    m_hasNews.notify_all();
}

std::future<void> Workers::start(std::function<void()> job) {
    Job next(std::move(job));
    std::future<void> done = next.get_future();
    {
        const std::lock_guard lock(m_lock);
        m_jobs.push_back(std::move(next));
    }
    m_hasNews.notify_one();
    // Where the system gives no thread, waitFor() does it all.
    constexpr auto kWhereItCan = std::launch::async | std::launch::deferred;
    while (m_threads.size() < m_count)
        m_threads.push_back(std::async(kWhereItCan, [this] { work(); }));
    return done;
}

void Workers::waitFor(const std::future<void> &job) {
    const auto isDone = [&job] {
        return job.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    };
    while (!isDone())
        if (!doOne())
            return job.wait();
}

bool Workers::doOne() {
    Job job;
    {
        const std::lock_guard lock(m_lock);
        if (m_jobs.empty())
            return false;
        job = std::move(m_jobs.front());
        m_jobs.pop_front();
    }
    job();
    return true;
}

void Workers::work() {
    const auto hasNews = [this] { return m_isEnding || !m_jobs.empty(); };
    for (;;) {
        {
            std::unique_lock lock(m_lock);
            m_hasNews.wait(lock, hasNews);
            if (m_isEnding)
                return;
        }
        doOne();
    }
}

} // namespace nv
