#pragma once

#include "platform/Drawing.h"
#include "platform/posix/DrawService.h"

#include <filesystem>
#include <memory>
#include <string>

namespace nv {

/// What draws pictures and pages in this build. `scratch` is an existing folder of the program's
/// own. Throws StorageFailure when it can't draw.
std::unique_ptr<Drawing> makeDrawing(const std::filesystem::path &scratch);

/// The same for one after another, while the program goes on.
std::unique_ptr<DrawService> makeDrawService(const std::filesystem::path &scratch,
                                             std::chrono::seconds timeout, DrawService::Done done);

/// Whether this build can draw.
bool canDraw();
/// What is missing when it can't, and where it was looked for.
std::string whyNoDrawing();

} // namespace nv
