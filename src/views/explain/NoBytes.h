#pragma once

#include "views/explain/Explain.h"

#include <string>

namespace nv {

/// Why a field of a record has no bytes that could be shown, as far as that can be told without
/// reading the evidence; empty where there may be some. Throws what the database says.
std::string whyNoBytes(SQLite::Database &project, UrlId id, const std::string &field);

/// The same of a value that was looked for and has no `offset`.
std::string whyNoBytes(const ValueOrigin &value);

} // namespace nv
