#include "db/sql/StoredText.h"

#include "base/Text.h"

#include <SQLiteCpp/Statement.h>

namespace nv {

void bindText(SQLite::Statement &statement, int at, const std::string &text) {
    if (isUtf8(text))
        statement.bindNoCopy(at, text);
    else
        statement.bind(at, decodeText(text));
}

} // namespace nv
