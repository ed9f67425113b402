#pragma once

#include "readers/Reader.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace nv {

/// The number in the file's head that a program may give its tables. Nothing for 0, which is none,
/// and where it can't be read: damage is told by those who read the tables.
std::optional<std::int64_t> userVersion(EvidenceDatabase &database);

/// Notes the number of a file's tables, such as "Cookies 24" or "places 86", as the version of
/// whoever wrote the file, where nothing else told one.
void noteSchemaVersion(ReadContext &ctx, std::string_view name,
                       std::optional<std::int64_t> version);

} // namespace nv
