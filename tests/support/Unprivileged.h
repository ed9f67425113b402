#pragma once

#include <filesystem>
#include <tuple>
#include <unistd.h>

namespace nv::test {

inline constexpr unsigned kNobody = 65534;

/// Lets the user that nobody is use what lies in `folder` as far as its owner may.
inline void giveToNobody(const std::filesystem::path &folder) {
    if (::geteuid() != 0)
        return;
    std::ignore = ::chown(folder.c_str(), kNobody, kNobody);
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder))
        std::ignore = ::lchown(entry.path().c_str(), kNobody, kNobody);
}

/// While it lives a test that the superuser runs opens files of `folder` as their owner would, who
/// is bound by their modes.
class Unprivileged {
  public:
    explicit Unprivileged(const std::filesystem::path &folder) : m_isRoot(::geteuid() == 0) {
        giveToNobody(folder);
        if (m_isRoot)
            m_isRoot = ::seteuid(kNobody) == 0;
    }
    ~Unprivileged() {
        if (m_isRoot && ::seteuid(0) != 0)
            ::_exit(1); // every test after this one would see another world
    }
    Unprivileged(const Unprivileged &) = delete;
    Unprivileged &operator=(const Unprivileged &) = delete;

  private:
    bool m_isRoot;
};

} // namespace nv::test
