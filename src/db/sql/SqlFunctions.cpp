#include "db/sql/SqlFunctions.h"

#include "db/sql/LikePattern.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <optional>

namespace nv {

namespace {

std::string_view textOf(sqlite3_value *value) {
    const auto *text = sqlite3_value_text(value);
    const int size = sqlite3_value_bytes(value);
    return {reinterpret_cast<const char *>(text), static_cast<std::size_t>(size)};
}

void deletePattern(void *pattern) {
    delete static_cast<LikePattern *>(pattern);
}

/// The compiled pattern of this call; SQLite keeps it while the pattern stays the same. Null for
/// one that can't be compiled.
const LikePattern *patternOf(sqlite3_context *context, sqlite3_value *value) {
    if (const void *kept = sqlite3_get_auxdata(context, 0))
        return static_cast<const LikePattern *>(kept);
    // SQLite may delete what it is given at once, so this call looks at a copy of its own.
    thread_local std::optional<LikePattern> current;
    current = LikePattern::compile(textOf(value));
    if (current)
        sqlite3_set_auxdata(context, 0, new LikePattern(*current), deletePattern);
    return current ? &*current : nullptr;
}

void like(sqlite3_context *context, int, sqlite3_value **arguments) {
    // A pattern is the first argument, the text the second.
    for (int i = 0; i < 2; ++i)
        if (sqlite3_value_type(arguments[i]) == SQLITE_NULL)
            return;
    if (const LikePattern *pattern = patternOf(context, arguments[0]))
        sqlite3_result_int(context, pattern->matches(textOf(arguments[1])) ? 1 : 0);
    else
        sqlite3_result_error(context, kInvalidPattern.data(), -1);
}

} // namespace

void registerFunctions(SQLite::Database &database) {
    // "Innocuous" lets views use it although the schema of a project isn't trusted.
    constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_INNOCUOUS;
    sqlite3_create_function_v2(database.getHandle(), "like", 2, kFlags, nullptr, like, nullptr,
                               nullptr, nullptr);
}

} // namespace nv
