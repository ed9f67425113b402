#pragma once

#include "base/Examiner.h"

#include <cstdint>
#include <string_view>

namespace nv::messages {

/// `rows` have the tag.
Message deleteTag(std::string_view name, std::int64_t rows);

} // namespace nv::messages
