#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// The name that is asked for, by UTS 46 as the URL standard has it ("domain to ASCII", not
/// strict): "xn--bcher-kva.de" for "B\u00FCcher.de". Names in ASCII are put in small letters and
/// not looked into. Nothing for names that nobody could have asked for, and beyond 2,048 bytes for
/// such with other letters: their coding takes time that grows with the square. `domain` is UTF-8.
std::optional<std::string> asciiDomain(std::string_view domain);

/// The name with the letters that it was coded from, "b\u00FCcher.de" for "xn--bcher-kva.de".
/// Nothing for names that aren't coded, for those that can't be, and for long ones as above.
std::optional<std::string> readableDomain(std::string_view domain);

} // namespace nv
