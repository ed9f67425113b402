#pragma once

#include "readers/FieldPlaces.h"

namespace nv {

/// Locate of FieldPlaces.h for a history, docs/formats/safari-history.md.
void locateInSafariHistory(const PlaceSearch &search, FieldPlaces &places);

} // namespace nv
