#pragma once

#include "readers/Reader.h"

namespace nv {

/// Reads what sites were allowed and denied, "permissions.sqlite";
/// docs/formats/firefox-permissions.md.
ReadResult parseFirefoxPermissionsFile(ReadContext &ctx);

} // namespace nv
