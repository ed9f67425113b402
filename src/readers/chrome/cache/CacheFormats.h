#pragma once

#include "readers/Reader.h"

namespace nv {

// Chromium's caches since 2012, each in the order of trial.

extern const Reader kChromiumSimpleCacheFormat;
extern const Reader kChromiumSqlCacheFormat;
extern const Reader kChromiumLoneIndexFormat;

} // namespace nv
