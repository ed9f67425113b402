#include "base/FileLock.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

namespace nv {

FileLock::FileLock(const std::filesystem::path &file)
    : m_folder(::open(std::filesystem::absolute(file).parent_path().c_str(),
                      O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    while (m_folder >= 0 && ::flock(m_folder, LOCK_EX) != 0 && errno == EINTR) {
    }
}

FileLock::~FileLock() {
    if (m_folder >= 0)
        ::close(m_folder);
}

} // namespace nv
