#include "app/program/ErrorLog.h"

#include "base/Text.h"
#include "time/Date.h"

#include <fmt/format.h>

#include <fstream>

namespace nv {

namespace {

/// Evidence text can stand in a message: it must not forge lines of the log.
std::string oneLine(std::string_view text) {
    std::string line(text);
    for (char &c : line)
        if (static_cast<unsigned char>(c) < 0x20)
            c = ' ';
    return line;
}

} // namespace

ErrorLog::ErrorLog(std::filesystem::path path, const Clock &clock)
    : m_path(std::move(path)), m_clock(clock) {}

std::string ErrorLog::now() const {
    const CivilTime t = Date::fromTimePoint(m_clock.now() + m_clock.localOffset()).civil();
    return fmt::format("{:04}-{:02}-{:02} {:02}:{:02}:{:02}", t.year, t.month, t.day, t.hour,
                       t.minute, t.second);
}

void ErrorLog::goOnFor(std::string_view command) {
    m_heading = fmt::format("\r\n[{}]  Command:  {}\r\n", now(), oneLine(command));
    m_isHeaded = false;
}

/// Only where nothing else ends its growing.
void ErrorLog::turnOver() {
    std::error_code none;
    if (m_heading.empty() || std::filesystem::file_size(m_path, none) < kMostBytes || none)
        return;
    std::filesystem::rename(m_path, olderPath(), none);
    m_isHeaded = false;
}

void ErrorLog::write(const Failure &failure) {
    turnOver();
    std::ofstream file(m_path, std::ios::app | std::ios::binary);
    if (!m_isHeaded)
        file << m_heading;
    m_isHeaded = true;
    const std::string message = failure.message.empty() ? "Unknown error" : failure.message;
    file << fmt::format("\r\n[{}]  {}\r\n", now(), oneLine(message));
    if (!failure.procedure.empty())
        file << "   Function:  " << failure.procedure << "\r\n";
    file << "   Threat Level:  " << severityWord(failure.severity) << "\r\n";
    if (!failure.recommendation.empty())
        file << "   Recommendation:  " << failure.recommendation << "\r\n";
}

void ErrorLog::remove() {
    std::error_code ignored;
    std::filesystem::remove(m_path, ignored);
}

} // namespace nv
