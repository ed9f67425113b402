#pragma once

#include "readers/Reader.h"

namespace nv {

/// Reads for which sites logins are kept, "logins.json" and the older "signons.sqlite": never a
/// name or a password, which are encrypted; docs/formats/firefox-logins.md.
ReadResult parseFirefoxLoginsFile(ReadContext &ctx);

} // namespace nv
