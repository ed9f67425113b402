#include "views/limits/HashLimit.h"

#include "db/hashes/FoundHashSets.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

namespace {

/// Of a statement over RecordFacts; added to what `ids` has.
Walk gather(SQLite::Database &project, const IdQuery &query, TaskMonitor &task, RowIds &ids) {
    const Walk walk = hasFacts(project) ? collectIds(project, query, task, ids) : Walk::Finished;
    std::ranges::sort(ids);
    return walk;
}

/// Names come from files of the examiner's and from projects: they are no part of the text.
IdQuery inSet(const std::string &set) {
    return {fmt::format("SELECT URL_ID FROM RecordFacts WHERE {} AND Value = ?", hashSetFacts()),
            set};
}

bool has(const RowIds &sorted, std::int32_t id) {
    return std::ranges::binary_search(sorted, id);
}

bool isOfNotable(const PlaceTerm &term) {
    return term.value == wordOf(HashMeaning::notable);
}

} // namespace

bool isOfHashSets(const PlaceLimit &place) {
    return !place.terms.empty() && place.terms.front().field == PlaceField::HashMeaning;
}

bool isKnownFiles(const PlaceLimit &place) {
    return isOfHashSets(place) && place.terms.size() == 1 && !isOfNotable(place.terms.front());
}

bool hasTerm(const HashLimit &limit, const PlaceTerm &term) {
    if (term.field == PlaceField::HashMeaning)
        return isOfNotable(term) ? limit.notable : limit.known;
    return std::ranges::find(limit.sets, term.value) != limit.sets.end();
}

void flipTerm(HashLimit &limit, const PlaceTerm &term) {
    if (term.field == PlaceField::HashMeaning) {
        bool &flag = isOfNotable(term) ? limit.notable : limit.known;
        flag = !flag;
    } else if (std::erase(limit.sets, term.value) == 0) {
        limit.sets.push_back(term.value);
    }
}

Walk keepByHashSets(SQLite::Database &project, const HashLimit &limit, TaskMonitor &task,
                    RowIds &ids) {
    RowIds notable;
    RowIds known;
    RowIds only;
    const auto read = [&](bool isNeeded, const IdQuery &query, RowIds &into) {
        return !isNeeded || gather(project, query, task, into) == Walk::Finished;
    };
    const bool isWhole =
        read(limit.notable || limit.withoutKnown, {rowsInHashSets(HashMeaning::notable), ""},
             notable) &&
        read(limit.known || limit.withoutKnown, {rowsInHashSets(HashMeaning::known), ""}, known) &&
        std::ranges::all_of(limit.sets,
                            [&](const std::string &set) { return read(true, inSet(set), only); });
    if (!isWhole)
        return Walk::Cancelled;
    std::erase_if(ids, [&](std::int32_t id) {
        const bool isNotable = has(notable, id);
        const bool isKnown = has(known, id);
        const bool isIn = !limit.isOnly() || (limit.notable && isNotable) ||
                          (limit.known && isKnown) || has(only, id);
        return !isIn || (limit.withoutKnown && isKnown && !isNotable);
    });
    return Walk::Finished;
}

} // namespace nv
