#include "readers/firefox/profile/PlacesPages.h"

#include "base/Trap.h"
#include "readers/sqlite/KeptMessage.h"
#include "readers/sqlite/TableCursor.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::uint64_t kRowsBetweenQuestions = 1024;

constexpr const char *kVisitTable = "moz_historyvisits";
constexpr std::array<std::string_view, 6> kVisitColumns = {"place_id",   "visit_date", "from_visit",
                                                           "visit_type", "source",     "is_local"};
enum VisitColumn : std::size_t { kPlace, kDate, kFrom, kType, kSource, kIsLocal };

constexpr std::array<std::string_view, 5> kPageColumns = {"id", "url", "title", "hidden",
                                                          "origin_id"};
enum PageColumn : std::size_t { kId, kUrl, kTitle, kHidden, kOrigin };

constexpr auto kTypes = std::to_array<MozWord>({{1, "link"},
                                                {visits::kTyped, "typed"},
                                                {visits::kBookmark, "bookmark"},
                                                {4, "embedded"},
                                                {5, "permanent redirect"},
                                                {6, "temporary redirect"},
                                                {visits::kDownload, "download"},
                                                {8, "framed link"},
                                                {9, "reload"}});
constexpr auto kSources =
    std::to_array<MozWord>({{0, "browsed"}, {1, "sponsored"}, {2, "bookmarked"}, {3, "searched"}});
constexpr auto kLocal = std::to_array<MozWord>({{0, "synced"}, {1, "browsed"}});

std::int64_t numberOr(const Row &row, std::size_t column) {
    return row.number(column).value_or(PlaceVisit::kNothing);
}

/// Walks a table in whole. False when `goOn` said so.
template <class Take>
bool eachReadable(TableCursor &cursor, const GoOn &goOn, Take &&take) {
    while (cursor.next()) {
        if (cursor.given() % kRowsBetweenQuestions == 0 && !goOn(cursor.fraction()))
            return false;
        if (cursor.isReadable())
            take(cursor.row());
    }
    return true;
}

} // namespace

bool PlacesPages::readVisits(EvidenceDatabase &database, const GoOn &goOn) {
    KeptMessage failure;
    const bool wentOn = trapped(failure, Severity::Warning, "", "", true,
                                [&] { return readAllVisits(database, goOn); });
    if (!failure.text.empty())
        m_loss = failure.text;
    return wentOn;
}

bool PlacesPages::readAllVisits(EvidenceDatabase &database, const GoOn &goOn) {
    TableCursor cursor(database, kVisitTable, kVisitColumns);
    m_isAndroid = database.columnsOf(kVisitTable).contains("is_local");
    const bool wentOn = eachReadable(cursor, goOn, [&](const Row &row) {
        PlaceVisit &visit = m_visits.emplace_back();
        visit.id = cursor.rowId();
        visit.place = numberOr(row, kPlace);
        visit.from = numberOr(row, kFrom);
        visit.date = numberOr(row, kDate);
        visit.type = numberOr(row, kType);
        visit.source = numberOr(row, m_isAndroid ? kIsLocal : kSource);
        if (visit.place == PlaceVisit::kNothing) {
            ++m_withoutPage;
            return;
        }
        Page &page = m_pages[visit.place];
        if (page.visits++ == 0)
            page.first = &visit;
    });
    if (cursor.lostRows())
        m_loss = cursor.lossText();
    return wentOn;
}

bool PlacesPages::readTexts(EvidenceDatabase &database, const GoOn &goOn) {
    KeptMessage unheard; // the walk for the rows meets the same
    return trapped(unheard, Severity::Low, "", "", true,
                   [&] { return readAllTexts(database, goOn); });
}

bool PlacesPages::readAllTexts(EvidenceDatabase &database, const GoOn &goOn) {
    TableCursor cursor(database, "moz_places", kPageColumns);
    return eachReadable(cursor, goOn, [this](const Row &row) {
        Page &page = m_pages[row.number(kId).value_or(0)];
        page.url = kept(row.text(kUrl));
        page.title = kept(row.text(kTitle));
        page.isHidden = row.truth(kHidden);
        if (const auto origin = row.number(kOrigin))
            m_origins.insert(*origin);
    });
}

/// A text of its own for each would take twice the memory.
std::string_view PlacesPages::kept(std::string_view text) {
    constexpr std::size_t kBlock = std::size_t{1} << 20;
    if (text.empty())
        return {};
    if (m_texts.empty() || m_texts.back().capacity() - m_texts.back().size() < text.size())
        m_texts.emplace_back().reserve(std::max(kBlock, text.size()));
    std::string &block = m_texts.back();
    const std::size_t at = block.size();
    block += text;
    return std::string_view(block).substr(at);
}

PlacesPages::Page *PlacesPages::find(std::int64_t place) {
    const auto found = m_pages.find(place);
    return found == m_pages.end() ? nullptr : &found->second;
}

PlacesPages::Page *PlacesPages::listed(std::int64_t place) {
    Page *page = find(place);
    if (page)
        page->isListed = true;
    return page;
}

std::string_view PlacesPages::urlOf(std::int64_t place) {
    const Page *page = find(place);
    return page ? page->url : std::string_view();
}

std::string_view PlacesPages::referrerOf(const PlaceVisit &visit) {
    const auto from = std::ranges::lower_bound(m_visits, visit.from, {}, &PlaceVisit::id);
    const bool isThere = from != m_visits.end() && from->id == visit.from;
    return isThere ? urlOf(from->place) : std::string_view();
}

std::uint64_t PlacesPages::furtherVisits() const {
    std::uint64_t further = 0;
    for (const auto &[id, page] : m_pages)
        further += page.isListed && page.visits > 0 ? page.visits - 1 : 0;
    return further;
}

std::uint64_t PlacesPages::visitsOfUnlistedPages() const {
    std::uint64_t visits = m_withoutPage;
    for (const auto &[id, page] : m_pages)
        visits += page.isListed ? 0 : page.visits;
    return visits;
}

std::string visitTypeWord(const PlaceVisit &visit) {
    return mozWord(kTypes, PlaceVisit::known(visit.type));
}

void addVisitFacts(FactList &facts, const PlaceVisit &visit, bool isAndroid) {
    facts.add("visit_id", visit.id);
    if (PlaceVisit::known(visit.from).value_or(0) != 0)
        facts.add("from_visit_id", visit.from);
    addMozWord(facts, "transition", kTypes, PlaceVisit::known(visit.type));
    const std::optional<std::int64_t> source = PlaceVisit::known(visit.source);
    if (isAndroid)
        addMozWord(facts, "visit_source", kLocal, source);
    else
        addMozWord(facts, "visit_source", kSources, source);
}

} // namespace nv
