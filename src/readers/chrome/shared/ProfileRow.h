#pragma once

#include "readers/Reader.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace nv {

/// A page in one of the small databases of a profile, which is no visit.
struct ProfileRow {
    std::string_view table;
    std::int64_t rowId = 0;
    std::string url;
    std::string title;
};

/// Its record, with the place it lies at among the facts, and without Action and dates.
UrlRecord profileRecord(const ReadContext &ctx, const ProfileRow &row, std::string_view cacheType,
                        Date fileCreated);

} // namespace nv
