#pragma once

#include "views/overview/ImportOverview.h"

#include <cstdint>

namespace nv {

/// How a light is painted: letters on a ground, each 0xRRGGBB.
struct LightColors {
    std::uint32_t text = 0;
    std::uint32_t ground = 0;
};

/// Readable at 7 to 1 at least in the palette that they are for.
constexpr LightColors lightColors(ImportLight light, bool isDark) {
    switch (light) {
    case ImportLight::green:
        return isDark ? LightColors{0x8BE0A4, 0x12301D} : LightColors{0x0B4F24, 0xE3F4E8};
    case ImportLight::amber:
        return isDark ? LightColors{0xFFCF7D, 0x3A2A06} : LightColors{0x643500, 0xFFF1D6};
    case ImportLight::red:
        break;
    }
    return isDark ? LightColors{0xFFB3AD, 0x401616} : LightColors{0x86161B, 0xFDE8E8};
}

} // namespace nv
