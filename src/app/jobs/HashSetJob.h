#pragma once

#include "app/program/Program.h"
#include "base/TaskMonitor.h"
#include "db/hashes/HashLookup.h"
#include "views/limits/HashMatch.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nv {

/// A set of the examiner's, or one of which only findings are left.
struct ListedHashSet {
    std::string name;
    HashMeaning meaning = HashMeaning::known;
    std::optional<std::uint64_t> hashes = {}; ///< nothing when the set isn't there or can't be read
    std::optional<std::uint64_t> rows = {};   ///< of the open project; nothing when none is open
    std::string madeOf = {};                  ///< the day, and the lists
    std::string fault = {};                   ///< why it can't be used
    bool isThere = true;                      ///< as a file
};
/// By name. Throws what the project's database says.
std::vector<ListedHashSet> listHashSets(Program &program);

/// As matchHashSets() on the open project, and with an entry in its trail for each set: its name,
/// the lists that it was made of, and how many rows were found. Throws StorageFailure too when the
/// project is of an earlier build and has no place for what is found.
HashMatch matchOpenProject(Program &program, std::span<HashSetFile> sets, EarlierFindings earlier,
                           TaskMonitor &task);

/// The examiner's hash sets, for an import; null when it doesn't ask for them. Throws
/// StorageFailure when there are none or one is damaged.
std::unique_ptr<HashLookup> hashSetsForImport(const Program &program);
/// The entries in the trail of what an import has found in them.
void noteHashSets(Program &program, const HashLookup &sets);

} // namespace nv
