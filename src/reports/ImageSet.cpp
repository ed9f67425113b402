#include "reports/ImageSet.h"

#include "base/Text.h"

#include <algorithm>

namespace nv {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

/// "2x", "640w", "1.5x 300h", or nothing.
bool isDescriptor(std::string_view text) {
    return std::ranges::all_of(text, [](char c) {
        return (c >= '0' && c <= '9') || isBlank(c) ||
               std::string_view(".+-eEwxh").find(c) != std::string_view::npos;
    });
}

/// One picture: an address up to a blank, then up to the next comma how large it is.
struct Candidate {
    std::string_view address;
    std::string_view descriptor;
};

Candidate nextCandidate(std::string_view &rest) {
    Candidate found;
    const std::size_t end =
        static_cast<std::size_t>(std::ranges::find_if(rest, isBlank) - rest.begin());
    found.address = rest.substr(0, end);
    rest.remove_prefix(end);
    if (found.address.ends_with(',')) {
        while (found.address.ends_with(','))
            found.address.remove_suffix(1);
        return found;
    }
    int open = 0;
    std::size_t at = 0;
    for (; at < rest.size() && (rest[at] != ',' || open > 0); ++at)
        open += rest[at] == '(' ? 1 : rest[at] == ')' && open > 0 ? -1 : 0;
    found.descriptor = trim(rest.substr(0, at));
    rest.remove_prefix(at);
    return found;
}

} // namespace

std::string keptImageSet(std::string_view set, const References &references) {
    std::string kept;
    while (true) {
        while (!set.empty() && (isBlank(set.front()) || set.front() == ','))
            set.remove_prefix(1);
        if (set.empty())
            return kept;
        const Candidate each = nextCandidate(set);
        const auto address = references.kept(each.address, Use::image);
        // A name that ends in a comma, or has a blank, would be read as another one.
        if (!address || address->ends_with(',') || std::ranges::any_of(*address, isBlank) ||
            !isDescriptor(each.descriptor))
            continue;
        kept += (kept.empty() ? "" : ", ") + *address;
        if (!each.descriptor.empty())
            kept += ' ' + std::string(each.descriptor);
    }
}

} // namespace nv
