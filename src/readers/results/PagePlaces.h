#pragma once

#include "readers/FieldPlaces.h"

namespace nv {

/// Locate of FieldPlaces.h for a page that lies in no cache, docs/formats/html.md: its title.
void locateInPage(const PlaceSearch &search, FieldPlaces &places);
/// The same for an event of a case file, docs/formats/netanalysis.md.
void locateInCase(const PlaceSearch &search, FieldPlaces &places);

} // namespace nv
