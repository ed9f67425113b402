#pragma once

#include <csignal>
#include <sys/resource.h>

namespace nv::test {

/// While it lives no file of this process grows beyond `bytes`: writing fails as on a full disk.
class SmallFiles {
  public:
    explicit SmallFiles(rlim_t bytes) : m_handler(std::signal(SIGXFSZ, SIG_IGN)) {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit small{bytes, m_before.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallFiles() {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }
    SmallFiles(const SmallFiles &) = delete;
    SmallFiles &operator=(const SmallFiles &) = delete;

  private:
    void (*m_handler)(int);
    rlimit m_before{};
};

} // namespace nv::test
