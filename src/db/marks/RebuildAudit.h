#pragma once

#include "db/schema/Ids.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

inline constexpr const char *kRebuildAuditTable = "RebuildAudit";

/// What a rebuild knew of one reference of the page, beside its line in the substitution log.
struct ReferenceNote {
    std::string accuracyScore; ///< picks and candidates, such as "1:4"
    bool rewritten = false;    ///< the page's text names the part where the reference stood
    /// Keys of records that could stand in for it: the chosen one, then the best others.
    std::vector<std::int64_t> candidates;
};

/// What the audit tells of rebuilt pages, kept with the project. Its table is made on first use: a
/// project of an earlier version has none, and notes of nothing. Errors of the database are thrown.
class RebuildAudit {
  public:
    explicit RebuildAudit(SQLite::Database &database) : m_database(database) {}

    /// Takes the place of the page's earlier notes: one for each line of its log, in their order.
    void store(UrlId page, std::span<const ReferenceNote> notes);
    /// By the number of the line, from 1.
    std::map<std::size_t, ReferenceNote> notes(UrlId page) const;

  private:
    void forget(UrlId page);

    SQLite::Database &m_database;
};

} // namespace nv
