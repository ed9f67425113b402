#pragma once

#include "db/schema/Schema.h"

namespace nv::schema {

std::span<const Column> urlColumns();

} // namespace nv::schema
