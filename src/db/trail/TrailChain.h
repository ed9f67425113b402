#pragma once

#include "db/trail/CaseTrail.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace SQLite {
class Database;
}

namespace nv {

/// The hash by which an entry stands in the chain: SHA-256 over its fields and the hash of the
/// entry before it, empty for the first (docs/formats/project-file.md says how they are put
/// together).
std::string trailHash(const TrailEntry &entry, std::string_view before);

/// What the hashes of a case trail say.
struct TrailChain {
    std::int64_t entries = 0;
    std::int64_t unchained = 0; ///< written by earlier versions, which had no hashes
    std::int64_t broken = 0;    ///< number of the first entry that doesn't fit; 0 for none
    std::string why;            ///< what is wrong with that one
    std::string head;           ///< hash of the last entry; empty without a chain

    bool isWhole() const { return broken == 0; }
};

/// Goes through all entries. Throws what the database says.
TrailChain checkTrail(SQLite::Database &database);

/// In one line for people.
std::string chainText(const TrailChain &chain);

} // namespace nv
