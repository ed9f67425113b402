#include "db/marks/SearchResults.h"

#include "db/project/StoredQueries.h"
#include "db/schema/SchemaCatalogue.h"
#include "db/sql/Savepoint.h"
#include "db/sql/SqliteErrors.h"
#include "db/sql/StoredText.h"

#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>

namespace nv {

namespace {

constexpr const char *kSelect =
    "SELECT Result_ID, Name, Kind, SearchText, FilePath, SHA256Hash, MadeUTC, RowCount, AppVersion "
    "FROM SearchResults ";

SearchResult resultIn(SQLite::Statement &row) {
    return {row.getColumn(0).getInt64(),
            row.getColumn(1).getString(),
            row.getColumn(2).getString(),
            row.getColumn(3).getString(),
            row.getColumn(4).getString(),
            row.getColumn(5).getString(),
            row.getColumn(6).isNull() ? Date() : Date::fromDays(row.getColumn(6).getDouble()),
            row.getColumn(7).getInt64(),
            row.getColumn(8).getString()};
}

} // namespace

std::string queryOfResult(std::int64_t resultID) {
    return fmt::format("SELECT * FROM URLs WHERE URL_ID IN (SELECT URL_ID FROM SearchHits WHERE "
                       "Result_ID = {}) ORDER BY ActionDateLocal ASC",
                       resultID);
}

std::vector<SearchResult> SearchResults::list() const {
    std::vector<SearchResult> all;
    if (!m_database.tableExists(kSearchResultsTable))
        return all;
    SQLite::Statement row(m_database, std::string(kSelect) + "ORDER BY Result_ID");
    while (row.executeStep())
        all.push_back(resultIn(row));
    return all;
}

std::optional<SearchResult> SearchResults::find(std::string_view name) const {
    if (!m_database.tableExists(kSearchResultsTable))
        return std::nullopt;
    SQLite::Statement row(m_database, std::string(kSelect) + "WHERE Name = ? COLLATE NOCASE");
    row.bind(1, std::string(name));
    return row.executeStep() ? std::optional(resultIn(row)) : std::nullopt;
}

std::vector<ResultHit> SearchResults::hits(const SearchResult &result) const {
    std::vector<ResultHit> all;
    if (!m_database.tableExists(kSearchHitsTable))
        return all;
    SQLite::Statement row(m_database, "SELECT URL_ID, Term, Field, Hits FROM SearchHits "
                                      "WHERE Result_ID = ? ORDER BY rowid");
    row.bind(1, result.resultID);
    while (row.executeStep())
        all.push_back({row.getColumn(0).getInt64(), row.getColumn(1).getString(),
                       row.getColumn(2).getString(), row.getColumn(3).getInt64()});
    return all;
}

std::int64_t SearchResults::addResult(const SearchResult &result) {
    SQLite::Statement insert(m_database,
                             "INSERT INTO SearchResults (Name, Kind, SearchText, FilePath, "
                             "SHA256Hash, MadeUTC, RowCount, AppVersion) "
                             "VALUES (?, ?, ?, ?, ?, ?, ?, ?)");
    bindText(insert, 1, result.name);
    bindText(insert, 2, result.kind);
    bindText(insert, 3, result.searchText);
    bindText(insert, 4, result.filePath);
    bindText(insert, 5, result.sha256Hash);
    if (result.madeUTC.has())
        insert.bind(6, result.madeUTC.days());
    insert.bind(7, result.rowCount);
    bindText(insert, 8, result.appVersion);
    insert.exec();
    return m_database.getLastInsertRowid();
}

void SearchResults::add(const SearchResult &result, std::size_t count,
                        const std::function<ResultHit(std::size_t)> &hit) {
    onProject(m_database, [&] {
        Savepoint whole(m_database);
        SchemaCatalogue(m_database).addOnFirstUse(kSearchResultsTable);
        SchemaCatalogue(m_database).addOnFirstUse(kSearchHitsTable);
        const std::int64_t id = addResult(result);
        SQLite::Statement insert(m_database, "INSERT INTO SearchHits (Result_ID, URL_ID, Term, "
                                             "Field, Hits) VALUES (?, ?, ?, ?, ?)");
        for (std::size_t at = 0; at < count; ++at) {
            const ResultHit each = hit(at);
            insert.tryReset();
            insert.bind(1, id);
            insert.bind(2, each.urlID);
            bindText(insert, 3, each.term);
            bindText(insert, 4, each.field);
            insert.bind(5, each.hits);
            insert.exec();
        }
        StoredQueries(m_database).save({result.name, queryOfResult(id)});
        whole.release();
    });
}

void SearchResults::remove(const SearchResult &result) {
    onProject(m_database, [&] {
        Savepoint whole(m_database);
        for (const char *table : {kSearchHitsTable, kSearchResultsTable}) {
            SQLite::Statement row(m_database,
                                  fmt::format("DELETE FROM {} WHERE Result_ID = ?", table));
            row.bind(1, result.resultID);
            row.exec();
        }
        StoredQueries queries(m_database);
        if (queries.text(result.name) == queryOfResult(result.resultID))
            queries.remove(result.name);
        whole.release();
    });
}

} // namespace nv
