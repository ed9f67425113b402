#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <vector>

namespace nv {

/// The processors beside the one that asks, and no more of them than a task has use for.
std::size_t spareProcessors();

/// Threads that do jobs beside the one that gives them, which do the oldest first. They begin with
/// the first job. All is asked of the thread that made it.
class Workers {
  public:
    explicit Workers(std::size_t threads = spareProcessors()) : m_count(threads) {}
    /// Waits for the jobs that have begun. The others aren't done.
    ~Workers();
    Workers(const Workers &) = delete;
    Workers &operator=(const Workers &) = delete;

    /// What the job throws goes to whoever gets the future's value.
    [[nodiscard]] std::future<void> start(std::function<void()> job);
    /// Until that job is done; jobs that nobody has begun are done on this thread meanwhile.
    void waitFor(const std::future<void> &job);

  private:
    using Job = std::packaged_task<void()>;

    void work();
    bool doOne();

    std::size_t m_count;
    std::mutex m_lock;
    std::condition_variable m_hasNews;
    std::deque<Job> m_jobs;
    bool m_isEnding = false;
    std::vector<std::future<void>> m_threads;
};

} // namespace nv
