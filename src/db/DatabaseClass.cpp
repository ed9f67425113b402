#include "db/DatabaseClass.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "db/Connection.h"
#include "db/KeywordLists.h"
#include "db/ReadOnlyConnection.h"
#include "db/SchemaCatalogue.h"
#include "db/SideFiles.h"
#include "db/SqliteErrors.h"
#include "db/StoredQueries.h"

#include <SQLiteCpp/VariadicBind.h>
#include <fmt/format.h>

namespace nv {

namespace {

struct KeywordFlag {
    std::string_view name;
    std::string_view code;
    const std::vector<std::string> &terms;
};

/// Every term with ";" behind it.
std::string flagList(const std::vector<std::string> &terms) {
    std::string list;
    for (const std::string &term : terms)
        list += term + ";";
    return list;
}

void addFlag(SQLite::Database &database, const KeywordFlag &flag) {
    SQLite::Statement insert(
        database, "INSERT INTO KeywordFlags (FlagName, Keywords, FlagCode) SELECT ?, ?, "
                  "?3 WHERE NOT EXISTS (SELECT 1 FROM KeywordFlags WHERE FlagCode = ?3)");
    SQLite::bind(insert, std::string(flag.name), flagList(flag.terms), std::string(flag.code));
    insert.exec();
}

} // namespace

DatabaseClass::DatabaseClass(FailureLog &log, const Clock &clock) : m_log(log), m_clock(clock) {}

DatabaseClass::~DatabaseClass() {
    CloseDB();
}

bool DatabaseClass::isOpen() const {
    return m_database != nullptr;
}

SQLite::Database &DatabaseClass::connection() {
    return *m_database;
}

bool DatabaseClass::CreateDatabaseProject() {
    CloseDB();
    const auto failure = failureOf(m_log, "DatabaseClass.CreateDatabaseProject()", [this] {
        m_database = connect(FilePath, Access::create);
        onFile(FilePath, [this] { fillNewProject(); });
    });
    if (failure)
        m_database.reset();
    return !failure;
}

void DatabaseClass::fillNewProject() {
    const auto tables = schema::projectTables();
    SchemaCatalogue catalogue(*m_database);
    SQLite::Transaction transaction(*m_database);
    catalogue.create();
    for (const schema::Table &table : tables.first(schema::kTablesBeforeQueries))
        catalogue.add(table);
    StoredQueries(*m_database)
        .createAll(m_clock, loadKeywordLists({KeywordFolder, AgencyKeywordFolder}, m_log));
    for (const schema::Table &table : tables.subspan(schema::kTablesBeforeQueries))
        catalogue.add(table);
    catalogue.noteRelationships();
    transaction.commit();
}

bool DatabaseClass::CreateMorkFileParser(const std::filesystem::path &file) {
    return !failureOf(m_log, "DatabaseClass.CreateMorkFileParser()", [&file] {
        removeDatabase(file);
        const auto scratch = connect(file, Access::create);
        onFile(file, [&scratch] {
            for (const schema::Table &table : schema::morkTables())
                scratch->exec(schema::createStatement(table));
            scratch->exec("PRAGMA journal_mode=DELETE");
        });
    });
}

void DatabaseClass::addOnFirstUse(const schema::Table &table) {
    if (!m_database)
        throw StorageFailure("no project is open");
    if (!m_database->tableExists(std::string(table.name)))
        SchemaCatalogue(*m_database).add(table);
}

bool DatabaseClass::PopulateKeywordFlags() {
    return !failureOf(m_log, "DatabaseClass.PopulateKeywordFlags()", [this] {
        const KeywordLists lists = loadKeywordLists({KeywordFolder, AgencyKeywordFolder}, m_log);
        onProject([&] {
            addOnFirstUse(schema::keywordFlags());
            addFlag(*m_database, {"Adult Content", "AC", lists.adultContent});
            addFlag(*m_database, {"Sex Crimes", "CP", lists.childExploitation});
        });
    });
}

bool DatabaseClass::CreateFlaggedURLs() {
    return !failureOf(m_log, "DatabaseClass.CreateFlaggedURLs()",
                      [this] { onProject([this] { addOnFirstUse(schema::flaggedUrls()); }); });
}

bool DatabaseClass::isReadOnly() const {
    return m_database && nv::isReadOnly(*m_database);
}

void DatabaseClass::open(Access access) {
    CloseDB();
    m_database = connectToProject(FilePath, access);
}

void DatabaseClass::CloseDB() {
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
    const auto left = std::filesystem::file_size(sideFile(FilePath, kLogSuffix), none);
    if (!none && left > 0)
        m_log.write({fmt::format("\"{0}{1}\" belongs to \"{0}\" and must stay beside it: {2}",
                                 textOf(FilePath), kLogSuffix, why),
                     "DatabaseClass.CloseDB()", Severity::Warning, std::string(kContactSupport)});
}

} // namespace nv
