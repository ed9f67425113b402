#pragma once

#include "readers/Reader.h"

#include <cstdint>
#include <optional>
#include <string>

namespace nv {

/// What recognition can tell of an SQLite file's tables without opening it.
struct SchemaHead {
    std::string bytes;             ///< the pages that hold the statements of all tables
    std::uint32_t userVersion = 0; ///< a number that the program which wrote the file gave it
};

/// Nothing for what is no SQLite file, or when contents aren't verified, and where the tables can't
/// be told so: a schema of more pages than one, or a long log of pages beside the file. Throws
/// EvidenceFailure when that log can't be read.
std::optional<SchemaHead> schemaHead(const Candidate &file);

} // namespace nv
