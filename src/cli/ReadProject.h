#pragma once

#include "cli/RowWriter.h"
#include "cli/StatementCells.h"

#include <memory>
#include <string>

namespace SQLite {
class Database;
}

namespace nv::cli {

class Session;

/// A connection that can only read, for statements of the examiner's. Throws StorageFailure when
/// `project` has not the extension of projects or can't be read.
std::unique_ptr<SQLite::Database> readProject(const std::string &project);

/// Cells for people in a table, otherwise for programs.
StatementCells cellsOf(Session &session, SQLite::Statement &statement, Format format);

} // namespace nv::cli
