#include "views/limits/TreesApart.h"

#include "base/Text.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <span>
#include <tuple>
#include <vector>

namespace nv {

namespace {

constexpr std::size_t kPerson = 1;
constexpr std::size_t kProfile = 3;
constexpr std::string_view kNoTree = "elsewhere";

using Folders = std::vector<std::string_view>;

Folders foldersOf(std::string_view tree) {
    Folders folders = split(tree, '/');
    std::erase(folders, std::string_view());
    return folders;
}

/// What is told apart: an account with all that is in it, or a profile that is nobody's.
OriginNames keyOf(const OriginNames &names) {
    return names[kPerson].empty() ? names : OriginNames{names[0], names[kPerson], {}, {}};
}

/// How many folders from one end on all of them share.
template <class At>
std::size_t sharedBy(const std::vector<Folders> &all, std::size_t most, At at) {
    std::size_t count = 0;
    while (count < most && std::ranges::all_of(all, [&](const Folders &each) {
               return at(each, count) == at(all.front(), count);
           }))
        ++count;
    return count;
}

} // namespace

void TreesApart::add(const OriginNames &names, std::string_view tree) {
    m_trees[keyOf(names)].emplace(tree);
}

std::array<PlaceTerm, 4> TreesApart::terms(const OriginNames &names, std::string_view tree) const {
    std::array<PlaceTerm, 4> terms{
        PlaceTerm{PlaceField::Evidence, names[0]}, PlaceTerm{PlaceField::Person, names[1]},
        PlaceTerm{PlaceField::Browser, names[2]}, PlaceTerm{PlaceField::Profile, names[3]}};
    const auto known = m_trees.find(keyOf(names));
    if (known == m_trees.end() || known->second.size() - known->second.count("") < 2)
        return terms;
    PlaceTerm &told = names[kPerson].empty() ? terms[kProfile] : terms[kPerson];
    told.tree = std::string(tree);
    told.treeLabel = treeLabel(tree, known->second);
    return terms;
}

std::string treeLabel(std::string_view tree, const std::set<std::string, std::less<>> &all) {
    if (tree.empty())
        return std::string(kNoTree);
    std::vector<Folders> others;
    std::size_t fewest = foldersOf(tree).size();
    for (const std::string &each : all)
        if (!each.empty()) {
            others.push_back(foldersOf(each));
            fewest = std::min(fewest, others.back().size());
        }
    std::size_t begin = sharedBy(
        others, fewest, [](const Folders &each, std::size_t count) { return each[count]; });
    std::size_t end = sharedBy(others, fewest - begin, [](const Folders &each, std::size_t count) {
        return each[each.size() - 1 - count];
    });
    // Where one lies in another, nothing would be left of the outer one.
    if (begin + end == fewest && fewest > 0)
        --(begin > 0 ? begin : end);
    const Folders own = foldersOf(tree);
    const std::span<const std::string_view> told(own.begin() + static_cast<std::ptrdiff_t>(begin),
                                                 own.end() - static_cast<std::ptrdiff_t>(end));
    return told.empty() ? "/" : fmt::format("{}", fmt::join(told, "/"));
}

bool isBefore(const PlaceTerm &one, const PlaceTerm &other) {
    return std::tie(one.value, one.treeLabel, one.tree) <
           std::tie(other.value, other.treeLabel, other.tree);
}

} // namespace nv
