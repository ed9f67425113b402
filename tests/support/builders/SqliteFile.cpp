#include "support/builders/SqliteFile.h"

#include <sqlite3.h>

namespace nv::test {

namespace fs = std::filesystem;

SqliteFile::SqliteFile(const fs::path &path, int pageSize, const std::string &encoding)
    : m_path(path) {
    fs::create_directories(path.parent_path());
    fs::remove(path);
    m_connection = std::make_unique<SQLite::Database>(path.native(),
                                                      SQLite::OPEN_READWRITE | SQLite::OPEN_CREATE);
    run("PRAGMA page_size=" + std::to_string(pageSize));
    run("PRAGMA encoding='" + encoding + "'");
    run("PRAGMA synchronous=OFF");
}

SqliteFile &SqliteFile::run(const std::string &sql) {
    m_connection->exec(sql);
    return *this;
}

SqliteFile &SqliteFile::keepInLog() {
    run("PRAGMA journal_mode=WAL");
    run("PRAGMA wal_autocheckpoint=0");
    sqlite3_db_config(m_connection->getHandle(), SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
    return *this;
}

void SqliteFile::closeAmid(const std::string &sql) {
    // With a cache of one page the rows reach the file before the transaction ends. Closing would
    // undo them, so the two files are set aside first.
    run("PRAGMA cache_size=1");
    run("BEGIN");
    run(sql);
    const fs::path journal = m_path.native() + "-journal";
    const fs::path aside = m_path.native() + "-aside";
    fs::copy_file(m_path, aside);
    fs::copy_file(journal, aside.native() + "-journal");
    close();
    fs::rename(aside, m_path);
    fs::rename(aside.native() + "-journal", journal);
}

} // namespace nv::test
