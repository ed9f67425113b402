#pragma once

#include "readers/FieldPlaces.h"

namespace nv {

/// Locate of FieldPlaces.h for both forms of a history, docs/formats/opera-history.md.
void locateInOperaHistory(const PlaceSearch &search, FieldPlaces &places);

} // namespace nv
