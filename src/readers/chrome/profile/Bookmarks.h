#pragma once

#include "readers/Reader.h"

namespace nv {

/// Chromium's "Bookmarks" and its copies; docs/formats/chromium-bookmarks.md.
ReadResult parseChromiumBookmarks(ReadContext &ctx);

} // namespace nv
