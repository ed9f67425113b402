#pragma once

#include <filesystem>
#include <memory>

namespace SQLite {
class Database;
}

namespace nv {

/// A second connection to a project, for statements that an examiner typed: it can read and nothing
/// else, whatever the statement says. Knows the dialect's functions. Throws StorageFailure when the
/// file can't be opened or is no project.
std::unique_ptr<SQLite::Database> openReadOnly(const std::filesystem::path &project);

} // namespace nv
