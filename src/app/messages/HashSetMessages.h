#pragma once

#include "base/Examiner.h"
#include "db/HashSets.h"

#include <string>
#include <string_view>

namespace nv {

/// Of a set that was not made, since no list held a hash.
std::string noHashText(const HashSetMade &made);
/// Of names that no set can have.
std::string noSetNameText(std::string_view name);

namespace messages {

/// The same in a box, with the first lines that hold none.
Message noHashFound(const HashSetMade &made);
Message replaceHashSet(std::string_view name);
Message removeHashSet(std::string_view name);

} // namespace messages

} // namespace nv
