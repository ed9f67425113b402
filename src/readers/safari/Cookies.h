#pragma once

#include "readers/Reader.h"

namespace nv {

/// The file "Cookies.plist" of Safari. Nothing is read of it: the result says so.
ReadResult parseSafariCookiesFile(ReadContext &ctx);

} // namespace nv
