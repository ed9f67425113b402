#pragma once

#include "readers/Reader.h"

#include <initializer_list>
#include <set>
#include <string>
#include <string_view>

namespace nv {

/// Lower-case names of the tables in the SQLite file, also of those that the log of pages beside it
/// holds alone; none for any other file. Nothing is copied and no database opened: what is read are
/// the pages of the schema. Throws EvidenceFailure.
std::set<std::string> schemaTables(const Candidate &file);

/// Why not all tables of the SQLite file can be told, as when it ends before the pages of its
/// schema; names file and page. Empty when the schema is whole, whatever its tables are, and for
/// what doesn't begin as an SQLite file. Throws EvidenceFailure.
std::string schemaDamage(const Candidate &file);

/// Whether the SQLite file has all of these tables, named in lower case. When contents aren't
/// verified the file's name decides alone, and this is always true. Throws EvidenceFailure.
bool hasTables(const Candidate &file, std::initializer_list<std::string_view> tables);

} // namespace nv
