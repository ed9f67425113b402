#pragma once

#include "readers/SourceOption.h"

namespace nv {

// The wizard's boxes for Chrome and its relatives.

inline constexpr SourceOption kChromeHistoryOption = {"chkHistoryChrome", RecordGroup::history,
                                                      &families::chrome, "", 9};
inline constexpr SourceOption kChromeCacheOption = {"chkCacheChrome", RecordGroup::cache,
                                                    &families::chrome, "", 0};
inline constexpr SourceOption kChromeCookiesOption = {"chkCookiesChrome", RecordGroup::cookies,
                                                      &families::chrome, "", 14};
inline constexpr SourceOption kChromeBookmarksOption = {"chkBookmarksChrome",
                                                        RecordGroup::bookmarks, &families::chrome};
/// Forms, logins, settings, stores.
inline constexpr SourceOption kChromeOtherOption = {"chkOtherChrome", RecordGroup::other,
                                                    &families::chrome};

} // namespace nv
