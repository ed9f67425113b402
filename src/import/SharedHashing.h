#pragma once

#include "base/Digest.h"
#include "readers/Evidence.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <future>
#include <optional>
#include <vector>

namespace nv {

/// Hashes files of the evidence on as many threads as there are processors: of a large cache it is
/// what a scan spends its time on. Evidence and files must outlive it; it runs once.
class SharedHashing {
  public:
    /// Files that can't be read are added to `unread`, where given, and their hashes are empty.
    SharedHashing(const Evidence &evidence, const std::vector<std::filesystem::path> &files,
                  std::vector<UnreadPlace> *unread = nullptr)
        : m_evidence(evidence), m_files(files), m_unread(unread), m_hashes(files.size()) {}

    /// In the order of the files. `goOn` is asked on the calling thread, again and again, with the
    /// bytes read so far; false ends the reading and gives nothing. Without `unread` throws the
    /// EvidenceFailure of the first file that couldn't be read.
    [[nodiscard]] std::optional<std::vector<FileHashes>>
    run(const std::function<bool(std::uint64_t)> &goOn);

  private:
    void hashFiles();
    FileHashes take(std::size_t at);
    FileHashes hashesOf(const std::filesystem::path &file);

    const Evidence &m_evidence;
    const std::vector<std::filesystem::path> &m_files;
    std::vector<UnreadPlace> *m_unread;
    std::vector<std::future<FileHashes>> m_hashes; ///< by file, or why it couldn't be read
    std::atomic<std::size_t> m_next = 0;           ///< the first file that nobody took
    std::atomic<std::uint64_t> m_bytesRead = 0;
    std::atomic<bool> m_isCancelled = false;
};

} // namespace nv
