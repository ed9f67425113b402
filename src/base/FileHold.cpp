#include "base/FileHold.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace nv {

namespace {

constexpr std::size_t kLongestText = 4096; // bytes

int opened(const std::filesystem::path &file, FileHold::Make make) {
    constexpr int flags = O_RDWR | O_CLOEXEC | O_NOFOLLOW;
    constexpr mode_t ownerOnly = 0600;
    return make == FileHold::Make::yes ? ::open(file.c_str(), flags | O_CREAT, ownerOnly)
                                       : ::open(file.c_str(), flags);
}

FileHold::State locked(int file, FileHold::Kind kind) {
    if (file < 0)
        return FileHold::State::unknown;
    const int wish = kind == FileHold::Kind::alone ? LOCK_EX : LOCK_SH;
    int result = 0;
    do {
        result = ::flock(file, wish | LOCK_NB);
    } while (result != 0 && errno == EINTR);
    if (result == 0)
        return FileHold::State::held;
    return errno == EWOULDBLOCK ? FileHold::State::ofAnother : FileHold::State::unknown;
}

} // namespace

FileHold::FileHold(const std::filesystem::path &file, Kind kind, Make make)
    : m_file(opened(file, make)), m_state(locked(m_file, kind)) {}

FileHold::~FileHold() {
    if (m_file >= 0)
        ::close(m_file);
}

FileHold::FileHold(FileHold &&other) noexcept
    : m_file(std::exchange(other.m_file, -1)),
      m_state(std::exchange(other.m_state, State::unknown)) {}

bool FileHold::becomesAlone() {
    m_state = isHeld() ? locked(m_file, Kind::alone) : m_state;
    return isHeld();
}

bool FileHold::isStillAt(const std::filesystem::path &file) const {
    struct stat mine {};
    struct stat there {};
    return m_file >= 0 && ::fstat(m_file, &mine) == 0 && ::lstat(file.c_str(), &there) == 0 &&
           mine.st_dev == there.st_dev && mine.st_ino == there.st_ino;
}

std::string FileHold::text() const {
    std::string text(kLongestText, '\0');
    const ssize_t read = m_file < 0 ? 0 : ::pread(m_file, text.data(), text.size(), 0);
    text.resize(static_cast<std::size_t>(std::max<ssize_t>(read, 0)));
    return text;
}

/// A text that can't be written, as on a full disk, is missing: the lock is what counts.
void FileHold::write(std::string_view text) const {
    if (m_file >= 0 && ::ftruncate(m_file, 0) == 0 &&
        ::pwrite(m_file, text.data(), text.size(), 0) < 0)
        ::ftruncate(m_file, 0);
}

} // namespace nv
