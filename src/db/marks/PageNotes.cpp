#include "db/marks/PageNotes.h"

#include "base/Text.h"
#include "db/sql/BindId.h"

#include <SQLiteCpp/Database.h>
#include <SQLiteCpp/Statement.h>
#include <fmt/format.h>

#include <charconv>
#include <string>

namespace nv {

std::vector<std::int64_t> numbersIn(std::string_view text) {
    std::vector<std::int64_t> numbers;
    for (const std::string_view part : split(text, ' ')) {
        std::int64_t value = 0;
        if (std::from_chars(part.data(), part.data() + part.size(), value).ec == std::errc())
            numbers.push_back(value);
    }
    return numbers;
}

void forgetPage(SQLite::Database &database, std::string_view table, UrlId page) {
    if (!database.tableExists(std::string(table)))
        return;
    SQLite::Statement remove(database, fmt::format("DELETE FROM {} WHERE URL_ID = ?", table));
    bindId(remove, 1, page);
    remove.exec();
}

} // namespace nv
