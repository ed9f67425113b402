#pragma once

#include "readers/Reader.h"

namespace nv {

/// Reads a folder "cache2" of Firefox, or one entry that lies by itself;
/// docs/formats/firefox-cache2.md.
ReadResult parseFirefoxCache2(ReadContext &ctx);

} // namespace nv
