#pragma once

#include "base/FailureLog.h"
#include "base/Files.h"

#include <cstdint>
#include <exception>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace nv {

// The traps. Outside of them, `catch` stands only in main() and in platform adapters.
// A StorageFailure passes through the first two: it is no bad record but the end of the task.

/// The procedure trap: runs `body`; a failure is logged once under `procedure`, and the result is
/// `fallback`.
template <class Result, class Body>
[[nodiscard]] Result trapped(FailureLog &log, Severity severity, std::string_view procedure,
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

/// The same for a procedure without a result: nothing that follows depends on it.
template <class Body>
void trapped(FailureLog &log, Severity severity, std::string_view procedure,
             std::string_view recommendation, Body &&body) {
    static_assert(std::is_void_v<std::invoke_result_t<Body>>, "a result would be lost here");
    static_cast<void>(trapped(log, severity, procedure, recommendation, false, [&body] {
        std::forward<Body>(body)();
        return true;
    }));
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
    [[nodiscard]] bool run(std::uint64_t place, Body &&body) {
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

    /// The same where failed() tells the losses and nothing else depends on this one record.
    template <class Body>
    void attempt(std::uint64_t place, Body &&body) {
        static_cast<void>(run(place, std::forward<Body>(body)));
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
[[nodiscard]] std::optional<std::string> failureOf(FailureLog &log, std::string_view procedure,
                                                   Body &&body) {
    try {
        std::forward<Body>(body)();
        return std::nullopt;
    } catch (const std::exception &failure) {
        log.write({failure.what(), std::string(procedure), Severity::Warning,
                   std::string(kContactSupport)});
        return failure.what();
    }
}

/// The same for what no command depends on: the log tells, and the command goes on without.
template <class Body>
void logFailureOf(FailureLog &log, std::string_view procedure, Body &&body) {
    static_cast<void>(failureOf(log, procedure, std::forward<Body>(body)));
}

} // namespace nv
