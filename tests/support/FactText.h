#pragma once

#include "db/records/RecordFacts.h"
#include "db/records/UrlRecord.h"

#include <string>
#include <string_view>

namespace nv::test {

/// The first fact of that name, "typed [1]" with its raw form; empty when the record has none.
inline std::string fact(const UrlRecord &record, std::string_view name) {
    for (const RecordFact &each : record.facts)
        if (each.name == name)
            return factText(each);
    return {};
}

} // namespace nv::test
