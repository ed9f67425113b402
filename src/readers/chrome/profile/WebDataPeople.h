#pragma once

#include "readers/Reader.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <string_view>

namespace nv {

/// Addresses and payment cards of a "Web Data": names and places, never a number of a card or a
/// telephone. What is lost is added to `result`. False when cancelled, which stands there then.
[[nodiscard]] bool readPeople(ReadContext &ctx, EvidenceDatabase &database,
                              std::string_view procedure, ReadResult &result);

} // namespace nv
