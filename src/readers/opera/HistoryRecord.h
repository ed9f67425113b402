#pragma once

#include "readers/Reader.h"

#include <string>
#include <string_view>

namespace nv {

inline constexpr std::string_view kOperaHistoryProcedure = "ParserClass.ParseOperaHistoryFile()";

/// What is noted of a record that holdsNoText() is true for.
inline constexpr std::string_view kOperaGarbage =
    "record with bytes that are no text, in which others may be lost";

/// Whether control characters stand in a line, as garbage has them.
bool holdsNoText(std::string_view line);

/// What is one for all records of a file.
struct OperaHistorySource {
    const ReadContext &ctx;
    Date fileCreated;
};

/// The record of a URL of the history, without its title.
UrlRecord operaHistoryRecord(const OperaHistorySource &source, const std::string &url, Date visited,
                             std::uint64_t offset);

} // namespace nv
