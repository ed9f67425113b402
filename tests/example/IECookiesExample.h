#pragma once

#include <filesystem>

namespace nv::example {

/// Internet Explorer's cookies of the user whose folder this is: the index and the cookies' texts.
void writeIECookiesExample(const std::filesystem::path &userFolder);

} // namespace nv::example
