#include "cli/TerminalTask.h"

#include "base/Text.h"
#include "cli/RowWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <csignal>

namespace nv::cli {

std::atomic<bool> interrupted = false;
std::atomic<bool> outputClosed = false;

namespace {

constexpr double kDrawStep = 0.1; // seconds
constexpr int kBarWidth = 30;
constexpr std::size_t kTitleWidth = 40; ///< with the time that is left
constexpr std::size_t kLeastTitle = 10;

void onInterrupt(int) {
    interrupted = true;
    std::signal(SIGINT, SIG_DFL);
}

void onClosedPipe(int) {
    outputClosed = true;
    interrupted = true;
}

} // namespace

void catchInterrupts() {
    std::signal(SIGINT, onInterrupt);
    std::signal(SIGPIPE, onClosedPipe);
}

double TerminalTask::steadySeconds() {
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(now).count();
}

void TerminalTask::describe(const TaskHeading &heading) {
    m_title = printable(heading.detail.empty() ? heading.title : heading.detail);
    m_lastDrawn.reset();
}

bool TerminalTask::advance(double fraction) {
    if (m_isTerminal) {
        const double now = m_seconds();
        if (!m_timeLeft)
            m_timeLeft.emplace().start(now);
        if (!m_lastDrawn || now - *m_lastDrawn >= kDrawStep) {
            m_lastDrawn = now;
            m_timeLeft->advance(fraction, now);
            draw(std::clamp(fraction, 0.0, 1.0));
        }
    }
    return !interrupted;
}

void TerminalTask::draw(double fraction) {
    const int filled = static_cast<int>(fraction * kBarWidth);
    const std::string left = m_timeLeft ? m_timeLeft->text() : std::string();
    const std::size_t room =
        std::max(kTitleWidth - std::min(kTitleWidth, left.size()), kLeastTitle);
    const std::size_t length = charCount(m_title);
    const std::string tail =
        length > room ? fmt::format("...{}", charSub(m_title, length - room)) : m_title;
    m_err << fmt::format("\r\x1B[K[{:#<{}}{:.<{}}] {:3}%{}{} {}", "", filled, "",
                         kBarWidth - filled, static_cast<int>(fraction * 100),
                         left.empty() ? "" : ", ", left, tail);
    m_err.flush();
    m_drawn = true;
}

void TerminalTask::clear() {
    if (m_drawn)
        m_err << "\r\x1B[K" << std::flush;
    m_drawn = false;
    m_timeLeft.reset();
}

} // namespace nv::cli
