#include "db/WriteBatch.h"

#include "db/SqliteErrors.h"

namespace nv {

namespace {

/// What a crash may cost at most. Shorter steps cost throughput, longer ones evidence.
constexpr std::chrono::milliseconds kCommitStep{250};

} // namespace

WriteBatch::WriteBatch(SQLite::Database &database) : m_database(database) {
    begin();
}

WriteBatch::~WriteBatch() {
    // A failing disk is told by written() and commit(); here nothing can be told any more.
    m_database.tryExec("COMMIT");
}

void WriteBatch::begin() {
    onProject([this] { m_database.exec("BEGIN"); });
    m_begun = std::chrono::steady_clock::now();
}

void WriteBatch::written() {
    if (std::chrono::steady_clock::now() - m_begun >= kCommitStep)
        commit();
}

void WriteBatch::commit() {
    onProject([this] { m_database.exec("COMMIT"); });
    begin();
}

} // namespace nv
