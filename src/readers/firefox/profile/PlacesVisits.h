#pragma once

#include "readers/Reader.h"
#include "readers/firefox/profile/PlacesDownloads.h"
#include "readers/firefox/profile/PlacesPages.h"

namespace nv {

/// The facts of a visit, and of the download that it began.
void addVisit(FactList &facts, const PlaceVisit &visit, const PlacesPages &pages,
              const PlacesDownloads &downloads);

/// A row for each visit that no page's row stands for. False when cancelled, which stands in
/// `result` then.
[[nodiscard]] bool saveVisits(ReadContext &ctx, PlacesPages &pages,
                              const PlacesDownloads &downloads, Date fileCreated,
                              ReadResult &result);

} // namespace nv
