#pragma once

#include "readers/Reader.h"

namespace nv {

// What is found and listed, but not read yet: docs/formats/not-read-yet.md.

extern const Reader kSafariDatabaseFormat;
extern const Reader kSafariBinaryCookiesFormat;

} // namespace nv
