#pragma once

#include "readers/Reader.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

/// What the tables of pages of Firefox and Chrome have in common, as it is stored.
struct HistoryRow {
    std::int64_t id = 0;
    std::string url;
    bool hidden = false;
    std::optional<std::int64_t> visitCount; ///< nothing when the table doesn't tell it
};

/// The record of such a row, without its dates and its title.
URLClass historyRecord(const ReadContext &ctx, const HistoryRow &row, std::string_view cacheType,
                       Date fileCreated);

/// `URL` and what is read out of it: the file's name, host, protocol, parameters and hash.
void setUrl(URLClass &record, std::string url);

} // namespace nv
