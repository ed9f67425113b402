#pragma once

#include "base/FailureLog.h"
#include "base/Files.h"

#include <filesystem>
#include <string>
#include <utility>

namespace nv {

// Files beside an artefact, such as those that hold its bodies. That one of them can't be read ends
// no reading: the record is stored without, and somebody has to learn of it.

/// A log that also keeps which files of the evidence could not be read.
class GapLog : public FailureLog {
  public:
    /// May be told of the same file again and again.
    virtual void unread(const std::filesystem::path &file, const std::string &reason) = 0;
};

/// The file that could not be opened or read is one of the evidence, and none of the program's own.
class EvidenceFailure : public FileFailure {
  public:
    EvidenceFailure(const FileFailure &failure, std::filesystem::path file)
        : FileFailure(failure), m_file(std::move(file)) {}
    const std::filesystem::path &file() const { return m_file; }

  private:
    std::filesystem::path m_file;
};

// Traps that end nothing: the failure goes on to the next one.

/// Runs `body`, which reads `file` of the evidence and no other: a FileFailure becomes an
/// EvidenceFailure.
template <class Body>
decltype(auto) ofEvidence(const std::filesystem::path &file, Body &&body) {
    try {
        return std::forward<Body>(body)();
    } catch (const FileFailure &failure) {
        throw EvidenceFailure(failure, file);
    }
}

/// Runs `body`; an EvidenceFailure is told to `log` when that is a GapLog.
template <class Body>
decltype(auto) tellingGaps(FailureLog &log, Body &&body) {
    try {
        return std::forward<Body>(body)();
    } catch (const EvidenceFailure &failure) {
        if (auto *gaps = dynamic_cast<GapLog *>(&log))
            gaps->unread(failure.file(), failure.what());
        throw;
    }
}

/// Both at once.
template <class Body>
decltype(auto) readEvidence(FailureLog &log, const std::filesystem::path &file, Body &&body) {
    return tellingGaps(
        log, [&]() -> decltype(auto) { return ofEvidence(file, std::forward<Body>(body)); });
}

} // namespace nv
