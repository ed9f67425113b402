#include "readers/sqlite/SchemaVersion.h"

#include "base/Trap.h"
#include "readers/sqlite/KeptMessage.h"

#include <fmt/format.h>

namespace nv {

std::optional<std::int64_t> userVersion(EvidenceDatabase &database) {
    KeptMessage unheard;
    return trapped(unheard, Severity::Low, "", "", std::optional<std::int64_t>(), [&] {
        SQLite::Statement query = database.prepare("PRAGMA user_version");
        database.expectOneRow();
        const std::int64_t version = query.executeStep() ? query.getColumn(0).getInt64() : 0;
        return version > 0 ? std::optional(version) : std::nullopt;
    });
}

void noteSchemaVersion(ReadContext &ctx, std::string_view name,
                       std::optional<std::int64_t> version) {
    if (version && !ctx.classicOnly && ctx.file.origin.browserVersion.empty())
        ctx.file.origin.browserVersion = fmt::format("{} {}", name, *version);
}

} // namespace nv
