#pragma once

#include "db/records/RecordFacts.h"
#include "db/records/UrlRecord.h"

#include <string>
#include <string_view>

namespace nv::test {

/// The first fact of that name, as it is shown; "-" without one.
inline std::string factOf(const UrlRecord &record, std::string_view name) {
    for (const RecordFact &fact : record.facts)
        if (fact.name == name)
            return factText(fact);
    return "-";
}

} // namespace nv::test
