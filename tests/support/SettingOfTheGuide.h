#pragma once

#include "app/SettingFacts.h"

#include <array>
#include <string_view>

// The row that docs/adding-a-setting.md shows, compiled as it stands there.
namespace nv::setting {

// clang-format off
#define NV_ROW_OF_THE_GUIDE \
choice("BEYOND", "TabsOfRecord", "Above;Below", "Below", "Where the tabs of a record stand") \
    .shownAs("cbTabsOfRecord", "Ta&bs of a record:", "Tabs stand above or below what they show."),
// clang-format on

#define NV_TEXT_OF(...) #__VA_ARGS__
#define NV_TEXT(...) NV_TEXT_OF(__VA_ARGS__)

inline constexpr auto kOfTheGuide = std::to_array<SettingFacts>({NV_ROW_OF_THE_GUIDE});
/// Blanks may differ.
inline constexpr std::string_view kTextOfTheGuide = NV_TEXT(NV_ROW_OF_THE_GUIDE);

} // namespace nv::setting
