#pragma once

#include <filesystem>
#include <string_view>

namespace nv::test {

/// A folder of the test's own, removed at its end.
class TempFolder {
  public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder &) = delete;
    TempFolder &operator=(const TempFolder &) = delete;

    const std::filesystem::path &path() const { return m_path; }
    /// Writes a file below the folder, making its parents.
    std::filesystem::path write(const std::filesystem::path &name, std::string_view bytes) const;

  private:
    std::filesystem::path m_path;
};

} // namespace nv::test
