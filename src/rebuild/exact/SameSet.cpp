#include "rebuild/exact/SameSet.h"

#include "base/Text.h"

namespace nv {

namespace {

/// What stands between two references of one picture: no more than some attributes.
constexpr std::size_t kFarthest = 4096;

bool isOfPicture(const Reference &reference) {
    return reference.use == RefUse::image &&
           (reference.element == "img" || reference.element == "source");
}

/// Of one tag, or of "source" elements and their "img", with nothing else between.
bool belongTogether(const Reference &one, const Reference &next, std::string_view source) {
    if (!isOfPicture(one) || !isOfPicture(next) || one.nested != next.nested ||
        one.isLazy != next.isLazy || next.at.begin < one.at.end ||
        next.at.begin - one.at.end > kFarthest)
        return false;
    const std::string_view between = source.substr(one.at.end, next.at.begin - one.at.end);
    const std::size_t tag = between.find('<');
    if (tag == std::string_view::npos)
        return one.element == next.element;
    if (one.element != "source")
        return false;
    for (std::size_t at = tag; at != std::string_view::npos; at = between.find('<', at + 1)) {
        const std::string_view rest = between.substr(at + 1);
        if (!startsWithNoCase(rest, "source") && !startsWithNoCase(rest, "img"))
            return false;
    }
    return true;
}

} // namespace

std::vector<std::size_t> setsOf(const std::vector<Reference> &references, std::string_view source) {
    std::vector<std::size_t> sets;
    sets.reserve(references.size());
    std::size_t set = 0;
    for (std::size_t i = 0; i < references.size(); ++i) {
        if (i > 0 && !belongTogether(references[i - 1], references[i], source))
            ++set;
        sets.push_back(set);
    }
    return sets;
}

} // namespace nv
