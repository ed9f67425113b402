#pragma once

#include "readers/Reader.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <span>
#include <string_view>

namespace nv {

/// Counts the rows of tables that a user can have left something in and that no record is made of,
/// so that nobody takes them for empty. False when cancelled, which stands in `result` then.
[[nodiscard]] bool countUnread(ReadContext &ctx, EvidenceDatabase &database,
                               std::span<const std::string_view> tables, std::string_view procedure,
                               ReadResult &result);

} // namespace nv
