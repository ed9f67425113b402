#pragma once

#include "readers/FieldPlaces.h"

namespace nv {

/// Where the fields of an entry of Internet Explorer's cache for Macintosh lie.
void locateInMacCache(const PlaceSearch &search, FieldPlaces &places);

} // namespace nv
