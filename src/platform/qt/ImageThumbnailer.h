#pragma once

#include "platform/Drawing.h"

#include <QImage>

#include <cstdint>

namespace nv {

/// Draws picture files small. Only the formats of browsers are read: a vector picture could ask for
/// other files.
class ImageThumbnailer {
  public:
    /// A picture of more pixels is measured but not drawn.
    static constexpr std::int64_t kMostPixels = 100'000'000;
    /// What reading one picture may take, in MB.
    static constexpr int kMostMegabytes = 512;

    ImageThumbnailer();

    /// Writes a bitmap of at most the job's width by height, in proportion and never larger than
    /// the picture. What is clear in the picture becomes white. Of several frames the first is
    /// drawn; a picture that is cut short is drawn as far as its format allows. A photograph is
    /// turned as its camera says; its width and height are told as they are stored.
    Drawn draw(const DrawJob &job) const;
    /// The small picture itself; null when it can't be drawn. Measures it into `drawn`, which says
    /// why not.
    QImage read(const QString &file, QSize box, Drawn &drawn) const;
};

} // namespace nv
