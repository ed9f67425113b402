#pragma once

#include "cli/ContactSheet.h"
#include "platform/Drawing.h"

#include <filesystem>

namespace nv::cli {

/// Draws a gallery page as one picture, a PNG at `target`. In `scratch`, a folder of the program's
/// own, its thumbnails lie meanwhile. Throws StorageFailure when it can't be drawn, FileFailure
/// when it can't be written.
void drawContactSheet(const ContactSheet &sheet, Drawing &drawing,
                      const std::filesystem::path &scratch, const std::filesystem::path &target);

} // namespace nv::cli
