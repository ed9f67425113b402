#pragma once

#include <filesystem>
#include <system_error>

namespace nv::test {

/// While it lives the process works in `folder`.
class WorkingFolder {
  public:
    explicit WorkingFolder(const std::filesystem::path &folder)
        : m_before(std::filesystem::current_path()) {
        std::filesystem::current_path(folder);
    }
    ~WorkingFolder() {
        std::error_code ignored;
        std::filesystem::current_path(m_before, ignored);
    }
    WorkingFolder(const WorkingFolder &) = delete;
    WorkingFolder &operator=(const WorkingFolder &) = delete;

  private:
    std::filesystem::path m_before;
};

} // namespace nv::test
