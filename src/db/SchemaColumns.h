#pragma once

#include "db/Schema.h"

namespace nv::schema {

std::span<const Column> urlColumns();

} // namespace nv::schema
