#pragma once

#include <SQLiteCpp/SQLiteCpp.h>
#include <SQLiteCpp/VariadicBind.h>

#include <filesystem>
#include <memory>
#include <string>

namespace nv::test {

/// An SQLite file in the making, as browsers leave it: closed, with rows still in its log, or amid
/// a transaction.
class SqliteFile {
  public:
    /// Small pages spread few rows over many pages, so that damage hits some and spares others.
    explicit SqliteFile(const std::filesystem::path &path, int pageSize = 4096,
                        const std::string &encoding = "UTF-8");

    /// Statements of the test's own.
    SqliteFile &run(const std::string &sql);
    SQLite::Statement prepare(const std::string &sql) { return {*m_connection, sql}; }

    /// What is written from now on stays in the file's "-wal".
    SqliteFile &keepInLog();
    /// Runs `sql` in a transaction that is never ended: the file holds its rows, and its "-journal"
    /// what to undo.
    void closeAmid(const std::string &sql);
    void close() { m_connection.reset(); }

    const std::filesystem::path &path() const { return m_path; }

  private:
    std::filesystem::path m_path;
    std::unique_ptr<SQLite::Database> m_connection;
};

} // namespace nv::test
