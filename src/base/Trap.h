#pragma once

#include "base/FailureLog.h"
#include "base/Files.h"

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace nv {

// The traps. Outside of them, `catch` stands only in main() and in platform adapters.
// A StorageFailure passes through the first two: it is no bad record but the end of the task.

/// The procedure trap: runs `body`; a failure is logged once under `procedure`, and the result is
/// `fallback`.
template <class Result, class Body>
Result trapped(FailureLog &log, Severity severity, std::string_view procedure,
               std::string_view recommendation, Result fallback, Body &&body) {
    try {
        return std::forward<Body>(body)();
    } catch (const StorageFailure &) {
        throw;
    } catch (const std::exception &failure) {
        log.write({failure.what(), std::string(procedure), severity, std::string(recommendation)});
        return fallback;
    }
}

/// The record trap: one bad record is logged with procedure and offset, counted, and the walk goes
/// on. After kLoggedRecords in a file the rest is only counted; the destructor logs their number.
class RecordTrap {
  public:
    static constexpr std::uint64_t kLoggedRecords = 50;

    /// `file` names the evidence in the log; empty where the records are those of the project.
    RecordTrap(FailureLog &log, std::string_view procedure, std::string file = {})
        : m_log(log), m_procedure(procedure), m_file(std::move(file)) {}
    ~RecordTrap();
    RecordTrap(const RecordTrap &) = delete;
    RecordTrap &operator=(const RecordTrap &) = delete;

    /// True when `body` came through. `place` is the record's offset or row in its file.
    template <class Body>
    bool run(std::uint64_t place, Body &&body) {
        try {
            std::forward<Body>(body)();
            return true;
        } catch (const StorageFailure &) {
            throw;
        } catch (const std::exception &failure) {
            note(place, failure.what());
            return false;
        }
    }

    std::uint64_t failed() const { return m_failed; }

  private:
    void note(std::uint64_t place, std::string_view message);
    void write(std::string_view message);

    FailureLog &m_log;
    std::string m_procedure;
    std::string m_file;
    std::uint64_t m_failed = 0;
};

/// The command trap: runs `body` for a command of the examiner's, who has to learn of any failure
/// at once. It is logged under `procedure`, and its message is the result; nothing when all went
/// well.
template <class Body>
std::optional<std::string> failureOf(FailureLog &log, std::string_view procedure, Body &&body) {
    try {
        std::forward<Body>(body)();
        return std::nullopt;
    } catch (const std::exception &failure) {
        log.write({failure.what(), std::string(procedure), Severity::Warning,
                   std::string(kContactSupport)});
        return failure.what();
    }
}

} // namespace nv
