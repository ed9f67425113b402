#pragma once

#include "readers/RecordKind.h"
#include "views/limits/PlaceLimit.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>
#include <vector>

namespace nv {

// What trees of places have in common. A node of one has a `term` and `children`.

/// The last node where it is this one; another one behind it otherwise.
template <class Node>
Node &lastNode(std::vector<Node> &nodes, const PlaceTerm &term) {
    if (nodes.empty() || nodes.back().term != term)
        nodes.emplace_back().term = term;
    return nodes.back();
}

/// A level that only says "none" says nothing.
template <class Node>
void liftUnknown(std::vector<Node> &nodes) {
    while (nodes.size() == 1 && nodes.front().term.value.empty() && !nodes.front().children.empty())
        nodes = std::vector<Node>(std::move(nodes.front().children));
    for (Node &node : nodes)
        liftUnknown(node.children);
}

/// Where a groupWord() stands among the others.
inline int groupOrder(std::string_view group) {
    constexpr std::array kOrder = {RecordGroup::history, RecordGroup::cache, RecordGroup::cookies,
                                   RecordGroup::bookmarks, RecordGroup::other};
    const auto *const found = std::ranges::find(kOrder, group, groupWord);
    return static_cast<int>(found - kOrder.begin());
}

} // namespace nv
