#pragma once

#include "readers/Reader.h"
#include "readers/firefox/profile/PlacesNotes.h"
#include "readers/firefox/profile/PlacesPages.h"
#include "readers/sqlite/EvidenceDatabase.h"

namespace nv {

/// A row for each bookmark of a "places.sqlite". False when cancelled, which stands in `result`
/// then.
[[nodiscard]] bool saveBookmarks(ReadContext &ctx, EvidenceDatabase &database, PlacesPages &pages,
                                 PlacesNotes &notes, Date fileCreated, ReadResult &result);

} // namespace nv
