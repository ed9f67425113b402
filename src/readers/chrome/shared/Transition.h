#pragma once

#include <cstdint>
#include <string>

namespace nv {

/// How the browser came to a page, in words with all that qualifies it: "typed, from the address
/// bar, chain start, chain end". `stored` is signed in SQLite, and 32 bits of it count. Empty for
/// what no 32 bits hold.
std::string transitionText(std::int64_t stored);

/// The same in short, for the column Status: "link", "typed", "link, server redirect".
std::string transitionStatus(std::int64_t stored);

/// The address was typed, and not chosen, clicked or searched for.
bool isTypedTransition(std::int64_t stored);

} // namespace nv
