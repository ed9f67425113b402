#pragma once

#include "readers/SourceOption.h"

namespace nv {

// The wizard's boxes for Safari.

inline constexpr SourceOption kSafariCacheOption = {"chkCacheSafari", RecordGroup::cache,
                                                    &families::safari, "", 4};
inline constexpr SourceOption kSafariHistoryOption = {"chkHistorySafari", RecordGroup::history,
                                                      &families::safari, "", 7};
inline constexpr SourceOption kSafariCookiesOption = {"chkCookiesSafari", RecordGroup::cookies,
                                                      &families::safari, "", 13};

} // namespace nv
