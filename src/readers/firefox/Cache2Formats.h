#pragma once

#include "readers/Reader.h"

namespace nv {

extern const Reader kFirefoxCache2Format;

} // namespace nv
