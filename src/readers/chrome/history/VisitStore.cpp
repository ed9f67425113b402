#include "readers/chrome/history/VisitStore.h"

#include "readers/chrome/shared/StoredDate.h"
#include "readers/chrome/shared/Transition.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::int64_t kNothing = StoredVisit::kNothing;

// The browser's own words for "not known".
constexpr std::int64_t kForegroundUnknown = -1'000'000;
constexpr std::string_view kLanguageUnknown = "und";

constexpr auto kSources =
    std::to_array<std::string_view>({"synced", "browsed", "extension", "imported from Firefox",
                                     "imported from Internet Explorer", "imported from Safari"});

constexpr std::size_t kBrowsed = 1;

/// Numbers of other rows begin at 1.
void addNumber(FactList &facts, FactName name, std::int64_t number) {
    if (number != kNothing && number != 0)
        facts.add(name, number);
}

std::string sourceText(std::int64_t source) {
    const bool isKnown = source >= 0 && source < static_cast<std::int64_t>(kSources.size());
    return isKnown ? std::string(kSources.at(static_cast<std::size_t>(source))) : std::string();
}

template <class Visits>
auto *findIn(Visits &visits, std::int64_t id) {
    const auto found = std::ranges::lower_bound(visits, id, {}, &StoredVisit::id);
    return found == visits.end() || found->id != id ? nullptr : &*found;
}

} // namespace

void VisitStore::settle() {
    if (!std::ranges::is_sorted(m_visits, {}, &StoredVisit::id))
        std::ranges::stable_sort(m_visits, {}, &StoredVisit::id);
}

StoredVisit *VisitStore::find(std::int64_t id) {
    return findIn(m_visits, id);
}

const StoredVisit *VisitStore::find(std::int64_t id) const {
    return findIn(m_visits, id);
}

const VisitTexts *VisitStore::findTexts(std::int64_t visit) const {
    const auto found = m_texts.find(visit);
    return found == m_texts.end() ? nullptr : &found->second;
}

std::uint32_t VisitStore::wordFor(const std::string &text) {
    if (text.empty())
        return 0;
    const auto [entry, isNew] =
        m_numbers.try_emplace(text, static_cast<std::uint32_t>(m_words.size()));
    if (isNew)
        m_words.push_back(text);
    return entry->second;
}

void addVisitFacts(FactList &facts, const VisitStore &visits, const StoredVisit &visit) {
    const VisitTexts *texts = visits.findTexts(visit.id);
    facts.add("visit_id", visit.id);
    addNumber(facts, "from_visit_id", visit.from);
    addNumber(facts, "opener_visit_id", visit.opener);
    if (visit.transition != kNothing)
        facts.add("transition", transitionText(visit.transition), visit.transition);
    if (visit.duration != kNothing && visit.duration != 0)
        addSeconds(facts, "visit_duration", visit.duration);
    if (visit.source != kNothing)
        facts.add("visit_source", sourceText(visit.source), visit.source);
    else if (visits.tellsSources())
        facts.add("visit_source", std::string(kSources.at(kBrowsed)));
    if (texts)
        facts.add("external_referrer", texts->externalReferrer);
    facts.add("device", visits.word(visit.device));
    addNumber(facts, "device_visit_id", visit.deviceVisit);
    addNumber(facts, "cluster", visit.cluster);
    if (const std::string &language = visits.word(visit.language); language != kLanguageUnknown)
        facts.add("page_language", language);
    addNumber(facts, "response_code", visit.response);
    if (visit.foreground != kNothing && visit.foreground != kForegroundUnknown)
        addSeconds(facts, "foreground_duration", visit.foreground);
    if (texts)
        facts.add("search_term", texts->searchTerms);
}

} // namespace nv
