#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace nv {

// The seam to the drawing of pictures and pages, which hostile bytes can crash or hold up: it is
// done by a program of its own.

/// One picture or page of evidence that is to be drawn small, a sheet of such pictures, or a chart.
struct DrawJob {
    enum class Kind {
        picture, ///< `target` becomes a bitmap, or a JPEG when it is named *.jpg, of at most
                 ///< `width` by `height`, in proportion
        page,    ///< `target` becomes a JPEG of `width` by `height`; `source` is an HTML file named
                 ///< *.htm or *.html, and only files of its own folder and below it are shown
        sheet,   ///< `target` becomes a PNG; `source` is a SheetFile with its pictures beside it,
                 ///< each shown in a box of `width` by `height`
        chart,   ///< `target` becomes a PNG of `width` by `height`; `source` is a TimeChart as text
    };
    Kind kind = Kind::picture;
    std::filesystem::path source;
    std::filesystem::path target;
    int width = 0; ///< pixels
    int height = 0;
};

struct Drawn {
    bool done = false;
    std::string failure; ///< why not
    /// Of the source, in pixels; 0 for a page and for a picture that can't be measured.
    int pictureWidth = 0;
    int pictureHeight = 0;
    /// What the page asked for and didn't get: the network, and files outside of its folder.
    std::uint64_t refusedRequests = 0;
};

/// The failure of a job whose picture was drawn and couldn't be written.
inline constexpr std::string_view kTargetNotWritten = "The drawing can't be written.";

class Drawing {
  public:
    virtual ~Drawing() = default;

    /// Draws the jobs in their order and hands on what became of each, until `take` or `goOn`,
    /// which is asked several times a second, says false. A job that fails, hangs beyond `timeout`
    /// or crashes the drawing costs itself only.
    virtual void draw(std::span<const DrawJob> jobs, std::chrono::seconds timeout,
                      const std::function<bool(std::size_t job, const Drawn &)> &take,
                      const std::function<bool()> &goOn) = 0;
};

} // namespace nv
