#pragma once

#include "db/schema/Ids.h"

#include <map>
#include <string>

namespace SQLite {
class Database;
}

namespace nv {

inline constexpr const char *kPartChoicesTable = "PartChoices";

/// What examiners have chosen to stand for references of pages, kept with the project for each
/// later rebuild. The table is made on first use. Errors of the database are thrown.
class PartChoices {
  public:
    explicit PartChoices(SQLite::Database &database) : m_database(database) {}

    /// `part` stands for `address` in the page and in its frames and sheets; `none` leaves its
    /// place empty. An earlier choice goes.
    void choose(UrlId page, const std::string &address, UrlId part);
    /// The program decides again.
    void forget(UrlId page, const std::string &address);
    /// By address.
    std::map<std::string, UrlId> of(UrlId page) const;

  private:
    SQLite::Database &m_database;
};

} // namespace nv
