#pragma once

#include "db/schema/Ids.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace SQLite {
class Database;
}

namespace nv {

// What the tables that keep a rebuilt page's references, a row each, have in common.

/// Numbers with a blank between them; what is none is passed over.
std::vector<std::int64_t> numbersIn(std::string_view text);

/// Takes the page's rows out of a table of this program's own name, where there is one.
void forgetPage(SQLite::Database &database, std::string_view table, UrlId page);

} // namespace nv
