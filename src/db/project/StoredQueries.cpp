#include "db/project/StoredQueries.h"

#include "base/NoLog.h"
#include "base/Trap.h"
#include "db/sql/Dialect.h"
#include "db/sql/Savepoint.h"
#include "db/sql/SqliteErrors.h"
#include "time/Date.h"

namespace nv {

namespace {

constexpr std::string_view kRows =
    "SELECT Q.Name, Q.SQLText, V.name, V.sql FROM StoredQueries Q LEFT JOIN sqlite_master V "
    "ON V.type = 'view' AND V.name = Q.Name COLLATE NOCASE ";

/// The database keeps neither a comment nor a semicolon at a statement's end.
std::string_view withoutEnd(std::string_view sql) {
    std::size_t length = 0;
    for (const Token &token : tokensOf(sql))
        if (token.kind != TokenKind::blank && token.source != ";")
            length =
                static_cast<std::size_t>(token.source.data() + token.source.size() - sql.data());
    return sql.substr(0, length);
}

std::string startOfView(std::string_view name) {
    return "CREATE VIEW " + quotedName(name) + " AS ";
}

/// The text as written, when the view is its translation. Else what the view itself says; all of
/// its definition when this program can't have made it.
std::string runningText(std::string text, std::string_view view, std::string_view definition) {
    const std::string start = startOfView(view);
    if (definition.empty()) // there is no view: the text can't run
        return text;
    bool isTranslation = false;
    NoLog unheard; // a text that can't be translated is no translation
    logFailureOf(unheard, {}, [&] {
        const std::string translated = translate(text);
        isTranslation = definition == start + std::string(withoutEnd(translated));
    });
    if (isTranslation)
        return text;
    return std::string(definition.starts_with(start) ? definition.substr(start.size())
                                                     : definition);
}

StoredQuery queryIn(SQLite::Statement &row) {
    return {row.getColumn(0).getString(),
            runningText(row.getColumn(1).getString(), row.getColumn(2).getString(),
                        row.getColumn(3).getString())};
}

} // namespace

void StoredQueries::createAll(const Clock &clock, const KeywordLists &keywords) {
    m_database.exec("CREATE TABLE StoredQueries (Name TEXT COLLATE NOCASE PRIMARY KEY, "
                    "SQLText TEXT, Ordinal INTEGER)");
    const CivilTime today = Date::fromTimePoint(clock.now() + clock.localOffset()).civil();
    for (const StoredQuery &query : firstQueries(today.year, today.month, keywords))
        save(query);
}

std::vector<StoredQuery> StoredQueries::list() const {
    return onProject(m_database, [this] {
        std::vector<StoredQuery> queries;
        SQLite::Statement rows(m_database, std::string(kRows) + "ORDER BY Q.Ordinal");
        while (rows.executeStep())
            queries.push_back(queryIn(rows));
        return queries;
    });
}

std::optional<std::string> StoredQueries::text(std::string_view name) const {
    return onProject(m_database, [&] {
        SQLite::Statement row(m_database, std::string(kRows) + "WHERE Q.Name = ?");
        row.bind(1, std::string(name));
        return row.executeStep() ? std::optional(queryIn(row).sql) : std::nullopt;
    });
}

void StoredQueries::save(const StoredQuery &query) {
    const std::string translated = translate(query.sql);
    onProject(m_database, [&] {
        Savepoint savepoint(m_database);
        replaceView(query.name, translated);
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

void StoredQueries::replaceView(const std::string &name, const std::string &select) {
    m_database.exec("DROP VIEW IF EXISTS " + quotedName(name));
    m_database.exec(startOfView(name) + select);
    // Compiling a SELECT on the view is what finds unknown names in it.
    SQLite::Statement(m_database, "SELECT * FROM " + quotedName(name));
}

void StoredQueries::remove(std::string_view name) {
    onProject(m_database, [&] {
        Savepoint savepoint(m_database);
        SQLite::Statement row(m_database, "DELETE FROM StoredQueries WHERE Name = ?");
        row.bind(1, std::string(name));
        row.exec();
        m_database.exec("DROP VIEW IF EXISTS " + quotedName(name));
        savepoint.release();
    });
}

void StoredQueries::resetDEFAULTQuery() {
    save({std::string(kDefaultQueryName), std::string(kDefaultQueryText)});
}

} // namespace nv
