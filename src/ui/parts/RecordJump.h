#pragma once

#include "ui/parts/Workbench.h"

namespace nv {

/// Makes the record the table's current one and brings the table to the front. When the query
/// doesn't show it, `unavailable` is told. A failure is logged under `procedure`, and told.
void jumpToRecord(Workbench &bench, UrlId id, const Message &unavailable, const char *procedure);

} // namespace nv
