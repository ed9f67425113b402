// The process reads its jobs out of a pipe with a name, a line when there is one to draw, and so
// stays until the pipe is closed.

#include "platform/posix/DrawService.h"

#include "base/Files.h"
#include "base/NoLog.h"
#include "base/Trap.h"
#include "platform/posix/DrawLines.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace nv {

namespace fs = std::filesystem;

namespace {

/// Pictures leave their marks in a process; a new one now and then begins anew.
constexpr std::size_t kOrdersPerProcess = 300;
/// A process without an order waits for the next one.
constexpr std::chrono::hours kAnyTime{24 * 365};
constexpr std::chrono::seconds kLongestStart{15};
/// Of a page that takes too long the process tells by itself.
constexpr std::chrono::seconds kGrace{2};

class OrderPipe {
  public:
    explicit OrderPipe(const fs::path &place) {
        // Open for both, so that neither side waits for the other one to come.
        if (::mkfifo(place.c_str(), S_IRUSR | S_IWUSR) == 0)
            m_fd = ::open(place.c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK);
        if (m_fd < 0)
            throw FileFailure("A pipe for drawing can't be made", place, errno);
    }
    ~OrderPipe() { ::close(m_fd); }
    OrderPipe(const OrderPipe &) = delete;
    OrderPipe &operator=(const OrderPipe &) = delete;
    int fd() const { return m_fd; }

  private:
    int m_fd = -1;
};

Drawn failed(std::string why) {
    Drawn drawn;
    drawn.failure = std::move(why);
    return drawn;
}

} // namespace

DrawService::DrawService(fs::path program, fs::path scratch, std::chrono::seconds timeout,
                         Done done)
    : m_program(std::move(program)), m_scratch(std::move(scratch)), m_timeout(timeout),
      m_done(std::move(done)), m_thread([this] { work(); }) {}

DrawService::~DrawService() {
    {
        const std::scoped_lock lock(m_mutex);
        m_ends = true;
        m_waiting.clear();
    }
    m_wake.notify_all();
    m_thread.join();
}

std::vector<std::uint64_t> DrawService::want(std::vector<Order> orders) {
    std::vector<std::uint64_t> givenUp;
    {
        const std::scoped_lock lock(m_mutex);
        for (const Order &before : m_waiting)
            if (std::ranges::find(orders, before.number, &Order::number) == orders.end())
                givenUp.push_back(before.number);
        if (m_atHand)
            std::erase_if(orders,
                          [&](const Order &each) { return each.number == m_atHand->number; });
        m_waiting.assign(orders.begin(), orders.end());
        handOut();
    }
    m_wake.notify_all();
    return givenUp;
}

std::uint64_t DrawService::starts() const {
    const std::scoped_lock lock(m_mutex);
    return m_starts;
}

void DrawService::work() {
    for (;;) {
        {
            std::unique_lock lock(m_mutex);
            m_wake.wait(lock, [this] { return m_ends || !m_waiting.empty(); });
            if (m_ends)
                return;
        }
        serve();
    }
}

/// Lets one process draw for as long as it lives.
void DrawService::serve() {
    NoLog nobody; // who ordered is told
    const auto failure =
        failureOf(nobody, "DrawService::serve()", [this] { settle(runProcess()); });
    if (failure)
        failAll(*failure);
}

ChildResult DrawService::runProcess() {
    const DrawFolder folder(fs::absolute(m_scratch));
    const fs::path place = folder.path() / "orders";
    const OrderPipe pipe(place);
    ChildCommand command = drawCommand(m_program, folder, place);
    command.longestSilence = kAnyTime;
    {
        const std::scoped_lock lock(m_mutex);
        m_pipe = pipe.fd();
        m_isReady = m_isStuck = false;
        m_given = 0;
        m_since = Clock::now();
        ++m_starts;
    }
    const ChildResult result = runChild(
        command, [this](std::string_view line) { return takeLine(line); },
        [this] { return goOn(); });
    const std::scoped_lock lock(m_mutex);
    m_pipe = -1;
    return result;
}

/// Anything but the lines agreed on comes from a program gone wrong, and is passed over.
bool DrawService::takeLine(std::string_view line) {
    std::unique_lock lock(m_mutex);
    if (line == kDrawReady) {
        m_isReady = true;
        handOut();
    } else if (const auto drawn = drawnJobOf(line);
               drawn && m_atHand && drawn->job + 1 == m_given) {
        finish(lock, drawn->drawn);
    }
    return !m_ends && (m_given < kOrdersPerProcess || m_atHand);
}

/// Asked several times a second.
bool DrawService::goOn() {
    const std::scoped_lock lock(m_mutex);
    const bool isAtWork = m_atHand || !m_isReady;
    m_isStuck =
        isAtWork && Clock::now() - m_since > m_timeout + (m_isReady ? kGrace : kLongestStart);
    return !m_ends && !m_isStuck;
}

/// Gives the process its next order, when it is free for one. The mutex is locked.
void DrawService::handOut() {
    if (m_pipe < 0 || !m_isReady || m_atHand || m_waiting.empty() || m_given >= kOrdersPerProcess)
        return;
    m_atHand = std::move(m_waiting.front());
    m_waiting.pop_front();
    m_since = Clock::now();
    ++m_given;
    // A line at a time always fits: what can't be written is found out as an order that hangs.
    const std::string line = lineOf({m_atHand->job, m_timeout}) + '\n';
    [[maybe_unused]] const ssize_t written = ::write(m_pipe, line.data(), line.size());
}

void DrawService::finish(std::unique_lock<std::mutex> &lock, const Drawn &drawn) {
    const Order order = *std::exchange(m_atHand, std::nullopt);
    lock.unlock();
    m_done(order, drawn);
    lock.lock();
    handOut();
}

/// A crash need not come from the order at hand: one that isn't the first of its process gets
/// another try in a new one.
void DrawService::settle(const ChildResult &result) {
    std::unique_lock lock(m_mutex);
    if (m_ends)
        return;
    const bool isCrash = result.end == ChildResult::End::crashed;
    if (!m_isReady) {
        lock.unlock();
        failAll(whyNothingWasDrawn(result));
    } else if (m_atHand && !m_isStuck && isCrash && m_given > 1) {
        m_waiting.push_front(*std::exchange(m_atHand, std::nullopt));
    } else if (m_atHand) {
        finish(lock, failed(m_isStuck ? "The drawing got stuck and was stopped."
                                      : whatEndedTheDrawing(result)));
    }
}

/// Nothing can be drawn now; what is ordered later is tried anew.
void DrawService::failAll(const std::string &why) {
    std::unique_lock lock(m_mutex);
    std::deque<Order> orders = std::exchange(m_waiting, {});
    if (m_atHand)
        orders.push_front(*std::exchange(m_atHand, std::nullopt));
    lock.unlock();
    for (const Order &order : orders)
        m_done(order, failed(why));
}

} // namespace nv
