#pragma once

#include "readers/Reader.h"

namespace nv {

// A profile's history and what else remembers its pages, known by their tables below any folder.

extern const Reader kChromeHistoryFormat;
extern const Reader kChromiumHistoryFormat;
extern const Reader kChromiumFaviconsFormat;
extern const Reader kChromiumTopSitesFormat;
extern const Reader kChromiumShortcutsFormat;
extern const Reader kChromiumPredictorFormat;

} // namespace nv
