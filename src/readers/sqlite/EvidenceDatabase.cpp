#include "readers/sqlite/EvidenceDatabase.h"

#include "base/ByteView.h"
#include "base/Storage.h"
#include "base/Text.h"
#include "readers/Scratch.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <cerrno>
#include <utility>

namespace nv {

namespace {

constexpr int kInstructionsPerStep = 1000;
/// A row takes a handful of instructions.
constexpr std::int64_t kStepsPerRow = 1000;

int countStep(void *stepsLeft) {
    return --*static_cast<std::int64_t *>(stepsLeft) < 0 ? 1 : 0;
}

/// 0 when the file doesn't begin as a database.
std::uint64_t pageSizeOf(const std::filesystem::path &file) {
    constexpr std::size_t kHeader = 100;
    constexpr std::uint64_t kPageSize = 16; // u16be, in which 1 stands for 65536
    const Bytes head = ScratchFile(file).read(0, kHeader);
    const ByteView view(head);
    if (head.size() < kHeader || !view.raw().starts_with("SQLite format 3"))
        return 0;
    const std::uint64_t size = view.u8(kPageSize) * std::uint64_t{256} + view.u8(kPageSize + 1);
    return size == 1 ? 65536 : size;
}

/// Why the scratch disk failed: SQLite writes beside the copy that it opens.
int errnoOf(SQLite::Database &database) {
    const int failed = sqlite3_system_errno(database.getHandle());
    return failed == 0 ? ENOSPC : failed;
}

} // namespace

EvidenceDatabase::EvidenceDatabase(const std::filesystem::path &copy, std::uint64_t size)
    : m_size(size), m_stepsLeft(std::make_unique<std::int64_t>(kStepsPerRow)),
      m_connection(copy.native(), SQLite::OPEN_READWRITE) {
    cutTornPage(copy);
    harden();
    loadSchema();
}

/// SQLite would read the missing part of a last page as zeros, and zeros amid a row make a wrong
/// date out of a right one. Without the page its rows are known to be lost.
void EvidenceDatabase::cutTornPage(const std::filesystem::path &copy) {
    const std::uint64_t pageSize = pageSizeOf(copy);
    const std::uint64_t length = scratch::sizeOf(copy);
    if (pageSize == 0 || length % pageSize == 0)
        return;
    m_damage = fmt::format("the file ends amid a page, at offset {}", length);
    cutFile(copy, length - length % pageSize);
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
        if (m_damage.empty())
            m_damage = lastError();
        // The schema counts as writable then; query_only still keeps the copy from being written.
        sqlite3_db_config(m_connection.getHandle(), SQLITE_DBCONFIG_DEFENSIVE, 0, nullptr);
        m_connection.tryExec("PRAGMA writable_schema=ON");
        code = m_connection.tryExec(kFirstLook);
    }
    const int primary = code & 0xFF; // the rest of the code says more than is needed
    if (primary == SQLITE_FULL || primary == SQLITE_IOERR)
        failStorage("cannot use the copy", m_connection.getFilename(), errnoOf(m_connection));
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

std::uint64_t EvidenceDatabase::mostRows() const {
    constexpr std::uint64_t kSmallestRow = 6; // length, head, kind, and its place in the page
    return m_size / kSmallestRow;
}

void EvidenceDatabase::expectOneRow() {
    *m_stepsLeft = kStepsPerRow;
}

void EvidenceDatabase::expectWholeTable() {
    // A row takes at least 6 bytes of its file, and passing over it at most 4 instructions.
    *m_stepsLeft = kStepsPerRow + static_cast<std::int64_t>(m_size / kInstructionsPerStep);
}

} // namespace nv
