#pragma once

#include "readers/Reader.h"

namespace nv {

extern const Reader kIECookiesFormat;
extern const Reader kIEHistoryFormat;
extern const Reader kIECacheFormat;

/// "index.dat" and names like it, but for those of recovered records.
bool hasIndexName(const Candidate &file);
/// What hist-ex puts in the names of the files that it recovers.
bool hasNameOfRecoveredIndex(const Candidate &file);

} // namespace nv
