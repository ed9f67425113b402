#pragma once

#include "base/Files.h"
#include "readers/ByteSource.h"

#include <cstdint>
#include <filesystem>

namespace nv {

// Files and folders that the program itself made below a scratch folder. What lies in the evidence
// is asked of Evidence.

/// One that is open for reading.
class ScratchFile final : public ByteSource {
  public:
    /// Throws FileFailure.
    explicit ScratchFile(const std::filesystem::path &path) : m_file(path) {}

    const std::filesystem::path &path() const override { return m_file.path(); }
    std::uint64_t size() const override { return m_file.size(); }
    Bytes read(std::uint64_t offset, std::uint64_t count) const override {
        return m_file.read(offset, count);
    }

  private:
    FileReader m_file;
};

namespace scratch {

/// A plain file, and no link.
bool isThere(const std::filesystem::path &file);
/// In bytes. Throws StorageFailure when it isn't there any more.
std::uint64_t sizeOf(const std::filesystem::path &file);
/// A file that isn't there is removed already. Throws StorageFailure when it stays.
void remove(const std::filesystem::path &file);
/// The same where nothing depends on it, and in destructors.
void drop(const std::filesystem::path &file) noexcept;
/// With all that is in it.
void dropFolder(const std::filesystem::path &folder) noexcept;
/// False too when it isn't there.
bool isEmptyFolder(const std::filesystem::path &folder);

} // namespace scratch

} // namespace nv
