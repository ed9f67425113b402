#pragma once

#include <string>
#include <string_view>

namespace nv {

/// How the policy of a page names the one style or script that it lets be: "'sha256-...'".
std::string policyHash(std::string_view text);

} // namespace nv
