#pragma once

#include "app/program/Program.h"

#include <string>
#include <string_view>

namespace nv {

/// What a zone means for local dates, in a sentence for people: its clock in winter and summer of
/// this year, or what a classic zone goes by. `key` is as in Zones.h; why it can't be had, where it
/// can't.
std::string zoneMeaning(Program &program, std::string_view key);

} // namespace nv
