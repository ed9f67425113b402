#pragma once

#include "readers/FieldPlaces.h"

namespace nv {

/// Locate of FieldPlaces.h for bookmarks, docs/formats/chromium-bookmarks.md.
void locateInBookmarks(const PlaceSearch &search, FieldPlaces &places);
/// The same for site settings and accounts, docs/formats/chromium-settings.md.
void locateInSettings(const PlaceSearch &search, FieldPlaces &places);

} // namespace nv
