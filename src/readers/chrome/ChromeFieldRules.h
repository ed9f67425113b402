#pragma once

#include "readers/FieldRules.h"

#include <span>

namespace nv {

/// Of the kinds of this folder that are read from SQLite files, but for caches.
std::span<const KindRules> chromeFieldRules();

} // namespace nv
