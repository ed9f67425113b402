#pragma once

#include <string>

namespace SQLite {
class Statement;
}

namespace nv {

/// Binds a text to a 1-based parameter. It goes in whole, zero bytes included. Bytes that are no
/// UTF-8 are repaired, so that every tool can read the row. `text` isn't copied: it must stay until
/// the statement has run.
void bindText(SQLite::Statement &statement, int at, const std::string &text);

} // namespace nv
