#pragma once

#include "app/jobs/RecordTools.h"
#include "views/explain/Explain.h"

namespace nv {

/// Where a record of the open project comes from. Nothing when there is no such row.
std::optional<RecordOrigin> explainInProject(Program &program, const RecordTools &tools, UrlId id,
                                             const std::string &field = {});

/// Of one field of it, without hashing the source file.
std::optional<ValueOrigin> explainValueInProject(Program &program, const RecordTools &tools,
                                                 UrlId id, const std::string &field);

} // namespace nv
