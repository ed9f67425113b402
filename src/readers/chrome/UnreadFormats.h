#pragma once

#include "readers/Reader.h"

namespace nv {

// What is found and listed, but not read yet: docs/formats/not-read-yet.md.

extern const Reader kChromiumSimpleCacheFormat;
extern const Reader kChromiumSqlCacheFormat;
extern const Reader kChromiumLoneIndexFormat;
extern const Reader kLevelDBFormat;
extern const Reader kChromiumSessionFormat;
extern const Reader kChromiumSiteDataFormat;

} // namespace nv
