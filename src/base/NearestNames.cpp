#include "base/NearestNames.h"

#include "base/Text.h"

#include <algorithm>
#include <utility>

namespace nv {

std::vector<std::string> nearestNames(std::string_view name,
                                      const std::vector<std::string> &names) {
    constexpr std::size_t kShown = 3;
    std::vector<std::pair<std::size_t, std::string>> ranked;
    const std::string wanted = toLower(name);
    for (const std::string &each : names) {
        const bool holds = !wanted.empty() && containsNoCase(each, wanted);
        ranked.emplace_back(holds ? 0 : editDistance(wanted, toLower(each)), each);
    }
    std::stable_sort(ranked.begin(), ranked.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    std::vector<std::string> nearest;
    for (const auto &[distance, each] : ranked) {
        if (nearest.size() < kShown &&
            std::find(nearest.begin(), nearest.end(), each) == nearest.end())
            nearest.push_back(each);
    }
    return nearest;
}

} // namespace nv
