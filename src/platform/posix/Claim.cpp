#include "platform/Claim.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace nv {

// A lock on the project itself would take those of the database away when it is closed; so the
// claim is the name of a socket in the abstract namespace, on which nobody listens. Where there are
// no sockets the claim is held: an import is worth more than the warning.
Claim::Claim(std::string_view name) : m_socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    // The zero byte in front makes the name abstract.
    const std::size_t length = std::min(name.size(), sizeof(address.sun_path) - 1);
    std::copy_n(name.begin(), length, std::begin(address.sun_path) + 1);
    const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + length);
    const auto *plain = reinterpret_cast<const sockaddr *>(&address);
    m_held = m_socket < 0 || ::bind(m_socket, plain, size) == 0 || errno != EADDRINUSE;
}

Claim::~Claim() {
    if (m_socket >= 0)
        ::close(m_socket);
}

} // namespace nv
