#pragma once

#include "readers/Reader.h"

namespace nv {

extern const Reader kMacIECacheFormat;

} // namespace nv
