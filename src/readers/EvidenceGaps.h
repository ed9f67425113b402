#pragma once

#include "base/FailureLog.h"
#include "readers/EvidenceFile.h"

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

/// A trap that ends nothing, since the failure goes on to the next one. Runs `body`; an
/// EvidenceFailure is told to `log` when that is a GapLog.
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

} // namespace nv
