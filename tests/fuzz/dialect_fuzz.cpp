// Statements and patterns that somebody typed: nothing but DialectError may come out of the
// translation, and what it made is read by the database without a fault.

#include "db/sql/Dialect.h"
#include "db/sql/LikePattern.h"
#include "db/sql/SqlFunctions.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

std::optional<std::string> translated(std::string_view sql) {
    try {
        return nv::translate(sql);
    } catch (const nv::DialectError &) {
        return std::nullopt;
    }
}

SQLite::Database &emptyProject() {
    static SQLite::Database database(":memory:", SQLite::OPEN_READWRITE);
    static const bool isMade = [] {
        nv::registerFunctions(database);
        database.exec("CREATE TABLE URLs (URL TEXT COLLATE NOCASE, ActionDateUTC DATE)");
        return true;
    }();
    require(isMade);
    return database;
}

void compile(const std::string &sql) {
    try {
        SQLite::Statement statement(emptyProject(), sql);
    } catch (const SQLite::Exception &) { // most of what is typed is no SQL
    }
}

void match(std::string_view pattern, std::string_view text) {
    if (const auto compiled = nv::LikePattern::compile(pattern))
        compiled->matches(text);
    const std::string escaped = nv::escapedForLike(text);
    require(nv::LikePattern::compile(escaped).value().matches(text));
    require(nv::LikePattern::compile("%" + escaped + "%").value().matches(text));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    if (size == 0)
        return 0;
    const std::string_view text(reinterpret_cast<const char *>(data) + 1, size - 1);
    if (const auto sql = translated(text))
        compile(*sql);
    nv::parseDateLiteral(text);
    const std::size_t cut = data[0] % size;
    match(text.substr(0, cut), text.substr(cut));
    return 0;
}
