#pragma once

#include <filesystem>
#include <utility>

namespace nv {

/// A file or folder of the program's own that goes at the end of the scope, whatever ended it,
/// unless it was finished.
class Unfinished {
  public:
    explicit Unfinished(std::filesystem::path path) : m_path(std::move(path)) {}
    ~Unfinished() {
        std::error_code ignored;
        if (!m_path.empty())
            std::filesystem::remove_all(m_path, ignored);
    }
    Unfinished(const Unfinished &) = delete;
    Unfinished &operator=(const Unfinished &) = delete;

    const std::filesystem::path &path() const { return m_path; }
    /// It stands where it belongs now.
    void finished() { m_path.clear(); }

  private:
    std::filesystem::path m_path;
};

} // namespace nv
