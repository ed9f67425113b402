#pragma once

#include "readers/Reader.h"

namespace nv {

// The files of a profile of Chromium and its relatives beside the history, known by their contents
// in whatever folder.

extern const Reader kChromiumCookiesFormat;
extern const Reader kChromiumWebDataFormat;
extern const Reader kChromiumLoginsFormat;
extern const Reader kChromiumBookmarksFormat;
extern const Reader kChromiumPreferencesFormat;
extern const Reader kChromiumLocalStateFormat;

} // namespace nv
