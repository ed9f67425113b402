#include "app/jobs/TimelinePicture.h"

#include "base/Files.h"
#include "platform/posix/ChartFile.h"
#include "readers/Scratch.h"

#include <fmt/format.h>

#include <chrono>

namespace nv {

void drawTimeline(const TimeChart &chart, int width, int height, Drawing &drawing,
                  const std::filesystem::path &scratch, const std::filesystem::path &target) {
    constexpr std::chrono::seconds kLongest{60};
    const DrawJob job{DrawJob::Kind::chart, scratch / "~chart", scratch / "~chart.png", width,
                      height};
    writeWhole(job.source, textOf(chart));
    Drawn result;
    drawing.draw(
        std::span(&job, 1), kLongest,
        [&result](std::size_t, const Drawn &drawn) {
            result = drawn;
            return true;
        },
        [] { return true; });
    if (result.done)
        copyToScratch(job.target, target);
    scratch::drop(job.source);
    scratch::drop(job.target);
    if (!result.done)
        throw StorageFailure(fmt::format("the timeline can't be drawn. {}", result.failure));
}

} // namespace nv
