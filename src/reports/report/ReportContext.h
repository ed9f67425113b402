#pragma once

#include "base/Clock.h"
#include "platform/Drawing.h"
#include "rebuild/RebuildContext.h"
#include "time/ShownDate.h"

#include <chrono>
#include <filesystem>
#include <string>

namespace nv {

struct ReportSettings {
    std::filesystem::path images; ///< the program's own pictures
    DateSettings dates;
    std::string version; ///< of the program
    int reportThumbnailWidth = 200;
    std::chrono::seconds thumbnailRedrawTimeout{5};
};

/// All that making a report needs. Everything must outlive it.
struct ReportContext {
    RebuildContext rebuild; ///< project, records, evidence, scratch folder, log and task
    const TimeZone &gmtZone;
    const Clock &clock;
    Drawing *drawing = nullptr; ///< none where nothing can be drawn
    ReportSettings settings;
};

} // namespace nv
