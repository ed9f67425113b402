#include "readers/chrome/SchemaVersion.h"

#include "base/Trap.h"
#include "readers/sqlite/KeptMessage.h"
#include "readers/sqlite/TableCursor.h"

#include <fmt/format.h>

#include <array>

namespace nv {

void noteSchemaVersion(ReadContext &ctx, EvidenceDatabase &database, std::string_view name) {
    constexpr std::array<std::string_view, 2> kColumns = {"key", "value"};
    std::string &version = ctx.file.origin.browserVersion;
    if (!version.empty())
        return;
    KeptMessage unknown; // a file that doesn't tell it is as good as any
    trapped(unknown, Severity::Low, "", "", [&] {
        TableCursor cursor(database, "meta", kColumns);
        while (version.empty() && cursor.next())
            if (cursor.isReadable()) {
                const Row row = cursor.row();
                const auto number = row.number(1);
                if (number && row.text(0) == "version")
                    version = fmt::format("{} {}", name, *number);
            }
    });
}

} // namespace nv
