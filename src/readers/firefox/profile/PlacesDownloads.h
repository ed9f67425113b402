#pragma once

#include "readers/Reader.h"
#include "readers/firefox/profile/PlacesNotes.h"
#include "readers/firefox/profile/PlacesPages.h"

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace nv {

/// Downloads, which Firefox has kept as annotations of their pages since version 21.
class PlacesDownloads {
  public:
    /// Takes the notes that tell of downloads, and finds the visit of each.
    PlacesDownloads(PlacesNotes &notes, PlacesPages &pages);

    /// The number of the download that the visit began; nothing for other visits.
    std::optional<std::int64_t> of(const PlaceVisit &visit) const;
    /// A row a download. False when cancelled.
    [[nodiscard]] bool save(ReadContext &ctx, Date fileCreated, ReadResult &result) const;

  private:
    struct Download {
        std::int64_t id = 0; ///< of the first annotation's row
        std::int64_t place = 0;
        const PlaceVisit *visit = nullptr;
        std::optional<std::int64_t> added; ///< µs
        const PlaceAnnotation *target = nullptr;
        const PlaceAnnotation *metaData = nullptr;
    };

    UrlRecord recordOf(const ReadContext &ctx, const Download &download, Date fileCreated) const;

    PlacesPages &m_pages;
    std::vector<Download> m_downloads; ///< by page
    std::unordered_map<std::int64_t, std::int64_t> m_byVisit;
};

} // namespace nv
