#include "readers/chrome/shared/MetaTable.h"

#include "base/Trap.h"
#include "readers/sqlite/TableCursor.h"

#include <array>

namespace nv {

namespace {

std::optional<std::int64_t> versionIn(EvidenceDatabase &database) {
    constexpr std::array<std::string_view, 2> kColumns = {"key", "value"};
    constexpr std::uint64_t kMostRows = 1000; // browsers have some ten
    if (!database.hasTable("meta"))
        return std::nullopt;
    TableCursor cursor(database, "meta", kColumns);
    while (cursor.given() < kMostRows && cursor.next()) {
        if (!cursor.isReadable())
            continue;
        const Row row = cursor.row();
        if (row.text(0) == "version")
            return row.number(1);
    }
    return std::nullopt;
}

} // namespace

std::optional<std::int64_t> schemaVersion(const ReadContext &ctx, EvidenceDatabase &database) {
    return trapped(ctx.log, Severity::Low, "ParserClass.ParseChromiumMeta()", kNotSerious,
                   std::optional<std::int64_t>(), [&] { return versionIn(database); });
}

} // namespace nv
