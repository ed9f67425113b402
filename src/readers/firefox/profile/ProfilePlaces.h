#pragma once

#include "readers/FieldPlaces.h"

namespace nv {

/// Locate of FieldPlaces.h for a "logins.json", docs/formats/firefox-logins.md. Of earlier files,
/// which are SQLite's, it tells nothing.
void locateInLogins(const PlaceSearch &search, FieldPlaces &places);
/// The same for a "history.dat", docs/formats/firefox-mork-history.md.
void locateInMork(const PlaceSearch &search, FieldPlaces &places);

} // namespace nv
