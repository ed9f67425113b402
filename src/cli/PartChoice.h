#pragma once

#include "app/program/Program.h"
#include "db/schema/Ids.h"

#include <string_view>

namespace nv::cli {

/// Keeps what the examiner says of a reference of the page: "3=42" is the row 42 for the third of
/// its audit, "https://host/a.png=none" an empty place for an address, "3=auto" no choice any more.
/// Throws UsageError for a text that says nothing, a reference that the page hasn't, and a row that
/// is none or has no content.
void choosePart(Program &program, UrlId page, std::string_view text);

} // namespace nv::cli
