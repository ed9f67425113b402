#include "cli/ChosenFilters.h"

#include "cli/UsageError.h"

#include <fmt/ranges.h>

#include <string_view>

namespace nv::cli {

namespace {

enum class Which { All, Sources };

std::string namesOf(Which which) {
    std::vector<std::string_view> names;
    for (const FilterFlag &each : filterFlags())
        if (which == Which::All || each.group == FilterGroup::Source)
            names.push_back(each.name);
    return fmt::format("{}", fmt::join(names, ", "));
}

} // namespace

RecordFilters filtersFrom(const std::vector<std::string> &names) {
    RecordFilters filters;
    filters.enableFilters = !names.empty();
    for (const std::string &name : names) {
        const FilterFlag *found = findFilterFlag(name);
        if (!found)
            throw UsageError(fmt::format("there is no filter \"{}\": {} were expected", name,
                                         namesOf(Which::All)));
        filters.*found->flag = true;
    }
    if (filters.enableFilters && !hasSource(filters))
        throw UsageError(fmt::format("--filter: {} They are {}.", missingRecordType().text,
                                     namesOf(Which::Sources)));
    return filters;
}

} // namespace nv::cli
