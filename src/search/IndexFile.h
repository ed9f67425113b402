#pragma once

#include <SQLiteCpp/Database.h>

#include <filesystem>
#include <memory>
#include <string>

namespace nv {

/// Where a project's search index lies: "case.nvp.search" beside "case.nvp".
std::filesystem::path indexBeside(const std::filesystem::path &project);

/// What tells that a project is the one that it was: sizes, dates and the counter of changes of its
/// file and of the log beside it. Throws FileFailure.
std::string stampOf(const std::filesystem::path &project);

/// The file of a search index (docs/formats/search-index.md).
namespace index_file {

enum class Look {
    none,    ///< there is none, or an empty one
    ours,    ///< it says that it is an index of this form
    older,   ///< it is an index of another form
    foreign, ///< something else
};
/// Reads the head of the file and opens nothing.
Look look(const std::filesystem::path &file);

/// An index of no rows, whose writing isn't safe against a crash: it is made under another name.
std::unique_ptr<SQLite::Database> make(const std::filesystem::path &file);
constexpr int kUsualPatience = 10'000; // milliseconds
/// One that is there. Null when it can't be opened as a database. `patience`, in milliseconds, is
/// how long it waits for others who write it.
std::unique_ptr<SQLite::Database> open(const std::filesystem::path &file, bool forWriting,
                                       int patience = kUsualPatience);

/// Lets a new FTS5 table gather much before it writes, and write it once.
void gatherMuch(SQLite::Database &index, const std::string &table);

/// The fact by which an index holds: stampOf() the project that it was made of.
inline constexpr const char *kStamp = "stamp";

/// What the index knows of itself; empty for what it doesn't.
std::string fact(SQLite::Database &index, const std::string &name);
void setFact(SQLite::Database &index, const std::string &name, const std::string &value);

} // namespace index_file

} // namespace nv
