#include "readers/sqlite/EvidenceDatabase.h"

#include "base/Text.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <utility>

namespace nv {

namespace {

constexpr int kInstructionsPerStep = 1000;
/// A row takes a handful of instructions.
constexpr std::int64_t kStepsPerRow = 1000;

int countStep(void *stepsLeft) {
    return --*static_cast<std::int64_t *>(stepsLeft) < 0 ? 1 : 0;
}

} // namespace

EvidenceDatabase::EvidenceDatabase(const std::filesystem::path &copy, std::uint64_t size)
    : m_size(size), m_stepsLeft(std::make_unique<std::int64_t>(kStepsPerRow)),
      m_connection(copy.native(), SQLite::OPEN_READWRITE) {
    harden();
    loadSchema();
}

void EvidenceDatabase::harden() {
    sqlite3 *handle = m_connection.getHandle();
    for (const auto &[option, value] : {std::pair{SQLITE_DBCONFIG_DEFENSIVE, 1},
                                        {SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0},
                                        {SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0},
                                        {SQLITE_DBCONFIG_ENABLE_TRIGGER, 0},
                                        {SQLITE_DBCONFIG_ENABLE_VIEW, 0},
                                        {SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1}})
        sqlite3_db_config(handle, option, value, nullptr);
    sqlite3_limit(handle, SQLITE_LIMIT_ATTACHED, 0);
    sqlite3_progress_handler(handle, kInstructionsPerStep, countStep, m_stepsLeft.get());
    for (const char *setting : {"PRAGMA cell_size_check=ON", "PRAGMA query_only=ON",
                                "PRAGMA temp_store=MEMORY", "PRAGMA mmap_size=0"})
        m_connection.tryExec(setting);
}

/// Reading the schema is the first look into the file. A file with a cut end, or with an entry of
/// its schema that makes no sense, is refused there, though most of its tables are whole: it gets a
/// second try, in which SQLite takes what it understands.
void EvidenceDatabase::loadSchema() {
    constexpr const char *kFirstLook = "SELECT 1 FROM main.sqlite_master LIMIT 1";
    expectWholeTable();
    int code = m_connection.tryExec(kFirstLook);
    if (code == SQLITE_CORRUPT) {
        m_damage = lastError();
        // The schema counts as writable then; query_only still keeps the copy from being written.
        sqlite3_db_config(m_connection.getHandle(), SQLITE_DBCONFIG_DEFENSIVE, 0, nullptr);
        m_connection.tryExec("PRAGMA writable_schema=ON");
        code = m_connection.tryExec(kFirstLook);
    }
    if (code != SQLITE_OK)
        throw EvidenceDamage(
            fmt::format("at offset 0: {}; an SQLite database was expected", lastError()));
}

bool EvidenceDatabase::hasTable(std::string_view table) {
    // A view or a virtual table has no root page.
    SQLite::Statement query = prepare("SELECT 1 FROM main.sqlite_master WHERE type = 'table' "
                                      "AND rootpage > 0 AND name = ?1 COLLATE NOCASE");
    query.bind(1, std::string(table));
    expectWholeTable();
    return query.executeStep();
}

std::set<std::string> EvidenceDatabase::columnsOf(std::string_view table) {
    constexpr int kName = 1;
    constexpr int kHidden = 6;
    constexpr int kComputed = 2; // its values are not stored: they would be expressions run
    SQLite::Statement query = prepare(fmt::format("PRAGMA main.table_xinfo(\"{}\")", table));
    std::set<std::string> columns;
    expectWholeTable();
    while (query.executeStep())
        if (query.getColumn(kHidden).getInt() != kComputed)
            columns.insert(toLower(query.getColumn(kName).getString()));
    return columns;
}

void EvidenceDatabase::expectOneRow() {
    *m_stepsLeft = kStepsPerRow;
}

void EvidenceDatabase::expectWholeTable() {
    // A row takes at least 6 bytes of its file, and passing over it at most 4 instructions.
    *m_stepsLeft = kStepsPerRow + static_cast<std::int64_t>(m_size / kInstructionsPerStep);
}

} // namespace nv
