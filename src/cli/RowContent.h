#pragma once

#include "cli/Exit.h"

#include <cstdint>
#include <functional>
#include <string>

namespace nv {
struct RecordContent;
}

namespace nv::cli {

class Session;

/// Opens the project for reading, hands the content of the row `number` to `show`, and closes it. A
/// row without content is told and ends with `Exit::damagedEvidence`. Throws UsageError when there
/// is no such row.
Exit withContent(Session &session, const std::string &project, std::int64_t number,
                 const std::function<Exit(const RecordContent &)> &show);

} // namespace nv::cli
