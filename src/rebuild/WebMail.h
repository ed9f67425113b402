#pragma once

#include "base/Text.h"

#include <string_view>

namespace nv {

// One web mail keeps the parts of its pages on a second host, which is searched with the first.

inline constexpr std::string_view kWebMailParts = "mail.yimg.com";

inline bool isWebMail(std::string_view host) {
    return containsNoCase(host, "mail.yahoo.com");
}

} // namespace nv
