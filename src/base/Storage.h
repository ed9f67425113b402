#pragma once

#include "base/ByteView.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace nv {

// What the program writes itself: scratch, projects, settings, output. Where that fails there is no
// bad record to pass over: content would be lost in silence, one record after the other. So all of
// these throw StorageFailure, which ends the task.

/// Throws a StorageFailure that says what can't be done, with which file, on which disk, and why.
[[noreturn]] void failStorage(std::string_view what, const std::filesystem::path &path,
                              int errorNumber);

/// Where the disk is mounted that holds `path`, or would hold it.
std::filesystem::path diskOf(const std::filesystem::path &path);

/// Makes the folder and those above it, where they aren't there.
void makeFolder(const std::filesystem::path &folder);
/// The folder without anything in it; made when it isn't there.
void makeEmptyFolder(const std::filesystem::path &folder);
void moveFile(const std::filesystem::path &from, const std::filesystem::path &to);
/// Cuts a file of the program's own to `size` bytes.
void cutFile(const std::filesystem::path &path, std::uint64_t size);

/// What is at the place where a file is to be written.
enum class Existing {
    replace,   ///< it goes first, so that a link leads the writing nowhere else
    overwrite, ///< it is written through: a link, a device
};

/// A file being written, closed at the end of the scope. A name that can't be that of a file, for
/// instance one that is too long, is a FileFailure: it costs the one file only.
class FileWriter {
  public:
    explicit FileWriter(const std::filesystem::path &path, Existing existing = Existing::replace);
    ~FileWriter();
    FileWriter(const FileWriter &) = delete;
    FileWriter &operator=(const FileWriter &) = delete;

    void write(std::string_view bytes);
    /// Some disks tell only now that they are full.
    void close();

  private:
    std::filesystem::path m_path;
    int m_fd;
};

} // namespace nv
