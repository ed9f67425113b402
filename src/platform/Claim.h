#pragma once

#include <string_view>

namespace nv {

/// A name that one process of the machine holds at a time, until the claim goes or its process
/// ends, however it ends. Nothing of it lies on the disk.
class Claim {
  public:
    explicit Claim(std::string_view name);
    ~Claim();
    Claim(const Claim &) = delete;
    Claim &operator=(const Claim &) = delete;

    /// False when another process holds the name.
    bool isHeld() const { return m_held; }

  private:
    int m_socket;
    bool m_held = true;
};

} // namespace nv
