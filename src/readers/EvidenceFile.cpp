#include "readers/EvidenceFile.h"

#include "base/Text.h"

namespace nv {

namespace fs = std::filesystem;

namespace {

using Step = EvidenceWatch::Step;

/// Runs the step on `path` of the evidence: a FileFailure becomes an EvidenceFailure.
template <class Body>
auto watched(EvidenceWatch *watch, Step step, const fs::path &path, Body &&body) {
    try {
        if (const int error = watch ? watch->errorBefore(step, path) : 0)
            throw FileFailure(step == Step::open ? "cannot open" : "cannot read", path, error);
        return std::forward<Body>(body)();
    } catch (const FileFailure &failure) {
        throw EvidenceFailure(failure, path);
    }
}

} // namespace

EvidenceFile::EvidenceFile(const fs::path &path, EvidenceWatch *watch)
    : m_file(watched(watch, Step::open, path, [&path] { return FileReader(path); })),
      m_watch(watch) {}

Bytes EvidenceFile::read(std::uint64_t offset, std::uint64_t count) const {
    return watched(m_watch, Step::read, path(), [&] { return m_file.read(offset, count); });
}

} // namespace nv
