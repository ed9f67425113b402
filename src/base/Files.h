#pragma once

#include "base/ByteView.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace nv {

/// A file that could not be opened, read or copied; the message names it and says why.
class FileFailure : public std::runtime_error {
  public:
    FileFailure(std::string_view what, const std::filesystem::path &path, int errorNumber);
};

/// What the program writes itself, the project and its scratch folder above all, can't be written
/// any more, for instance on a full disk. This is no bad record: it passes through every trap and
/// ends the task.
class StorageFailure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// Evidence is only ever opened for reading.

/// The first `count` bytes, fewer when the file is shorter. Throws FileFailure.
Bytes readHead(const std::filesystem::path &path, std::size_t count);
/// The whole file. Throws FileFailure.
Bytes readWhole(const std::filesystem::path &path);
/// Hands the file on in blocks with the count of bytes read so far, until `take` says false.
/// True when the whole file was read. Throws FileFailure.
bool readInBlocks(const std::filesystem::path &path,
                  const std::function<bool(std::string_view block, std::uint64_t readSoFar)> &take);
/// An open file of evidence, read where a format's addresses point. Each call reads anew: nothing
/// of the file is kept.
class FileReader {
  public:
    /// Throws FileFailure.
    explicit FileReader(const std::filesystem::path &path);
    ~FileReader();
    FileReader(FileReader &&other) noexcept;
    FileReader(const FileReader &) = delete;
    FileReader &operator=(const FileReader &) = delete;
    FileReader &operator=(FileReader &&) = delete;

    const std::filesystem::path &path() const { return m_path; }
    /// In bytes, when the file was opened.
    std::uint64_t size() const { return m_size; }
    /// Up to `count` bytes from `offset` (0-based), fewer where the file ends. Throws FileFailure.
    Bytes read(std::uint64_t offset, std::uint64_t count) const;

  private:
    std::filesystem::path m_path;
    int m_fd;
    std::uint64_t m_size;
};

// What is written is the program's own: these throw StorageFailure when it can't be, and
// FileFailure for what is read (see base/Storage.h).

/// Copies up to `count` bytes of `from`, beginning at `offset` (0-based), over `to`. Returns how
/// many there were.
std::uint64_t copyRange(const FileReader &from, std::uint64_t offset, std::uint64_t count,
                        const std::filesystem::path &to);
/// Copies `from` over `to`; the copy is the owner's to write.
void copyToScratch(const std::filesystem::path &from, const std::filesystem::path &to);
void writeWhole(const std::filesystem::path &path, std::string_view bytes);

/// A path as UTF-8 text. Names that are no valid UTF-8 are shown as Windows-1252; use the path
/// itself, not this text, to open the file.
std::string textOf(const std::filesystem::path &path);

} // namespace nv
