#include "readers/chrome/shared/UnreadTables.h"

#include "readers/sqlite/FurtherTables.h"

#include <fmt/format.h>

#include <algorithm>

namespace nv {

bool countUnread(ReadContext &ctx, EvidenceDatabase &database,
                 std::span<const std::string_view> tables, std::string_view procedure,
                 ReadResult &result) {
    return std::ranges::all_of(tables, [&](std::string_view table) {
        return FurtherTables(ctx, database, procedure, result)
            .each(table, {}, [&](std::int64_t, const Row &) {
                ++result.passedOver[fmt::format("rows of table {}, which is not read", table)];
            });
    });
}

} // namespace nv
