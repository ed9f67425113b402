#pragma once

#include "readers/Reader.h"

namespace nv {

extern const Reader kSafariCacheFormat;
extern const Reader kSafariHistoryFormat;
extern const Reader kSafariCookiesFormat;

} // namespace nv
