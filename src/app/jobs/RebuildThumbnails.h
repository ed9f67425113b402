#pragma once

#include "app/jobs/RebuildJob.h"
#include "app/jobs/ThumbnailJob.h"
#include "views/gallery/PageThumbnails.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <span>
#include <vector>

namespace nv {

/// Draws the thumbnails of rebuilt pages anew, some ten in one run: starting to draw takes longer
/// than drawing one. Without the setting `redrawThumbIfPageRebuilt` all of it does nothing.
class RebuildThumbnails {
  public:
    RebuildThumbnails(Program &program, RecordTools &tools) : m_program(program), m_tools(tools) {}

    bool isWanted() const { return m_program.state.redrawThumbIfPageRebuilt; }
    /// How many pages are rebuilt before they are drawn.
    std::size_t pagesAtOnce() const;
    /// What part of the progress rebuilding takes, 0 to 1; drawing has the rest.
    double shareOfRebuilding() const { return isWanted() ? 0.5 : 1; }

    /// Notes a page whose rebuild folder lies there. A record that is a picture is drawn at once,
    /// from its cached content, into that folder; its tile is left as it is.
    void add(UrlRecord &page);
    /// Draws the pages noted and says in `outcomes` what became of each. A drawing that fails costs
    /// its thumbnail only.
    void draw(std::span<RebuiltPage> outcomes, TaskMonitor &task);

  private:
    const ThumbnailContext &context();
    void drawPicture(UrlRecord &record, const std::filesystem::path &destination);

    Program &m_program;
    RecordTools &m_tools;
    std::optional<ThumbnailTools> m_drawing; ///< once there is something to draw
    std::vector<PageDrawing> m_pages;
};

} // namespace nv
