#pragma once

#include "db/records/RecordFacts.h"
#include "db/records/UrlRecord.h"

#include <string>
#include <string_view>
#include <vector>

namespace nv::test {

/// The values of all facts of that name as texts, with their raw form in brackets: "typed [1]".
inline std::vector<std::string> factsOf(const UrlRecord &record, std::string_view name) {
    std::vector<std::string> values;
    for (const RecordFact &fact : record.facts)
        if (fact.name == name)
            values.push_back(factText(fact));
    return values;
}

/// The first of them; "-" when there is none.
inline std::string factOf(const UrlRecord &record, std::string_view name) {
    const auto values = factsOf(record, name);
    return values.empty() ? "-" : values.front();
}

} // namespace nv::test
