#pragma once

#include "platform/Drawing.h"
#include "platform/posix/DrawProcess.h"

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace nv {

/// Draws pictures and pages one by one while the program goes on, in a process that stays for the
/// next one. One that crashes or holds up the process costs itself and a new start.
class DrawService {
  public:
    struct Order {
        std::uint64_t number = 0; ///< the caller's, of this order only
        DrawJob job;
    };
    /// Is called in another thread than the caller's.
    using Done = std::function<void(const Order &, const Drawn &)>;

    /// `scratch` must exist while this lives.
    DrawService(std::filesystem::path program, std::filesystem::path scratch,
                std::chrono::seconds timeout, Done done);
    /// Ends the process; of what isn't done nothing will be heard.
    ~DrawService();
    DrawService(const DrawService &) = delete;
    DrawService &operator=(const DrawService &) = delete;

    /// What is wanted now, the most urgent first; the order that is being drawn goes on. Returns
    /// those that were wanted before, have not begun, and are given up.
    std::vector<std::uint64_t> want(std::vector<Order> orders);
    /// How many processes were started so far.
    std::uint64_t starts() const;

  private:
    using Clock = std::chrono::steady_clock;

    void work();
    void serve();
    ChildResult runProcess();
    bool takeLine(std::string_view line);
    bool goOn();
    void handOut();
    void finish(std::unique_lock<std::mutex> &lock, const Drawn &drawn);
    void settle(const ChildResult &result);
    void failAll(const std::string &why);

    const std::filesystem::path m_program;
    const std::filesystem::path m_scratch;
    const std::chrono::seconds m_timeout;
    const Done m_done;

    mutable std::mutex m_mutex; ///< for all that follows
    std::condition_variable m_wake;
    std::deque<Order> m_waiting;
    std::optional<Order> m_atHand;
    Clock::time_point m_since; ///< of the order at hand, or of the start
    int m_pipe = -1;           ///< to the process; -1 without one
    bool m_isReady = false;    ///< the process has come as far as its orders
    std::size_t m_given = 0;   ///< orders that the process was given
    std::uint64_t m_starts = 0;
    bool m_ends = false;
    bool m_isStuck = false;

    std::thread m_thread; ///< last: it uses all of the above
};

} // namespace nv
