#pragma once

#include "readers/Reader.h"
#include "readers/chrome/history/PageTable.h"
#include "readers/chrome/history/VisitStore.h"
#include "readers/sqlite/FurtherTables.h"

#include <cstdint>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace nv {

/// The tables around `visits` of a Chromium history, in memory: a pass over each.
class VisitTables {
  public:
    PageTable pages;
    VisitStore visits;

    /// The pages must have been read. False when cancelled.
    [[nodiscard]] bool read(FurtherTables &tables, EvidenceDatabase &database, Stretch stretch,
                            ReadResult &result);

    /// Null where the visit's page isn't listed any more.
    const ListedPage *pageOf(const StoredVisit &visit) const { return pages.find(visit.page); }
    /// The address of the page that the browser came from; empty when it isn't known.
    std::string_view referrerOf(const StoredVisit &visit) const;
    /// All facts of the visit.
    void addFacts(FactList &facts, const StoredVisit &visit) const;
    /// What is left of a page that isn't listed any more.
    void addFactsOfLostPage(FactList &facts, const StoredVisit &visit) const;
    /// The visit belongs to the download.
    void join(std::int64_t visit, std::int64_t download);

  private:
    bool readVisits(FurtherTables &tables, Stretch stretch);
    bool readSources(FurtherTables &tables, EvidenceDatabase &database, Stretch stretch);
    bool readContent(FurtherTables &tables, Stretch stretch);
    bool readContext(FurtherTables &tables, Stretch stretch);
    bool readClusters(FurtherTables &tables, Stretch stretch);
    bool readSegments(FurtherTables &tables, Stretch stretch);
    bool readLinks(FurtherTables &tables, Stretch stretch, ReadResult &result);
    void settleLastVisits();
    bool isLost(const StoredVisit &visit) const { return pageOf(visit) == nullptr; }
    StoredVisit *known(const Row &row, std::size_t column, std::int64_t rowId);

    std::unordered_map<std::int64_t, std::string> m_segments;
    std::unordered_map<std::int64_t, std::int64_t> m_segmentsOfPages;   ///< of pages that are gone
    std::unordered_map<std::int64_t, std::vector<std::string>> m_links; ///< the same
    std::unordered_set<std::int64_t> m_lostPages;
    std::unordered_map<std::int64_t, std::vector<std::int64_t>> m_downloads; ///< by visit
    std::uint64_t m_notesWithoutVisit = 0;
};

} // namespace nv
