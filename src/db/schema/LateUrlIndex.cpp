#include "db/schema/LateUrlIndex.h"

#include "base/Trap.h"
#include "db/schema/Schema.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>

#include <algorithm>
#include <string>

namespace nv {

namespace {

constexpr std::string_view kName = "URLIndex";

bool hasRecords(SQLite::Database &project) {
    SQLite::Statement record(project, "SELECT 1 FROM URLs LIMIT 1");
    return record.executeStep();
}

bool hasIndex(SQLite::Database &project) {
    SQLite::Statement index(project,
                            "SELECT 1 FROM sqlite_master WHERE type = 'index' AND name = ?");
    index.bind(1, std::string(kName));
    return index.executeStep();
}

} // namespace

LateUrlIndex::LateUrlIndex(SQLite::Database &project, FailureLog &log)
    : m_project(project), m_log(log) {
    if (!hasRecords(project)) // somebody may be reading, and then it stays
        project.tryExec(fmt::format("DROP INDEX IF EXISTS \"{}\"", kName));
    m_isMissing = !hasIndex(project);
}

LateUrlIndex::~LateUrlIndex() {
    if (m_isMissing)
        logFailureOf(m_log, "ImportForm.ImportFiles()", [this] {
            if (hasIndex(m_project)) // an import beside this one has made it
                return;
            const auto indexes = schema::indexes();
            m_project.exec(
                schema::createStatement(*std::ranges::find(indexes, kName, &schema::Index::name)));
        });
}

} // namespace nv
