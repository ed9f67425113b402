#pragma once

#include "readers/Reader.h"
#include "readers/chrome/history/VisitTables.h"
#include "readers/sqlite/FurtherTables.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace nv {

/// The downloads of a Chromium history: first what joins them with visits, then their records.
class Downloads {
  public:
    /// False when cancelled, as are all of these.
    [[nodiscard]] bool read(FurtherTables &tables, Stretch stretch);
    /// Finds the visit of each download, where there is one.
    void joinWith(VisitTables &history);
    [[nodiscard]] bool save(FurtherTables &tables, ReadContext &ctx, Stretch stretch,
                            Date fileCreated);
    /// Addresses of downloads that have no row any more.
    std::uint64_t hopsWithoutDownload() const;

  private:
    struct Download {
        std::int64_t start = 0; ///< microseconds since 1601, 0 for none
        std::string url;        ///< in the table itself, up to 2012
        std::vector<std::pair<std::int64_t, std::string>> chain; ///< by place
        std::int64_t visit = StoredVisit::kNothing;
        bool isListed = false;
    };

    void addFacts(FactList &facts, const Download &download, std::int64_t rowId,
                  const Row &row) const;
    UrlRecord recordOf(const ReadContext &ctx, const Download &download, std::int64_t rowId,
                       const Row &row, Date fileCreated) const;

    std::unordered_map<std::int64_t, Download> m_downloads;
};

} // namespace nv
