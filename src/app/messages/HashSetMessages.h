#pragma once

#include "base/Examiner.h"
#include "db/hashes/HashSetFile.h"
#include "db/hashes/HashSets.h"
#include "views/limits/HashMatch.h"

#include <span>
#include <string>
#include <string_view>

namespace nv {

/// Of a set that was not made, since no list held a hash.
std::string noHashText(const HashSetMade &made);
/// Of names that no set can have.
std::string noSetNameText(std::string_view name);

/// What came of a match that wasn't cancelled, in sentences: how many rows have a hash, how many
/// were found, of how many nothing is said and why. `how` says how an import makes hashes, where
/// some are missing.
std::string matchText(const HashMatch &match, std::string_view how);
/// "library (known): 12 rows", a line a set; of many sets the first.
std::string matchedSetsText(std::span<const HashSetFile> sets, const HashMatch &match);

namespace messages {

/// The same in a box, with the first lines that hold none.
Message noHashFound(const HashSetMade &made);
Message replaceHashSet(std::string_view name);
Message removeHashSet(std::string_view name);

} // namespace messages

} // namespace nv
