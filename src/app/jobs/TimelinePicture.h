#pragma once

#include "platform/Drawing.h"
#include "platform/TimeChart.h"

#include <filesystem>

namespace nv {

/// Draws the chart as a PNG at `target`, in pixels. In `scratch`, a folder of the program's own,
/// its parts lie meanwhile. Throws StorageFailure when it can't be drawn or written.
void drawTimeline(const TimeChart &chart, int width, int height, Drawing &drawing,
                  const std::filesystem::path &scratch, const std::filesystem::path &target);

} // namespace nv
