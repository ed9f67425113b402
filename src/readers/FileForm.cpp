#include "readers/FileForm.h"

#include "base/Files.h"
#include "base/Text.h"
#include "readers/BrowserOf.h"
#include "readers/Limits.h"
#include "readers/ProfileFolder.h"
#include "readers/sqlite/FileHead.h"
#include "readers/sqlite/SchemaTables.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

namespace nv {

namespace {

bool hasZero(const Candidate &file) {
    return file.head.raw().find('\0') != std::string_view::npos;
}

/// Statements of the schema stand in the first page, whatever became of the bytes before them.
bool hasStatements(const Candidate &file) {
    return hasZero(file) && file.head.raw().find("CREATE TABLE ") != std::string_view::npos;
}

/// The ending says what it is, whoever's it was.
bool isDatabaseByName(const Candidate &file) {
    return hasStatements(file) || (file.extension == "sqlite" && !beginsAsSqlite(file.head));
}

bool isOfFirefoxAlone(const Candidate &file) {
    return file.name.ends_with(".jsonlz4") || file.extension == "baklz4";
}

bool isDatabase(const Candidate &file) {
    return beginsAsSqlite(file.head) && schemaDamage(file).empty() && !schemaTables(file).empty();
}

/// As far as its first bytes tell, and its end where they reach it.
bool isJsonObject(const Candidate &file) {
    std::string_view text = file.head.raw();
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    text = trim(text);
    const bool isWhole = file.head.size() < limits::kHeadBytes;
    return text.starts_with('{') && !hasZero(file) && (!isWhole || text.ends_with('}'));
}

bool isJsonList(const Candidate &file) {
    return file.extension == "json" && isJsonObject(file);
}

/// What stands there in place of what was expected.
std::string foundIn(const Candidate &file) {
    constexpr std::uint64_t kShown = 8;
    if (file.head.size() == 0)
        return "it is empty";
    if (beginsAsSqlite(file.head))
        return "its tables are none of it";
    std::string bytes;
    for (std::uint64_t at = 0; at < std::min(kShown, file.head.size()); ++at)
        bytes += fmt::format(" {:02X}", file.head.u8(at));
    return "at offset 0 stands" + bytes;
}

} // namespace

constinit const FileForm kTablesForm = {
    .words = "an SQLite database with its tables",
    .hasRemains = isDatabaseByName,
};
constinit const FileForm kDatabaseForm = {
    .words = "an SQLite database",
    .isSound = isDatabase,
    .hasRemains = isDatabaseByName,
};
constinit const FileForm kJsonForm = {.words = "a JSON object", .isSound = isJsonObject};
constinit const FileForm kBookmarksForm = {
    .words = "a JSON object, or an encrypted one",
    .isSound = isJsonObject,
};
constinit const FileForm kLoginsForm = {
    .words = "a JSON object, or an SQLite database with its tables",
    .isSound = isJsonList,
    .hasRemains = isDatabaseByName,
};
constinit const FileForm kSessionForm = {.words = "\"SNSS\" of a session"};
constinit const FileForm kPackedForm = {
    .words = "\"mozLz40\" of a packed file",
    .hasRemains = isOfFirefoxAlone,
};
constinit const FileForm kStoreForm = {.words = "the name of a store's \"MANIFEST\""};

std::string damageOfNamed(const Candidate &file, const Reader &format, bool isNamed) {
    const FileForm *form = format.form;
    if (!form || (form->isSound && form->isSound(file)))
        return {};
    // A sound database may be another program's, unless its place says otherwise.
    const bool isTold =
        !isDatabase(file) && (isNamed || (form->hasRemains && form->hasRemains(file)));
    if (!isTold && !liesInProfile(file, engineOf(&format)))
        return {};
    return fmt::format("\"{}\" isn't what its name and place say ({}): {}, {} was expected",
                       textOf(file.file), format.kind, foundIn(file), form->words);
}

} // namespace nv
