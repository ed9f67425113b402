#pragma once

#include "readers/Reader.h"

namespace nv {

/// Reads table `moz_cookies` of Firefox's `cookies.sqlite`; docs/formats/firefox-cookies.md.
ReadResult parseFirefoxCookiesFile(ReadContext &ctx);

} // namespace nv
