#pragma once

namespace SQLite {
class Database;
}

namespace nv {

// What rows are told apart by and no column holds, as functions of a connection's statements. They
// take the text of a column and give a text.
inline constexpr const char *kDomainFunction = "place_domain"; ///< registeredDomain() of a host
inline constexpr const char *kGroupFunction = "place_group";   ///< groupWord() of a `CacheType`
inline constexpr const char *kKindFunction = "place_kind";     ///< typeWord() of a `CacheType`

inline constexpr const char *kTreeFunction = "place_tree"; ///< treeOfPath() of a path

/// Gives the connection these functions, once. Throws what the database says.
void needPlaceFunctions(SQLite::Database &database);

} // namespace nv
