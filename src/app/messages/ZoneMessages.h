#pragma once

#include "base/Examiner.h"

#include <string_view>

namespace nv::messages {

// What is told of exact time zones.

Message exactZoneNotSet(std::string_view reason);
Message localDatesNotStored(std::string_view reason);

} // namespace nv::messages
