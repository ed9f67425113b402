#pragma once

#include "readers/Reader.h"

namespace nv {

extern const Reader kOperaCacheFormat;
extern const Reader kOperaHistoryFormat;
extern const Reader kOperaCookiesFormat;

} // namespace nv
