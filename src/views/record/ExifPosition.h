#pragma once

#include "views/record/Exif.h"
#include "views/record/Position.h"

#include <optional>

namespace nv {

/// Where the picture says it was taken; nothing where it doesn't, or says what no place can be.
std::optional<Position> positionOf(const ExifPicture &picture);

} // namespace nv
