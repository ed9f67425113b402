#pragma once

#include "readers/FieldPlaces.h"

namespace nv {

/// Where the fields of an entry of Safari's Cache.db lie.
void locateInSafariCache(const PlaceSearch &search, FieldPlaces &places);

} // namespace nv
