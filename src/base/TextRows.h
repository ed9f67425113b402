#pragma once

#include "base/Cell.h"

#include <span>
#include <string>
#include <string_view>

namespace nv {

// Rows as lines of text for other programs. Nothing that stands in a cell can break the form.

/// A line of RFC 4180 with its end, CR LF.
std::string csvLine(std::span<const std::string> cells);

/// A JSON object on a line of its own: the n-th cell under the n-th name, then `further` members,
/// which are JSON already ("\"a\":1,\"b\":[2]"). Bytes that are no UTF-8 are replaced.
std::string jsonLine(std::span<const std::string> names, std::span<const Cell> cells,
                     std::string_view further = {});

} // namespace nv
