#pragma once

#include "app/cli/Commands.h"

#include <optional>

namespace SQLite {
class Database;
}

namespace nv::cli {

// What the viewers of the window show of one row.

struct RowArguments {
    std::string project;
    std::int64_t urlId = 0;
};

struct NoteArguments {
    RowArguments row;
    std::optional<std::string> text; ///< nothing to print the note
    bool remove = false;
};
Exit noteCommand(Session &session, const NoteArguments &arguments);

struct HexArguments {
    RowArguments row;
    std::string offset; ///< decimal, or hexadecimal with "0x"; empty for the start
    std::int64_t length = 512;
    bool source = false; ///< the artefact file at the record's offset, not the cached content
    std::string find;    ///< a text
    std::string findBytes;
    bool ignoreCase = false;
};
Exit hexCommand(Session &session, const HexArguments &arguments);

Exit exifCommand(Session &session, const RowArguments &row, Format format);
Exit textCommand(Session &session, const RowArguments &row);

/// The properties of a row as the window has them, but with dates of any age. `database` is the
/// project, opened for reading.
void showForPeople(Session &session, SQLite::Database &database, const std::string &project,
                   std::int64_t urlId);

} // namespace nv::cli
