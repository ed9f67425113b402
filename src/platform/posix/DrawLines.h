#pragma once

#include "platform/Drawing.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace nv {

// What the drawing program is told and tells: one line of JSON each, without the line break. A job:
//   {"kind":"page","source":"...","target":"...","width":320,"height":240,"timeout":30}
// In paths each byte is one character, since a name on disk may be no UTF-8. Of each job in turn:
//   {"job":0,"done":true,"failure":"","pictureWidth":640,"pictureHeight":480,"refused":0}

/// The program's first line: it has started, and what ends it now comes from a job.
inline constexpr std::string_view kDrawReady = R"({"ready":true})";
/// Its last line, when all jobs are done.
inline constexpr std::string_view kDrawEnd = R"({"end":true})";

struct TimedJob {
    DrawJob job;
    std::chrono::seconds timeout{0};
};

struct DrawnJob {
    std::size_t job = 0; ///< 0-based place in the job file
    Drawn drawn;
};

std::string lineOf(const TimedJob &job);
std::string lineOf(const DrawnJob &drawn);
/// Nothing when the line is no such line.
std::optional<TimedJob> timedJobOf(std::string_view line);
std::optional<DrawnJob> drawnJobOf(std::string_view line);

} // namespace nv
