#include "db/sql/WriteBatch.h"

#include "db/sql/SqliteErrors.h"

namespace nv {

namespace {

/// What a crash may cost at most. Shorter steps cost throughput, longer ones evidence.
constexpr std::chrono::milliseconds kCommitStep{250};

} // namespace

WriteBatch::WriteBatch(SQLite::Database &database, std::function<void()> kept)
    : m_database(database), m_kept(std::move(kept)) {
    begin();
}

WriteBatch::~WriteBatch() {
    // A failing disk is told by written(), commit() and end(); here nothing can be told any more.
    static_cast<void>(end());
}

void WriteBatch::begin() {
    onProject(m_database, [this] { m_database.exec("BEGIN"); });
    m_isOpen = true;
    m_begun = std::chrono::steady_clock::now();
}

void WriteBatch::written() {
    if (std::chrono::steady_clock::now() - m_begun >= kCommitStep)
        commit();
}

void WriteBatch::commit() {
    onProject(m_database, [this] { m_database.exec("COMMIT"); });
    m_isOpen = false;
    m_kept();
    begin();
}

void WriteBatch::giveUp() {
    m_isOpen = false;
    m_database.tryExec("ROLLBACK");
    begin();
}

bool WriteBatch::end() {
    if (!std::exchange(m_isOpen, false))
        return true;
    const bool isKept = m_database.tryExec("COMMIT") == SQLite::OK;
    if (isKept)
        m_kept();
    else // the database itself may have given up what it couldn't write
        m_database.tryExec("ROLLBACK");
    return isKept;
}

} // namespace nv
