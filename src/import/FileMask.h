#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// File masks separated by ";", such as "history*.dat;places*.sqlite". "*" stands for any text, "?"
/// for one character; letters match in either case. A text without masks matches nothing.
class FileMask {
  public:
    explicit FileMask(std::string_view text);
    bool matches(std::string_view fileName) const;

  private:
    std::vector<std::string> m_masks; ///< lower-case
};

} // namespace nv
