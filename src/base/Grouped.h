#pragma once

#include <cstdint>
#include <string>

namespace nv {

/// "12,345": for people.
std::string grouped(std::uint64_t number);

} // namespace nv
