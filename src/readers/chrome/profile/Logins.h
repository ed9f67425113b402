#pragma once

#include "readers/Reader.h"

namespace nv {

/// Chromium's "Login Data": sites, names and dates. Passwords only where they are asked for, as far
/// as they can be decrypted; docs/formats/chromium-logins.md.
ReadResult parseChromiumLogins(ReadContext &ctx);

} // namespace nv
