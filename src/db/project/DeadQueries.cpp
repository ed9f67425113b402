#include "db/project/DeadQueries.h"

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::array<std::string_view, 3> kFindNothing = {
    "Movie Files (Cache only)", "Movie Files (any source)", "Linked URLs"};

/// Their texts, which the day and the lists of terms don't change.
std::vector<StoredQuery> textsAtFirst() {
    constexpr int kAnyYear = 2000;
    std::vector<StoredQuery> queries = firstQueries(kAnyYear, 1, {});
    std::erase_if(queries, [](const StoredQuery &query) {
        return std::ranges::find(kFindNothing, query.name) == kFindNothing.end();
    });
    return queries;
}

} // namespace

bool isDeadQuery(const StoredQuery &query) {
    static const std::vector<StoredQuery> dead = textsAtFirst();
    return lacksTerms(query.sql) || std::ranges::any_of(dead, [&query](const StoredQuery &each) {
               return each.name == query.name && each.sql == query.sql;
           });
}

} // namespace nv
