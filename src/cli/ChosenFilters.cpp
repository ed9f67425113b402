#include "cli/ChosenFilters.h"

#include "base/Text.h"
#include "cli/UsageError.h"

#include <fmt/ranges.h>

#include <algorithm>
#include <string_view>

namespace nv::cli {

namespace {

enum class Which { All, Sources };

std::string namesOf(Which which) {
    std::vector<std::string_view> names;
    for (const FilterFlag &each : filterFlags())
        if (which == Which::All || each.group == FilterGroup::Source)
            names.push_back(each.name);
    if (which == Which::Sources)
        return fmt::format("{}", fmt::join(names, ", "));
    std::string text = fmt::format("{}", fmt::join(names, ", "));
    for (const OriginFilter &each : originFilters())
        text += fmt::format(", {}=...", each.word);
    return text;
}

/// True when the word is "person=alice" or the like.
bool takeOrigin(const std::string &word, RecordFilters &filters) {
    const std::size_t sign = word.find('=');
    if (sign == std::string::npos)
        return false;
    for (const OriginFilter &each : originFilters())
        if (equalsNoCase(trim(word.substr(0, sign)), each.word)) {
            filters.*each.text = trim(std::string_view(word).substr(sign + 1));
            return true;
        }
    return false;
}

} // namespace

RecordFilters filtersFrom(const std::vector<std::string> &names) {
    RecordFilters filters;
    const bool hasFlags = !std::ranges::all_of(
        names, [&filters](const std::string &name) { return takeOrigin(name, filters); });
    if (!names.empty() && !hasFlags)
        filters = firstFilters();
    filters.enableFilters = !names.empty();
    for (const std::string &name : names) {
        if (takeOrigin(name, filters))
            continue;
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
