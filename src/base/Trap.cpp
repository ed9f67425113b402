#include "base/Trap.h"

#include <fmt/format.h>

namespace nv {

std::string_view severityWord(Severity severity) {
    switch (severity) {
    case Severity::Warning:
        return "Warning";
    case Severity::Serious:
        return "Serious";
    case Severity::Critical:
        return "Critical";
    case Severity::Low:
        return "Low";
    }
    return "Warning";
}

RecordTrap::~RecordTrap() {
    if (m_failed > kLoggedRecords)
        write(fmt::format("{} further bad records are not listed", m_failed - kLoggedRecords));
}

void RecordTrap::note(std::uint64_t place, std::string_view message) {
    if (++m_failed <= kLoggedRecords)
        write(fmt::format("record at {}: {}", place, message));
}

void RecordTrap::write(std::string_view message) {
    m_log.write({fmt::format("{}{}{}", m_file, m_file.empty() ? "" : ": ", message), m_procedure,
                 Severity::Warning, std::string(kContactSupport)});
}

} // namespace nv
