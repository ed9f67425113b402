#pragma once

#include <filesystem>

namespace nv {

/// Keeps other programs of ours from changing a file while it lives. The lock is on the folder of
/// the file, since the file itself is replaced. Where it can't be had (a folder that isn't there, a
/// file system without locks) it does nothing, and the change shows what is wrong.
class FileLock {
  public:
    explicit FileLock(const std::filesystem::path &file);
    ~FileLock();
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;

  private:
    int m_folder = -1; ///< a descriptor, which owns the lock
};

} // namespace nv
