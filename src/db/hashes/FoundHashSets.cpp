#include "db/hashes/FoundHashSets.h"

#include "base/Text.h"
#include "db/hashes/HashLookup.h"
#include "db/records/RecordFacts.h"
#include "db/sql/BindId.h"
#include "db/sql/StoredText.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <optional>

namespace nv {

namespace {

constexpr std::size_t kMostSetsOfRow = 1000;

FoundHashSet setIn(SQLite::Statement &row) {
    const bool isNotable = row.getColumn(0).getString() == factFor(HashMeaning::notable);
    return {isNotable ? HashMeaning::notable : HashMeaning::known,
            decodeText(row.getColumn(1).getString()), 0};
}

} // namespace

std::string hashSetFacts() {
    return fmt::format("Name IN ('{}') AND typeof(URL_ID) = 'integer' AND URL_ID BETWEEN 1 AND "
                       "2147483647",
                       fmt::join(kHashSetFacts, "', '"));
}

std::string rowsInHashSets(HashMeaning meaning) {
    return fmt::format("SELECT URL_ID FROM RecordFacts WHERE {} AND Name = '{}'", hashSetFacts(),
                       factFor(meaning));
}

bool hasFacts(SQLite::Database &project) {
    return project.tableExists(kRecordFactsTable);
}

std::vector<FoundHashSet> foundHashSets(SQLite::Database &project) {
    std::vector<FoundHashSet> sets;
    if (!hasFacts(project))
        return sets;
    SQLite::Statement rows(
        project, fmt::format("SELECT Name, Value, count(DISTINCT URL_ID) FROM RecordFacts "
                             "WHERE {} GROUP BY 1, 2 ORDER BY 1 DESC, 2",
                             hashSetFacts()));
    while (rows.executeStep()) {
        sets.push_back(setIn(rows));
        sets.back().rows = static_cast<std::uint64_t>(rows.getColumn(2).getInt64());
    }
    return sets;
}

std::uint64_t countInHashSets(SQLite::Database &project, HashMeaning meaning) {
    if (!hasFacts(project))
        return 0;
    return static_cast<std::uint64_t>(
        project
            .execAndGet(
                fmt::format("SELECT count(DISTINCT URL_ID) FROM ({})", rowsInHashSets(meaning)))
            .getInt64());
}

std::vector<std::int32_t> rowsOf(SQLite::Database &project, const FoundHashSet &set) {
    std::vector<std::int32_t> ids;
    if (!hasFacts(project))
        return ids;
    SQLite::Statement rows(
        project, fmt::format("SELECT DISTINCT URL_ID FROM RecordFacts WHERE {} AND Name = '{}' AND "
                             "Value = ? ORDER BY URL_ID",
                             hashSetFacts(), factFor(set.meaning)));
    bindText(rows, 1, set.name);
    while (rows.executeStep())
        ids.push_back(rows.getColumn(0).getInt());
    return ids;
}

std::string hashSetsText(const std::vector<FoundHashSet> &sets) {
    std::string text;
    std::optional<HashMeaning> last;
    for (const FoundHashSet &set : sets) {
        if (last == set.meaning)
            text += ", ";
        else
            text += fmt::format("{}{}: ", text.empty() ? "" : "; ", wordOf(set.meaning));
        last = set.meaning;
        text += set.name;
    }
    return text;
}

RowHashSetReader::RowHashSetReader(SQLite::Database &project) {
    if (hasFacts(project))
        m_rows = std::make_unique<SQLite::Statement>(
            project,
            fmt::format("SELECT DISTINCT Name, Value FROM RecordFacts WHERE URL_ID = ? AND "
                        "Name IN ('{}') ORDER BY Name DESC, Value LIMIT {}",
                        fmt::join(kHashSetFacts, "', '"), kMostSetsOfRow));
}

RowHashSetReader::~RowHashSetReader() = default;

std::string RowHashSetReader::of(UrlId id) {
    std::vector<FoundHashSet> sets;
    if (!m_rows)
        return {};
    m_rows->tryReset();
    bindId(*m_rows, 1, id);
    while (m_rows->executeStep())
        sets.push_back(setIn(*m_rows));
    m_rows->tryReset();
    return hashSetsText(sets);
}

} // namespace nv
