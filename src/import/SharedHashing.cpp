#include "import/SharedHashing.h"

#include "base/NoLog.h"
#include "base/Trap.h"

#include <algorithm>
#include <chrono>
#include <string_view>
#include <thread>

namespace nv {

namespace {

/// How long a cancel may wait, and a progress bar stand still.
constexpr std::chrono::milliseconds kBetweenQuestions(20);

std::size_t threadsFor(std::size_t files) {
    constexpr std::size_t kMost = 8; // more readers than that only make a disk seek
    const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
    return std::min({files, processors, kMost});
}

} // namespace

std::optional<std::vector<FileHashes>>
SharedHashing::run(const std::function<bool(std::uint64_t)> &goOn) {
    // Where the system gives no thread, it is done on this one as it is waited for.
    constexpr auto kWhereItCan = std::launch::async | std::launch::deferred;
    std::vector<std::future<void>> threads(threadsFor(m_files.size()));
    for (std::future<void> &thread : threads)
        thread = std::async(kWhereItCan, [this] { hashFiles(); });
    for (std::future<void> &thread : threads) {
        while (thread.wait_for(kBetweenQuestions) == std::future_status::timeout)
            m_isCancelled = m_isCancelled || !goOn(m_bytesRead);
        thread.get();
    }
    if (m_isCancelled)
        return std::nullopt;
    std::vector<FileHashes> hashes;
    hashes.reserve(m_hashes.size());
    for (std::size_t at = 0; at < m_hashes.size(); ++at)
        hashes.push_back(take(at));
    return hashes;
}

FileHashes SharedHashing::take(std::size_t at) {
    if (!m_unread)
        return m_hashes[at].get();
    FileHashes hashes;
    NoLog unheard; // whoever asked for them tells of all
    const auto failure = failureOf(unheard, {}, [&] { hashes = m_hashes[at].get(); });
    if (failure)
        m_unread->push_back({m_files[at], *failure});
    return hashes;
}

/// After a failure that ends the hashing no further file is taken. Those before it are read to
/// their end, so that which failure is told doesn't hang on the threads.
void SharedHashing::hashFiles() {
    for (std::size_t at = m_next++; at < m_files.size() && !m_isCancelled; at = m_next++) {
        bool isRead = false;
        std::packaged_task<FileHashes()> task([&] {
            FileHashes hashes = hashesOf(m_files[at]);
            isRead = true;
            return hashes;
        });
        m_hashes[at] = task.get_future();
        task();
        if (!isRead && !m_unread)
            m_next = m_files.size();
    }
}

FileHashes SharedHashing::hashesOf(const std::filesystem::path &file) {
    FileHashing hashing;
    const auto add = [&](std::string_view block) {
        hashing.add(block);
        m_bytesRead += block.size();
        return !m_isCancelled;
    };
    static_cast<void>(inBlocks(m_evidence.open(file), add)); // once cancelled no hash is taken
    return hashing.take();
}

} // namespace nv
