#include "platform/posix/NetworkLock.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <sys/socket.h>
#include <unistd.h>

namespace nv {
namespace {

bool canOpen(int family) {
    const int fd = ::socket(family, SOCK_STREAM, 0);
    if (fd >= 0)
        ::close(fd);
    return fd >= 0;
}

/// Ends the process with what the lock did to it: it can't be taken off again.
[[noreturn]] void tellWhatIsLocked() {
    const bool isLocked =
        lockNetwork() && !canOpen(AF_INET) && errno == EACCES && !canOpen(AF_INET6);
    std::_Exit(isLocked && canOpen(AF_UNIX) ? 0 : 1);
}

TEST(NetworkLock, leavesLocalSocketsOnly) {
    ASSERT_TRUE(canOpen(AF_INET));
    EXPECT_EXIT(tellWhatIsLocked(), testing::ExitedWithCode(0), "");
    EXPECT_TRUE(canOpen(AF_INET));
}

} // namespace
} // namespace nv
