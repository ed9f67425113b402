#pragma once

#include "readers/FieldPlaces.h"

namespace nv {

/// Where the fields of a record of Opera's dcache4.url lie.
void locateInOperaCache(const PlaceSearch &search, FieldPlaces &places);

} // namespace nv
