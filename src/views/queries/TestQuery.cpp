#include "views/queries/TestQuery.h"

#include "base/Text.h"
#include "base/Trap.h"
#include "db/sql/Dialect.h"
#include "db/sql/ReadOnlyConnection.h"
#include "views/rows/StatementWatch.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <algorithm>

namespace nv {
namespace {

constexpr std::string_view kProcedure = "TestQuery()";
constexpr std::int32_t kStatementError = SQLITE_ERROR; // of the dialect, which has no numbers

/// Ends a statement after a fixed amount of work, about a quarter of a second.
class SomeWork final : public TaskMonitor {
  public:
    void describe(const TaskHeading &) override {}
    bool advance(double) override { return ++m_asked < 50; }
    bool wantsStep() const override { return false; }
    void show(const TaskStep &) override {}

  private:
    int m_asked = 0;
};

bool explains(std::string_view sql) {
    const auto tokens = tokensOf(sql);
    const auto first = std::find_if(tokens.begin(), tokens.end(), [](const Token &token) {
        return token.kind != TokenKind::blank;
    });
    return first != tokens.end() && equalsNoCase(first->source, "explain");
}

/// What a view can't hold: no rows, EXPLAIN, parameters.
void checkKind(const SQLite::Statement &statement) {
    if (statement.getColumnCount() == 0 || explains(statement.getQuery()))
        throw DialectError("the statement gives no rows: a SELECT was expected");
    if (statement.getBindParameterCount() > 0)
        throw DialectError("the statement holds a parameter, for which there is no value");
}

void open(SQLite::Database &connection, const std::string &translated) {
    SQLite::Statement statement(connection, translated);
    checkKind(statement);
    SomeWork work;
    StatementWatch(connection, work).step(statement);
}

void checkIds(const SQLite::Statement &statement) {
    for (int i = 0; i < statement.getColumnCount(); ++i)
        if (equalsNoCase(statement.getColumnName(i), "URL_ID"))
            return;
    throw DialectError("the statement gives no URL_ID, by which the table shows its rows");
}

std::string orderIn(std::string_view sql) {
    constexpr std::string_view kOrderBy = "ORDER BY ";
    const std::size_t at = toUpper(sql).rfind(kOrderBy);
    return at == std::string::npos ? "" : std::string(trim(sql.substr(at + kOrderBy.size())));
}

bool hasLineComment(std::string_view sql) {
    if (sql.find('\n') == std::string_view::npos)
        return false;
    const auto tokens = tokensOf(sql);
    for (std::size_t i = 0; i + 1 < tokens.size(); ++i)
        if (tokens[i].kind == TokenKind::blank && tokens[i].source.starts_with("--"))
            return true;
    return false;
}

QueryCheck outcome(std::string_view sql, std::int32_t code, std::string description) {
    return {code, std::move(description), std::string(sql), orderIn(sql)};
}

} // namespace

std::string sanitizeSQLText(std::string_view sql) {
    std::string text = replaceAll(sql, "\r\n", " ");
    for (char &c : text)
        if (c == '\t' || c == '\r' || c == '\n')
            c = ' ';
    return text;
}

QueryCheck testQuery(std::string_view sql, SQLite::Database &connection, FailureLog &log) {
    std::string translated;
    if (auto refused = failureOf(log, kProcedure, [&] { translated = translate(sql); }))
        return outcome(sql, kStatementError, *std::move(refused));
    if (auto refused = failureOf(log, kProcedure, [&] { open(connection, translated); })) {
        const int code = sqlite3_errcode(connection.getHandle());
        return outcome(sql, code == SQLITE_OK ? kStatementError : code, meaningOf(*refused));
    }
    return outcome(sql, 0, "");
}

QueryCheck testTyped(std::string_view typed, SQLite::Database &connection, FailureLog &log) {
    const std::string sql = sanitizeSQLText(trim(typed));
    bool swallows = false;
    // An open quote is what testQuery() tells of.
    if (!failureOf(log, kProcedure, [&] { swallows = hasLineComment(trim(typed)); }) && swallows)
        return outcome(sql, kStatementError,
                       "lines are joined into one: a comment with \"--\" would hide what stands "
                       "behind it. Write it as /* comment */");
    return testQuery(sql, connection, log);
}

QueryCheck testForTable(std::string_view typed, SQLite::Database &connection, FailureLog &log) {
    QueryCheck query = testTyped(typed, connection, log);
    if (query.errCode != 0)
        return query;
    const auto refused = failureOf(
        log, kProcedure, [&] { checkIds(SQLite::Statement(connection, translate(query.sql))); });
    return refused ? outcome(query.sql, kStatementError, *refused) : query;
}

} // namespace nv
