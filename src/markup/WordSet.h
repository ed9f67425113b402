#pragma once

#include <string_view>
#include <unordered_set>

namespace nv {

using WordSet = std::unordered_set<std::string_view>;

/// The words of a list that is written with blanks between them, which must outlive it.
WordSet wordSetOf(std::string_view list);

} // namespace nv
