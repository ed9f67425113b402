#pragma once

#include "base/Clock.h"
#include "db/URLClass.h"
#include "rebuild/RebuildContext.h"

#include <string>
#include <string_view>

namespace nv {

// What a rebuild keeps in the page's record and row. Both throw what the database says.

/// The form of `RebuiltDateTime`.
inline constexpr std::string_view kRebuiltTimeFormat = "dd-mm-yyyy Hh:Nn:Ss";

/// The page in `RunTimeRebuiltFilePath`, whose text is `RebuiltSourceCode`, is the record's rebuild
/// from now on. `RebuiltDateTime` is a text in the machine's local time.
void storeRebuilt(URLClass &page, const RebuildContext &ctx, const Clock &clock);

/// `log` is the page's substitution log from now on.
void storeSubstitutions(URLClass &page, std::string log, const RebuildContext &ctx);

} // namespace nv
