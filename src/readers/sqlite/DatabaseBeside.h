#pragma once

#include "readers/Reader.h"
#include "readers/sqlite/EvidenceDatabase.h"

#include <functional>
#include <string_view>

namespace nv {

enum class Beside { read, notThere, notReadable };

/// Opens a copy of the SQLite file `name` that lies in the artefact's folder, and runs `body` on
/// it. That it can't be read ends no reading: the log names it, and the caller says what its
/// records lack.
Beside readBeside(ReadContext &ctx, std::string_view name, std::string_view procedure,
                  const std::function<void(EvidenceDatabase &)> &body);

} // namespace nv
