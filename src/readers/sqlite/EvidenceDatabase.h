#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

namespace nv {

/// Evidence that is not what its reader expects; the message says what, where, and what instead.
class EvidenceDamage : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// The copy of an SQLite file from evidence, opened so that nothing in the file is run: no trigger,
/// view, virtual table or function of its schema.
class EvidenceDatabase {
  public:
    /// `size` is the evidence's length in bytes. Throws EvidenceDamage when there is no database in
    /// it, as in an encrypted file.
    EvidenceDatabase(const std::filesystem::path &copy, std::uint64_t size);

    /// What SQLite found wrong with the file as a whole, such as a cut end; empty when nothing. The
    /// tables that are left can be read all the same.
    const std::string &damage() const { return m_damage; }

    /// True for a table with rows of its own, in any case of the letters.
    bool hasTable(std::string_view table);
    /// Lower-case names of the columns that are stored in the table.
    std::set<std::string> columnsOf(std::string_view table);

    /// No table has more rows than this: where one seems to, its pages point at each other.
    std::uint64_t mostRows() const;

    /// A statement of this program's own. Nothing from evidence ever becomes SQL. Throws
    /// SQLite::Exception.
    SQLite::Statement prepare(const std::string &sql) { return {m_connection, sql}; }
    std::string lastError() const { return m_connection.getErrorMsg(); }

    /// Before a step that gives a row: one that takes longer than any honest one is broken off.
    void expectOneRow();
    /// Before a step that passes over a whole table.
    void expectWholeTable();

  private:
    void cutTornPage(const std::filesystem::path &copy);
    void harden();
    void loadSchema();

    std::uint64_t m_size;
    std::unique_ptr<std::int64_t> m_stepsLeft; ///< at a fixed address, since SQLite holds it
    SQLite::Database m_connection;
    std::string m_damage;
};

} // namespace nv
