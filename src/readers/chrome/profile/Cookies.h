#pragma once

#include "readers/Reader.h"

namespace nv {

/// Reads table `cookies` of Chrome's `Cookies`; docs/formats/chrome-cookies.md.
ReadResult parseChromeCookiesFile(ReadContext &ctx);

} // namespace nv
