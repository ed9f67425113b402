#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace nv {

struct MorkLine {
    std::uint64_t offset = 0; ///< of its first byte in the file, 0-based
    std::string_view text;    ///< without the line end
};

/// The lines of a text that is in memory; they end with LF, CR or both. Lines longer than
/// limits::kMorkLineBytes are left out.
class MorkLines {
  public:
    /// `file` must outlive the lines.
    explicit MorkLines(std::string_view file) : m_file(file) {}

    std::optional<MorkLine> next();
    /// How much of the text is read, 0 to 1.
    double fraction() const;
    /// Where the first line that is left out begins.
    std::optional<std::uint64_t> leftOutAt() const { return m_leftOutAt; }

  private:
    MorkLine cutLine();

    std::string_view m_file;
    std::size_t m_at = 0;
    std::optional<std::uint64_t> m_leftOutAt;
};

} // namespace nv
