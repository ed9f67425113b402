#pragma once

#include "import/ImportSettings.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace nv::test {

/// The box of that name, which must be one.
inline const SourceOption &importOption(std::string_view name) {
    const std::vector<const SourceOption *> options = importOptions();
    return **std::ranges::find(options, name, &SourceOption::name);
}

} // namespace nv::test
