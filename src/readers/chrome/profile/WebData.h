#pragma once

#include "readers/Reader.h"

namespace nv {

/// Chromium's "Web Data" and "Account Web Data": what was typed into forms, addresses, payment
/// cards without their numbers, and search engines; docs/formats/chromium-web-data.md.
ReadResult parseChromiumWebData(ReadContext &ctx);

} // namespace nv
