#pragma once

#include "import/FileMask.h"
#include "import/ImportSettings.h"
#include "readers/Registry.h"

#include <string_view>
#include <vector>

namespace nv {

/// Which formats a file is tried for by its name.
class FormatNames {
  public:
    FormatNames(const ImportSettings &job, Formats formats);

    /// Whether it is tried for any.
    bool matches(std::string_view fileName) const { return m_mask.matches(fileName); }
    /// Classic ones share their masks: a history is found by the mask of another one. What comes
    /// anew adds nothing to what they find.
    std::vector<const Reader *> formatsFor(std::string_view fileName) const;
    std::vector<const Reader *> all() const;

  private:
    Formats m_formats;
    FileMask m_mask; ///< of all formats
    FileMask m_classicMask;
    std::vector<FileMask> m_ownMasks; ///< by format
};

} // namespace nv
