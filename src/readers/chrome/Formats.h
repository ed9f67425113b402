#pragma once

#include "readers/Reader.h"

namespace nv {

extern const Reader kChromeCacheFormat;
extern const Reader kChromeCookiesFormat;

} // namespace nv
