#pragma once

#include "readers/Reader.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <cstdint>
#include <optional>

namespace nv {

/// The version of the tables, from table `meta`, which all databases of Chromium have. Nothing
/// where it can't be read, which is logged: what depends on it is then told by the values.
std::optional<std::int64_t> schemaVersion(const ReadContext &ctx, EvidenceDatabase &database);

} // namespace nv
