#pragma once

#include "readers/FieldPlaces.h"

namespace nv {

/// Locate of FieldPlaces.h for cookies: the index's record and the text file beside it,
/// docs/formats/ie-cookies.md.
void locateInCookies(const PlaceSearch &search, FieldPlaces &places);

} // namespace nv
