#pragma once

#include "app/program/Program.h"
#include "db/schema/Ids.h"

#include <optional>
#include <string>

namespace nv {

/// Keeps what stands for an address of a page, of its frames and of its style sheets from the next
/// rebuild on, and notes it in the case trail: a record, `none` for an empty place, nothing when
/// the program is to decide again. `address` has no fragment. Throws the database's errors.
void keepPartChoice(Program &program, UrlId page, const std::string &address,
                    std::optional<UrlId> part);

} // namespace nv
