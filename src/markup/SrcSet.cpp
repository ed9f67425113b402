#include "markup/SrcSet.h"

#include "base/Text.h"

#include <algorithm>
#include <utility>

namespace nv {

namespace {

constexpr std::string_view kBlanks = " \t\n\f\r";
constexpr std::string_view kBlanksAndComma = " \t\n\f\r,";

/// The comma that ends a descriptor, or the end; those in round brackets don't.
std::size_t endOfDescriptor(std::string_view value, std::size_t at) {
    bool isBracketed = false;
    for (; at < value.size(); ++at) {
        if (value[at] == '(')
            isBracketed = true;
        else if (value[at] == ')')
            isBracketed = false;
        else if (value[at] == ',' && !isBracketed)
            break;
    }
    return at;
}

} // namespace

std::vector<SrcSetCandidate> srcSetCandidates(std::string_view value) {
    std::vector<SrcSetCandidate> candidates;
    std::size_t at = 0;
    while ((at = value.find_first_not_of(kBlanksAndComma, at)) != std::string_view::npos) {
        SrcSetCandidate candidate;
        candidate.at = {at, std::min(value.find_first_of(kBlanks, at), value.size())};
        at = candidate.at.end;
        if (value[at - 1] == ',') {
            while (value[candidate.at.end - 1] == ',')
                --candidate.at.end;
        } else {
            const std::size_t end = endOfDescriptor(value, at);
            candidate.descriptor = trim(value.substr(at, end - at));
            at = end;
        }
        candidates.push_back(std::move(candidate));
    }
    return candidates;
}

bool isDescriptor(std::string_view text) {
    if (text.empty())
        return true;
    const char unit = text.back();
    text.remove_suffix(1);
    return (unit == 'x' || unit == 'w') && !text.empty() && text.size() < 12 &&
           std::ranges::all_of(text, [](char c) { return (c >= '0' && c <= '9') || c == '.'; });
}

} // namespace nv
