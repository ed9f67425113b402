#pragma once

#include <string>

namespace nv {
struct ImportSummary;
}

namespace nv::cli {

/// The summary of an import for a program. Bytes that are no UTF-8 are replaced.
std::string importJson(const ImportSummary &summary);

} // namespace nv::cli
