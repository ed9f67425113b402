#include "cli/TerminalTask.h"

#include "base/Text.h"
#include "cli/RowWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <csignal>

namespace nv::cli {

std::atomic<bool> interrupted = false;
std::atomic<bool> outputClosed = false;

namespace {

constexpr std::chrono::milliseconds kDrawStep{100};
constexpr int kBarWidth = 30;
constexpr std::size_t kTitleWidth = 40;

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

void TerminalTask::describe(const TaskHeading &heading) {
    m_title = printable(heading.detail.empty() ? heading.title : heading.detail);
    m_lastDrawn = {};
}

bool TerminalTask::advance(double fraction) {
    if (m_isTerminal) {
        const auto now = std::chrono::steady_clock::now();
        if (now - m_lastDrawn >= kDrawStep) {
            m_lastDrawn = now;
            draw(std::clamp(fraction, 0.0, 1.0));
        }
    }
    return !interrupted;
}

void TerminalTask::draw(double fraction) {
    const int filled = static_cast<int>(fraction * kBarWidth);
    const std::size_t length = charCount(m_title);
    const std::string tail = length > kTitleWidth
                                 ? fmt::format("...{}", charSub(m_title, length - kTitleWidth))
                                 : m_title;
    m_err << fmt::format("\r\x1B[K[{:#<{}}{:.<{}}] {:3}% {}", "", filled, "", kBarWidth - filled,
                         static_cast<int>(fraction * 100), tail);
    m_err.flush();
    m_drawn = true;
}

void TerminalTask::clear() {
    if (m_drawn)
        m_err << "\r\x1B[K" << std::flush;
    m_drawn = false;
}

} // namespace nv::cli
