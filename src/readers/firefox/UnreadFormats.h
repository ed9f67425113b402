#pragma once

#include "readers/Reader.h"

namespace nv {

// What is found and listed, but not read yet: docs/formats/not-read-yet.md.

extern const Reader kFirefoxCache2Format;
extern const Reader kFirefoxJsonlz4Format;
extern const Reader kFirefoxStorageFormat;

} // namespace nv
