#pragma once

#include "readers/Reader.h"

namespace nv {

extern const Reader kFirefoxCacheFormat;
extern const Reader kMorkHistoryFormat;
extern const Reader kFirefox3HistoryFormat;
extern const Reader kFirefoxCookiesFormat;

} // namespace nv
