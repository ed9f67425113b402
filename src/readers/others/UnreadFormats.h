#pragma once

#include "readers/Reader.h"

namespace nv {

// What is found and listed, but not read yet: docs/formats/not-read-yet.md.

extern const Reader kWebKitCacheFormat;
extern const Reader kEpiphanyHistoryFormat;
extern const Reader kEpiphanyCookiesFormat;
extern const Reader kFalkonHistoryFormat;
extern const Reader kAndroidBrowserFormat;

} // namespace nv
