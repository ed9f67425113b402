#pragma once

#include "readers/FieldPlaces.h"

namespace nv {

/// Where the fields of a record of an index.dat lie: all but those of its cached file.
void locateInIndex(const PlaceSearch &search, FieldPlaces &places);

} // namespace nv
