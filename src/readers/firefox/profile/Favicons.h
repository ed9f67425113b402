#pragma once

#include "readers/Reader.h"

namespace nv {

/// Reads "favicons.sqlite" for pages that the history beside it doesn't list any more;
/// docs/formats/firefox-favicons.md.
ReadResult parseFirefoxFaviconsFile(ReadContext &ctx);

} // namespace nv
