#pragma once

#include <string>
#include <string_view>

namespace nv {

/// The address in the form in which people pass on those that nobody must follow by a click:
/// "hxxp://www.example[.]com/a.html". The scheme's "http" and "ftp" become "hxxp" and "fxp", other
/// schemes get "[:]", and the points of the host "[.]"; all else stays, so that the address can be
/// had back.
std::string defangedAddress(std::string_view address);

} // namespace nv
