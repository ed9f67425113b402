#pragma once

#include <QPalette>

#include <cstdint>

namespace nv {

enum class ImportLight : std::uint8_t;

/// That of the program, with letters and ground in the colours of a light, as its theme is dark or
/// not.
QPalette lightPalette(ImportLight light);

} // namespace nv
