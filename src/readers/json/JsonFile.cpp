#include "readers/json/JsonFile.h"

#include "base/Files.h"
#include "readers/Limits.h"
#include "readers/WholeFile.h"

#include <fmt/format.h>

#include <utility>

namespace nv {

namespace {

void logReason(ReadContext &ctx, std::string_view procedure, ReadResult &result) {
    result.reason = fmt::format("{}: {}", textOf(ctx.file.fullPath), result.reason);
    ctx.log.write(
        {result.reason, std::string(procedure), Severity::Serious, std::string(kContactSupport)});
}

} // namespace

ReadResult jsonResult(const JsonEnd &end, bool foundAnything, ReadContext &ctx,
                      std::string_view procedure) {
    ReadResult result;
    if (end.isCancelled)
        result.state = ReadState::cancelled;
    else if (result.reason = damageText(end); !result.reason.empty()) {
        result.state = foundAnything || end.isWhole ? ReadState::cutShort : ReadState::failed;
        result.notReached = end.tooDeep;
        logReason(ctx, procedure, result);
    }
    if (end.noUtf8 > 0)
        result.noted["byte that is no UTF-8, shown as \"?\""] = end.noUtf8;
    return result;
}

ReadResult readJsonFile(ReadContext &ctx, TaskHeading heading, std::string_view procedure,
                        const std::function<ReadResult(ByteView)> &read) {
    const std::uint64_t size = ctx.evidence.factsOf(ctx.file.fullPath).size;
    if (size <= limits::kJsonBytes)
        return readWholeFile(ctx, std::move(heading), procedure, read);
    ReadResult result{
        ReadState::failed,
        fmt::format("{} bytes, where no more than {} were expected", size, limits::kJsonBytes),
        0,
        {}};
    logReason(ctx, procedure, result);
    return result;
}

} // namespace nv
