#pragma once

#include <string>
#include <string_view>

namespace nv {

/// The name of a part beside a rebuilt page: seven digits, and an extension.
bool isPart(std::string_view address);

/// A page or a style whose references can't lead out of its folder. A file's address has no site:
/// "/a.gif" would be fetched from the disk of whoever opens the report, and "../a.gif" from beside
/// it; "//host/a" and "\\host\a" name file servers. What a policy for the web refuses stays.
std::string withoutWaysOut(std::string_view text);

} // namespace nv
