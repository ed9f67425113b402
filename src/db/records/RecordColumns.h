#pragma once

#include "db/records/UrlRecord.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace nv {

/// A column of table `URLs` and the member that it holds.
struct RecordColumn {
    using Member =
        std::variant<std::string UrlRecord::*, Date UrlRecord::*, bool UrlRecord::*,
                     std::int64_t UrlRecord::*, Bytes UrlRecord::*, SourceFileId UrlRecord::*>;
    std::string_view name;
    Member member;
};

/// All columns but the key, in the order of the schema.
std::span<const RecordColumn> recordColumns();

} // namespace nv
