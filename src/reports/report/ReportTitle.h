#pragma once

#include <string_view>

namespace nv {

/// Of reports that nobody gave another one.
inline constexpr std::string_view kDefaultReportTitle =
    "Norvelane Internet Cache and History Analysis";

} // namespace nv
