#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace nv {

// Records have addresses with escapes undone, for people to read. What an address says can only be
// told from the one with its escapes: in "q=AT%26T" the coded sign is a letter of the value.

/// The part of `stored`, the text as found, that `address` was made of by undoing its escapes; a
/// view into it. Nothing where no part gives it: then nobody can tell which signs were coded.
std::optional<std::string_view> rawAddressOf(std::string_view address, std::string_view stored);

/// What an address consists of, as it stands: odd ones of evidence count too.
struct RoughAddress {
    std::string_view host;
    std::string_view path;
    std::string_view query;    ///< behind "?"
    std::string_view fragment; ///< behind "#"
};

/// Nothing for a text that has no scheme and "://" behind it.
std::optional<RoughAddress> roughAddress(std::string_view text);

/// Takes the first of "a=1&b=2" off and gives it, escapes and all. ";" parts only such that have a
/// name and "=", as some sites write them; elsewhere it is a letter of the value.
std::string_view takeParameter(std::string_view &parameters);

/// The text of a name or value: escapes undone, and "+" a blank.
std::string parameterText(std::string_view coded);

} // namespace nv
