#pragma once

#include "base/Files.h"
#include "readers/ByteSource.h"

#include <cstdint>
#include <filesystem>
#include <utility>

namespace nv {

/// A file or folder of the evidence that could not be listed, opened or read. Whatever goes wrong
/// with reading evidence is this.
class EvidenceFailure : public FileFailure {
  public:
    EvidenceFailure(const FileFailure &failure, std::filesystem::path file)
        : FileFailure(failure), m_file(std::move(file)) {}
    const std::filesystem::path &file() const { return m_file; }

  private:
    std::filesystem::path m_file;
};

/// Stands beside all reading of evidence. Tests let a step fail as a bad disk would.
class EvidenceWatch {
  public:
    enum class Step { list, open, read };
    virtual ~EvidenceWatch() = default;
    /// The system's number of the error that the step ends in; 0 lets it be done.
    virtual int errorBefore(Step step, const std::filesystem::path &path) = 0;
};

/// An open file of the evidence; Evidence opens it, for reading only. The watch must outlive it.
class EvidenceFile final : public ByteSource {
  public:
    const std::filesystem::path &path() const override { return m_file.path(); }
    std::uint64_t size() const override { return m_file.size(); }
    /// Throws EvidenceFailure.
    Bytes read(std::uint64_t offset, std::uint64_t count) const override;

  private:
    friend class Evidence;
    EvidenceFile(const std::filesystem::path &path, EvidenceWatch *watch);

    FileReader m_file;
    EvidenceWatch *m_watch;
};

} // namespace nv
