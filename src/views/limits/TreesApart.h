#pragma once

#include "views/limits/PlaceLimit.h"

#include <array>
#include <map>
#include <set>
#include <string>
#include <string_view>

namespace nv {

/// Whose something is: folder of evidence, person, browser, profile, as the origin tells them.
using OriginNames = std::array<std::string, 4>;

/// Tells accounts and profiles apart that bear one name in several trees, as those of machines do
/// whose images lie below one folder.
class TreesApart {
  public:
    /// All of them come first. `tree` is treeOfPath() of a path of theirs.
    void add(const OriginNames &names, std::string_view tree);

    /// Folder, person, browser, profile. The tree stands at the person, at the profile where there
    /// is none, and nowhere while all of this name are of one.
    std::array<PlaceTerm, 4> terms(const OriginNames &names, std::string_view tree) const;

  private:
    std::map<OriginNames, std::set<std::string, std::less<>>> m_trees;
};

/// The shortest part of a tree's path that tells it from the others: "pc3" of "/case/pc3/disk"
/// beside "/case/pc4/disk".
std::string treeLabel(std::string_view tree, const std::set<std::string, std::less<>> &all);

/// The order of the names that stand there.
bool isBefore(const PlaceTerm &one, const PlaceTerm &other);

} // namespace nv
