#pragma once

#include "readers/FieldPlaces.h"

namespace nv {

// Where the fields of a record of a cache lie.

/// Of Firefox 2 and 3, with a map and block files.
void locateInFirefoxCache(const PlaceSearch &search, FieldPlaces &places);
/// Of Firefox 32 and later, each entry a file.
void locateInCache2(const PlaceSearch &search, FieldPlaces &places);
/// Of "caches.sqlite", which service workers fill.
void locateInSiteCache(const PlaceSearch &search, FieldPlaces &places);

} // namespace nv
