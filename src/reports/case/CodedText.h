#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace nv {

/// What the runs of hexadecimal digits and of base64 in a text stand for, whatever stands around
/// them: of base64 from each of four letters on, since nobody tells where a run begins.
std::vector<std::string> codedBytes(std::string_view text);

} // namespace nv
