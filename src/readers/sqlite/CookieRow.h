#pragma once

#include "readers/Reader.h"

#include <string>
#include <string_view>

namespace nv {

/// What the cookie tables of Firefox and Chrome have in common, as it is stored. Dates are UTC.
struct CookieRow {
    std::string host; ///< with its leading point, when it has one
    std::string name;
    std::string value;
    Date lastAccess;
    Date expiry; ///< none for a cookie of one session
};

/// The record of such a row, but for what the other date means. A cookie whose expiry lies before
/// now, by the examiner's clock, is "Expired".
UrlRecord cookieRecord(const ReadContext &ctx, const CookieRow &row, std::string_view cacheType,
                       Date fileCreated);

} // namespace nv
