#pragma once

#include "base/Clock.h"
#include "db/records/HistoryFile.h"
#include "db/records/UrlRecord.h"
#include "readers/Evidence.h"
#include "readers/firefox/cache/CacheTypes.h"

#include <optional>
#include <string>

namespace nv {

/// One entry of the cache as a URL record; nothing when its metadata weren't read. `file` is the
/// map.
std::optional<UrlRecord> parseFirefoxCacheURL(const CacheRecord &record, const HistoryFile &file,
                                              const Evidence &evidence, const Clock &clock);

/// The address that a key's bytes give.
std::string firefoxCacheAddress(const Bytes &key);

/// Why a stored record, with its metadata, should not be taken as it stands; empty when it may be.
std::string doubtOn(const CacheRecord &record);

} // namespace nv
