#pragma once

#include "rebuild/RebuildContext.h"

namespace nv {

/// `ctx` with its progress shown as that of `task`: the one place that names each of its fields.
inline RebuildContext watchedBy(const RebuildContext &ctx, TaskMonitor &task) {
    return {ctx.project, ctx.records, ctx.evidence, ctx.tempFolderPath,
            ctx.log,     task,        ctx.settings, ctx.partFetched};
}

} // namespace nv
