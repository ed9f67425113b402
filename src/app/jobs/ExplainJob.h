#pragma once

#include "app/jobs/RecordContent.h"
#include "views/explain/Explain.h"

namespace nv {

/// Where a record of the open project comes from. Nothing when there is no such row.
std::optional<RecordOrigin> explainInProject(Program &program, const RecordTools &tools, UrlId id,
                                             const std::string &field = {});

/// Of one field of it, without hashing the source file.
std::optional<ValueOrigin> explainValueInProject(Program &program, const RecordTools &tools,
                                                 UrlId id, const std::string &field);

/// Where a record stands in the evidence: in its source file, or where its address is found in the
/// files of a cache. Nothing when it isn't there: missingSource() says why.
std::optional<SourcePlace> sourceInProject(Program &program, const RecordTools &tools, UrlId id,
                                           const UrlRecord &record);

} // namespace nv
