#include "views/limits/PlaceFunctions.h"

#include "address/RegisteredDomain.h"
#include "readers/PathOrigin.h"
#include "readers/RecordKind.h"
#include "views/rows/CellText.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <fmt/format.h>
#include <sqlite3.h>

#include <string>
#include <string_view>

namespace nv {

namespace {

std::string groupText(std::string_view cacheType) {
    return std::string(groupWord(groupOf(cacheType)));
}

std::string treeText(std::string_view path) {
    thread_local TreesOfPaths trees;
    return trees(path);
}

using TextOfText = std::string (*)(std::string_view);

/// No value counts as an empty one. An index gives the same one many times in a row.
template <TextOfText Make>
void answer(sqlite3_context *context, int, sqlite3_value **arguments) {
    thread_local std::string last;
    thread_local std::string made = Make({});
    const auto *bytes = reinterpret_cast<const char *>(sqlite3_value_text(*arguments));
    const int size = sqlite3_value_bytes(*arguments);
    const std::string_view text = bytes == nullptr
                                      ? std::string_view()
                                      : std::string_view(bytes, static_cast<std::size_t>(size));
    if (text != last) {
        made = Make(text);
        last = text;
    }
    sqlite3_result_text64(context, made.data(), made.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

bool hasFunctions(SQLite::Database &database) {
    sqlite3_stmt *statement = nullptr;
    const std::string sql = fmt::format("SELECT {}(''), {}(''), {}(''), {}('')", kDomainFunction,
                                        kGroupFunction, kKindFunction, kTreeFunction);
    const int result =
        sqlite3_prepare_v2(database.getHandle(), sql.c_str(), -1, &statement, nullptr);
    sqlite3_finalize(statement);
    return result == SQLITE_OK;
}

void add(SQLite::Database &database, const char *name,
         void (*function)(sqlite3_context *, int, sqlite3_value **)) {
    // What a project's own views and triggers say can't call them.
    constexpr int kFlags = SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY;
    const int result = sqlite3_create_function_v2(database.getHandle(), name, 1, kFlags, nullptr,
                                                  function, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK)
        throw SQLite::Exception(database.getHandle(), result);
}

} // namespace

void needPlaceFunctions(SQLite::Database &database) {
    if (hasFunctions(database)) // to replace one fails while a statement is at work
        return;
    add(database, kDomainFunction, answer<registeredDomain>);
    add(database, kGroupFunction, answer<groupText>);
    add(database, kKindFunction, answer<typeWord>);
    add(database, kTreeFunction, answer<treeText>);
}

} // namespace nv
