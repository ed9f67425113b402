// Of a Chromium history are read, each column where the version has it:
//   visits               = id url visit_time from_visit opener_visit transition segment_id
//                          visit_duration external_referrer_url originator_cache_guid
//                          originator_visit_id                       url names the page's id
//   visit_source         = id source                                 id is the visit's
//   content_annotations  = visit_id page_language search_terms search_normalized_url
//   context_annotations  = visit_id total_foreground_duration response_code
//   clusters_and_visits  = cluster_id visit_id normalized_url
//   segments             = id name url_id
//   visited_links        = link_url_id top_level_url

#include "readers/chrome/history/VisitTables.h"

#include "readers/chrome/shared/StoredDate.h"

#include <array>
#include <utility>

namespace nv {

namespace {

constexpr std::int64_t kNothing = StoredVisit::kNothing;

using Names = std::string_view;
constexpr auto kVisits = std::to_array<Names>(
    {"id", "url", "visit_time", "from_visit", "opener_visit", "transition", "segment_id",
     "visit_duration", "originator_visit_id", "originator_cache_guid", "external_referrer_url"});
enum VisitColumn : std::size_t {
    kId,
    kUrl,
    kTime,
    kFrom,
    kOpener,
    kTransition,
    kSegment,
    kDuration,
    kDeviceVisit,
    kDevice,
    kExternalReferrer
};

/// `whole` cut into `parts`, and of these the one with this number, from 0.
Stretch partOf(Stretch whole, int part, int parts) {
    const double width = (whole.to - whole.from) / parts;
    return {whole.from + width * part, whole.from + width * (part + 1)};
}

/// The later one by date, and of two at a time the one with the greater number.
bool isLater(const StoredVisit &visit, const StoredVisit &other) {
    return std::pair(visit.time, visit.id) > std::pair(other.time, other.id);
}

} // namespace

bool VisitTables::read(FurtherTables &tables, EvidenceDatabase &database, Stretch stretch,
                       ReadResult &result) {
    constexpr int kParts = 7;
    const auto part = [stretch](int number) { return partOf(stretch, number, kParts); };
    if (!readVisits(tables, part(0)))
        return false;
    visits.settle();
    settleLastVisits();
    if (!readSources(tables, database, part(1)) || !readContent(tables, part(2)) ||
        !readContext(tables, part(3)) || !readClusters(tables, part(4)) ||
        !readSegments(tables, part(5)) || !readLinks(tables, part(6), result))
        return false;
    if (m_notesWithoutVisit > 0)
        result.passedOver["notes on visits that are no longer listed"] = m_notesWithoutVisit;
    return true;
}

bool VisitTables::readVisits(FurtherTables &tables, Stretch stretch) {
    return tables.each("visits", kVisits, stretch, [this](std::int64_t rowId, const Row &row) {
        const auto number = [&row](VisitColumn column) {
            return row.number(column).value_or(kNothing);
        };
        StoredVisit visit;
        visit.id = row.number(kId).value_or(rowId);
        visit.page = number(kUrl);
        visit.time = number(kTime);
        visit.from = number(kFrom);
        visit.opener = number(kOpener);
        visit.transition = number(kTransition);
        visit.segment = number(kSegment);
        visit.duration = number(kDuration);
        visit.deviceVisit = number(kDeviceVisit);
        visit.device = visits.wordFor(row.text(kDevice));
        if (std::string referrer = row.text(kExternalReferrer); !referrer.empty())
            visits.textsOf(visit.id).externalReferrer = std::move(referrer);
        if (visit.page != kNothing && isLost(visit))
            m_lostPages.insert(visit.page);
        visits.add(visit);
    });
}

/// A page's record has the date of its last visit, and stands for that visit. Where the browser has
/// left another date with the page, as it does when visits were imported, the record stands for the
/// visit of that date, or for none: no event is told twice or never.
void VisitTables::settleLastVisits() {
    auto &all = visits.visits();
    for (std::size_t at = 0; at < all.size(); ++at) {
        ListedPage *page = pages.find(all[at].page);
        const Date date = chromeDate(all[at].time == kNothing ? 0 : all[at].time);
        if (!page || !date.has() || date != chromeDate(page->lastVisit))
            continue;
        if (page->visit == ListedPage::kNoVisit || isLater(all[at], all[page->visit]))
            page->visit = at;
    }
}

/// The visit that a row of another table is about.
StoredVisit *VisitTables::known(const Row &row, std::size_t column, std::int64_t rowId) {
    StoredVisit *visit = visits.find(row.number(column).value_or(rowId));
    m_notesWithoutVisit += visit ? 0 : 1;
    return visit;
}

bool VisitTables::readSources(FurtherTables &tables, EvidenceDatabase &database, Stretch stretch) {
    constexpr auto kColumns = std::to_array<Names>({"id", "source"});
    if (database.hasTable("visit_source"))
        visits.tellSources();
    return tables.each("visit_source", kColumns, stretch,
                       [this](std::int64_t rowId, const Row &row) {
                           if (StoredVisit *visit = known(row, 0, rowId))
                               visit->source = row.number(1).value_or(kNothing);
                       });
}

bool VisitTables::readContent(FurtherTables &tables, Stretch stretch) {
    constexpr auto kColumns = std::to_array<Names>(
        {"visit_id", "page_language", "search_terms", "search_normalized_url"});
    return tables.each("content_annotations", kColumns, stretch,
                       [this](std::int64_t rowId, const Row &row) {
                           StoredVisit *visit = known(row, 0, rowId);
                           if (!visit)
                               return;
                           visit->language = visits.wordFor(row.text(1));
                           if (std::string terms = row.text(2); !terms.empty())
                               visits.textsOf(visit->id).searchTerms = std::move(terms);
                           std::string url = isLost(*visit) ? row.text(3) : std::string();
                           if (!url.empty()) {
                               VisitTexts &texts = visits.textsOf(visit->id);
                               texts.url = std::move(url);
                               texts.urlFrom = "content_annotations";
                           }
                       });
}

bool VisitTables::readContext(FurtherTables &tables, Stretch stretch) {
    constexpr auto kColumns =
        std::to_array<Names>({"visit_id", "total_foreground_duration", "response_code"});
    return tables.each("context_annotations", kColumns, stretch,
                       [this](std::int64_t rowId, const Row &row) {
                           if (StoredVisit *visit = known(row, 0, rowId)) {
                               visit->foreground = row.number(1).value_or(kNothing);
                               visit->response = row.number(2).value_or(kNothing);
                           }
                       });
}

bool VisitTables::readClusters(FurtherTables &tables, Stretch stretch) {
    constexpr auto kColumns = std::to_array<Names>({"visit_id", "cluster_id", "normalized_url"});
    return tables.eachByKey("clusters_and_visits", kColumns, stretch,
                            [this](std::int64_t, const Row &row) {
                                StoredVisit *visit = known(row, 0, kNothing);
                                if (!visit)
                                    return;
                                visit->cluster = row.number(1).value_or(kNothing);
                                std::string url = isLost(*visit) ? row.text(2) : std::string();
                                if (!url.empty()) {
                                    VisitTexts &texts = visits.textsOf(visit->id);
                                    texts.url = std::move(url);
                                    texts.urlFrom = "clusters_and_visits";
                                }
                            });
}

bool VisitTables::readSegments(FurtherTables &tables, Stretch stretch) {
    constexpr auto kColumns = std::to_array<Names>({"id", "name", "url_id"});
    return tables.each("segments", kColumns, stretch, [this](std::int64_t rowId, const Row &row) {
        const std::int64_t id = row.number(0).value_or(rowId);
        const std::int64_t page = row.number(2).value_or(kNothing);
        m_segments.try_emplace(id, row.text(1));
        if (m_lostPages.contains(page))
            m_segmentsOfPages.try_emplace(page, id);
    });
}

bool VisitTables::readLinks(FurtherTables &tables, Stretch stretch, ReadResult &result) {
    constexpr auto kColumns = std::to_array<Names>({"link_url_id", "top_level_url"});
    return tables.each("visited_links", kColumns, stretch, [&](std::int64_t, const Row &row) {
        const std::int64_t page = row.number(0).value_or(kNothing);
        if (m_lostPages.contains(page))
            m_links[page].push_back(row.text(1));
        else
            ++result.passedOver[pages.find(page)
                                    ? "rows of table visited_links: where a link to a page stood"
                                    : "rows of table visited_links: links to pages that are no "
                                      "longer listed and have no visit"];
    });
}

std::string_view VisitTables::referrerOf(const StoredVisit &visit) const {
    const StoredVisit *from = visits.find(visit.from);
    const ListedPage *page = from ? pageOf(*from) : nullptr;
    return page ? page->url : std::string_view();
}

void VisitTables::addFacts(FactList &facts, const StoredVisit &visit) const {
    addVisitFacts(facts, visits, visit);
    if (const auto segment = m_segments.find(visit.segment); segment != m_segments.end())
        facts.add("segment", segment->second, visit.segment);
    if (const auto downloads = m_downloads.find(visit.id); downloads != m_downloads.end())
        for (const std::int64_t download : downloads->second)
            facts.add("download_id", download);
}

void VisitTables::addFactsOfLostPage(FactList &facts, const StoredVisit &visit) const {
    if (visit.page != kNothing)
        facts.add("page_id", visit.page);
    if (const VisitTexts *texts = visits.findTexts(visit.id))
        facts.add("url_from", texts->urlFrom);
    if (const auto own = m_segmentsOfPages.find(visit.page); own != m_segmentsOfPages.end())
        if (own->second != visit.segment)
            facts.add("segment", m_segments.at(own->second), own->second);
    if (const auto links = m_links.find(visit.page); links != m_links.end())
        for (const std::string &link : links->second)
            facts.add("linked_from", link);
}

void VisitTables::join(std::int64_t visit, std::int64_t download) {
    m_downloads[visit].push_back(download);
}

} // namespace nv
