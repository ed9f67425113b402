#include "readers/sqlite/DatabaseBeside.h"

#include "base/Files.h"
#include "base/Trap.h"
#include "readers/EvidenceGaps.h"
#include "readers/sqlite/EvidenceCopy.h"
#include "readers/sqlite/KeptMessage.h"

#include <fmt/format.h>

namespace nv {

Beside readBeside(ReadContext &ctx, std::string_view name, std::string_view procedure,
                  const std::function<void(EvidenceDatabase &)> &body) {
    const auto file = ctx.evidence.find(ctx.file.fullPath.parent_path(), name);
    if (!file)
        return Beside::notThere;
    KeptMessage failure;
    trapped(failure, Severity::Low, procedure, kNotSerious, [&] {
        tellingGaps(ctx.log, [&] {
            const EvidenceCopy copy(ctx.evidence, *file, ctx.scratch, "~beside.sqlite");
            EvidenceDatabase database(copy.path(), copy.size());
            body(database);
        });
    });
    if (failure.text.empty())
        return Beside::read;
    ctx.log.write({fmt::format("{}: {}", textOf(*file), failure.text), std::string(procedure),
                   Severity::Low, std::string(kNotSerious)});
    return Beside::notReadable;
}

} // namespace nv
