#pragma once

#include "readers/SourceOption.h"

namespace nv {

// The wizard's boxes for Firefox and its relatives.

inline constexpr SourceOption kFirefoxCacheOption = {"chkCacheFirefox", RecordGroup::cache,
                                                     &families::firefox, "", 1};
inline constexpr SourceOption kFirefoxHistoryOption = {"chkHistoryFirefox", RecordGroup::history,
                                                       &families::firefox, "", 8};
inline constexpr SourceOption kFirefoxCookiesOption = {"chkCookiesFirefox", RecordGroup::cookies,
                                                       &families::firefox, "", 11};
inline constexpr SourceOption kFirefoxBookmarksOption = {
    "chkBookmarksFirefox", RecordGroup::bookmarks, &families::firefox};
/// Forms, logins, permissions, stores.
inline constexpr SourceOption kFirefoxOtherOption = {"chkOtherFirefox", RecordGroup::other,
                                                     &families::firefox};

} // namespace nv
