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
        m_log.write({fmt::format("{} further bad records of this file are not listed",
                                 m_failed - kLoggedRecords),
                     m_procedure, Severity::Warning, std::string(kContactSupport)});
}

void RecordTrap::note(std::uint64_t place, std::string_view message) {
    if (++m_failed <= kLoggedRecords)
        m_log.write({fmt::format("record at {}: {}", place, message), m_procedure,
                     Severity::Warning, std::string(kContactSupport)});
}

} // namespace nv
