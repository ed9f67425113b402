#pragma once

#include "readers/Reader.h"

namespace nv {

/// Opera's cookies are listed among what was found, so that nobody takes their absence for a
/// finding, but nothing of them is read. The result says so.
ReadResult parseOperaCookiesFile(ReadContext &ctx);

} // namespace nv
