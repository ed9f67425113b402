#include "db/StoredQueries.h"

#include "db/Dialect.h"
#include "db/Savepoint.h"
#include "db/SqliteErrors.h"
#include "time/Date.h"

namespace nv {

void StoredQueries::createAll(const Clock &clock, const KeywordLists &keywords) {
    m_database.exec("CREATE TABLE StoredQueries (Name TEXT COLLATE NOCASE PRIMARY KEY, "
                    "SQLText TEXT, Ordinal INTEGER)");
    const CivilTime today = Date::fromTimePoint(clock.now() + clock.localOffset()).civil();
    for (const StoredQuery &query : firstQueries(today.year, today.month, keywords))
        save(query);
}

std::vector<StoredQuery> StoredQueries::list() const {
    return onProject([this] {
        std::vector<StoredQuery> queries;
        SQLite::Statement rows(m_database,
                               "SELECT Name, SQLText FROM StoredQueries ORDER BY Ordinal");
        while (rows.executeStep())
            queries.push_back({rows.getColumn(0).getString(), rows.getColumn(1).getString()});
        return queries;
    });
}

std::optional<std::string> StoredQueries::text(std::string_view name) const {
    return onProject([&] {
        SQLite::Statement row(m_database, "SELECT SQLText FROM StoredQueries WHERE Name = ?");
        row.bind(1, std::string(name));
        return row.executeStep() ? std::optional(row.getColumn(0).getString()) : std::nullopt;
    });
}

void StoredQueries::save(const StoredQuery &query) {
    const std::string translated = translate(query.sql);
    onProject([&] {
        Savepoint savepoint(m_database);
        replaceView(quotedName(query.name), translated);
        SQLite::Statement row(m_database,
                              "INSERT INTO StoredQueries VALUES (?, ?, (SELECT 1 + "
                              "coalesce(max(Ordinal), 0) FROM StoredQueries)) "
                              "ON CONFLICT (Name) DO UPDATE SET SQLText = excluded.SQLText");
        row.bind(1, query.name);
        row.bind(2, query.sql);
        row.exec();
        savepoint.release();
    });
}

void StoredQueries::replaceView(const std::string &view, const std::string &select) {
    m_database.exec("DROP VIEW IF EXISTS " + view);
    m_database.exec("CREATE VIEW " + view + " AS " + select);
    // Compiling a SELECT on the view is what finds unknown names in it.
    SQLite::Statement(m_database, "SELECT * FROM " + view);
}

void StoredQueries::remove(std::string_view name) {
    onProject([&] {
        Savepoint savepoint(m_database);
        SQLite::Statement row(m_database, "DELETE FROM StoredQueries WHERE Name = ?");
        row.bind(1, std::string(name));
        row.exec();
        m_database.exec("DROP VIEW IF EXISTS " + quotedName(name));
        savepoint.release();
    });
}

void StoredQueries::ResetDEFAULTQuery() {
    save({std::string(kDefaultQueryName), std::string(kDefaultQueryText)});
}

} // namespace nv
