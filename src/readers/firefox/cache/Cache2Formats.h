#pragma once

#include "readers/Reader.h"

namespace nv {

extern const Reader kFirefoxCache2Format;
extern const Reader kFirefoxSiteCacheFormat;

} // namespace nv
