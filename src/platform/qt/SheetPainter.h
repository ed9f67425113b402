#pragma once

#include "platform/Drawing.h"

namespace nv {

/// Draws contact sheets: a grid of small pictures with their captions. Needs the application
/// object.
class SheetPainter {
  public:
    /// Writes a PNG of as many columns as give about the shape of a sheet of paper. A tile whose
    /// picture can't be drawn says so.
    Drawn draw(const DrawJob &job) const;
};

} // namespace nv
