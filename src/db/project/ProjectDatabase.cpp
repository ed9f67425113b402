#include "db/project/ProjectDatabase.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "db/project/StoredQueries.h"
#include "db/schema/SchemaCatalogue.h"
#include "db/sql/Connection.h"
#include "db/sql/KeywordLists.h"
#include "db/sql/ReadOnlyConnection.h"
#include "db/sql/SideFiles.h"
#include "db/sql/SqliteErrors.h"

#include <SQLiteCpp/VariadicBind.h>
#include <fmt/format.h>

namespace nv {

ProjectDatabase::ProjectDatabase(FailureLog &log, const Clock &clock)
    : m_log(log), m_clock(clock) {}

ProjectDatabase::~ProjectDatabase() {
    closeDB();
}

bool ProjectDatabase::isOpen() const {
    return m_database != nullptr;
}

SQLite::Database &ProjectDatabase::connection() {
    return *m_database;
}

bool ProjectDatabase::createDatabaseProject() {
    closeDB();
    const auto failure = failureOf(m_log, "DatabaseClass.CreateDatabaseProject()", [this] {
        m_database = connect(filePath, Access::create);
        onFile(filePath, [this] { fillNewProject(); });
    });
    if (failure)
        m_database.reset();
    return !failure;
}

void ProjectDatabase::fillNewProject() {
    const auto tables = schema::projectTables();
    SchemaCatalogue catalogue(*m_database);
    SQLite::Transaction transaction(*m_database);
    catalogue.create();
    for (const schema::Table &table : tables.first(schema::kTablesBeforeQueries))
        catalogue.add(table);
    StoredQueries(*m_database)
        .createAll(m_clock, loadKeywordLists({keywordFolder, agencyKeywordFolder}, m_log));
    for (const schema::Table &table : tables.subspan(schema::kTablesBeforeQueries))
        catalogue.add(table);
    catalogue.noteRelationships();
    transaction.commit();
}

bool ProjectDatabase::isReadOnly() const {
    return m_database && nv::isReadOnly(*m_database);
}

void ProjectDatabase::open(Access access) {
    closeDB();
    m_database = connectToProject(filePath, access);
}

void ProjectDatabase::closeDB() {
    if (!m_database || isReadOnly())
        return m_database.reset();
    // A failure may have left a transaction open; what it wrote is not kept.
    m_database->tryExec("ROLLBACK");
    m_database->tryExec("PRAGMA analysis_limit=400; PRAGMA optimize");
    // The checkpoint succeeds while others read the project; leaving WAL does not, and then the
    // next one to close it brings it into its one-file form.
    m_database->tryExec("PRAGMA busy_timeout=0; PRAGMA wal_checkpoint(TRUNCATE)");
    m_database->tryExec("PRAGMA journal_mode=DELETE");
    const std::string why = m_database->getErrorMsg();
    m_database.reset();
    std::error_code none;
    const auto left = std::filesystem::file_size(sideFile(filePath, kLogSuffix), none);
    if (!none && left > 0)
        m_log.write({fmt::format("\"{0}{1}\" belongs to \"{0}\" and must stay beside it: {2}",
                                 textOf(filePath), kLogSuffix, why),
                     "DatabaseClass.CloseDB()", Severity::Warning, std::string(kContactSupport)});
}

} // namespace nv
