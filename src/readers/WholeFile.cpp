#include "readers/WholeFile.h"

#include "base/Files.h"
#include "base/Trap.h"

namespace nv {

ReadResult unreadable(const ReadContext &ctx) {
    return {ReadState::failed, "could not be read: " + textOf(ctx.file.FullPath), 0, {}};
}

ReadResult readWholeFile(ReadContext &ctx, TaskHeading heading, std::string_view procedure,
                         const std::function<ReadResult(ByteView)> &read) {
    heading.detail = textOf(ctx.file.FullPath);
    ctx.task.describe(heading);
    return trapped(ctx.log, Severity::Warning, procedure, kContactSupport, unreadable(ctx), [&] {
        const Bytes bytes = ctx.evidence.whole(ctx.file.FullPath);
        return read(ByteView(bytes));
    });
}

} // namespace nv
