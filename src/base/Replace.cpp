#include "base/Replace.h"

#include "base/Storage.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace nv {

namespace {

/// A folder is opened for reading only, which is enough to have its entries written.
void writeToDisk(const std::filesystem::path &path) {
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        failStorage("cannot open", path, errno);
    const int failed = ::fsync(fd) == 0 ? 0 : errno;
    ::close(fd);
    // Some network file systems know no fsync of a folder.
    if (failed != 0 && failed != EINVAL)
        failStorage("cannot write", path, failed);
}

} // namespace

void replaceDurably(const std::filesystem::path &whole, const std::filesystem::path &to) {
    writeToDisk(whole);
    if (std::rename(whole.c_str(), to.c_str()) != 0)
        failStorage("cannot replace", to, errno);
    writeToDisk(std::filesystem::absolute(to).parent_path());
}

} // namespace nv
