#include "platform/qt/ImageThumbnailer.h"

#include "platform/qt/QtText.h"

#include <QImage>
#include <QImageReader>
#include <QPainter>

#include <algorithm>
#include <array>

namespace nv {

namespace {

constexpr std::array kFormats = {"jpeg", "jpg", "png", "gif", "bmp", "ico", "webp", "tiff", "tif"};

bool isDrawn(const QByteArray &format) {
    return std::ranges::any_of(kFormats, [&](const char *known) { return format == known; });
}

std::int64_t pixelsOf(QSize size) {
    return std::int64_t{size.width()} * size.height();
}

/// At most `box`, in proportion; no side becomes 0.
QSize fitted(QSize picture, QSize box) {
    if (picture.width() <= box.width() && picture.height() <= box.height())
        return picture;
    return picture.scaled(box, Qt::KeepAspectRatio).expandedTo({1, 1});
}

/// Neither a bitmap nor a JPEG holds transparency.
QImage onWhite(const QImage &picture) {
    QImage flat(picture.size(), QImage::Format_RGB32);
    flat.fill(Qt::white);
    QPainter(&flat).drawImage(0, 0, picture);
    return flat;
}

Drawn failed(Drawn drawn, std::string why) {
    drawn.failure = std::move(why);
    return drawn;
}

} // namespace

ImageThumbnailer::ImageThumbnailer() {
    QImageReader::setAllocationLimit(kMostMegabytes);
}

Drawn ImageThumbnailer::draw(const DrawJob &job) const {
    Drawn drawn;
    QImageReader reader(pathToQt(job.source));
    reader.setDecideFormatFromContent(true);
    // Before anything else is asked: afterwards the reader no longer looks at the content.
    if (!isDrawn(reader.format()))
        return failed(drawn, "The file is no picture that can be drawn.");
    const QSize box(job.width, job.height);
    const QSize size = reader.size();
    if (size.isValid()) {
        drawn.pictureWidth = size.width();
        drawn.pictureHeight = size.height();
        if (pixelsOf(size) > kMostPixels)
            return failed(drawn, "The picture has too many pixels to be drawn.");
        // The decoder then makes the small picture itself, which takes half the time.
        reader.setScaledSize(fitted(size, box));
    }
    const QImage picture = reader.read();
    if (picture.isNull())
        return failed(drawn, fromQt(reader.errorString()));
    if (!size.isValid()) {
        drawn.pictureWidth = picture.width();
        drawn.pictureHeight = picture.height();
    }
    const QSize target = fitted(picture.size(), box);
    const QImage small = target == picture.size() ? picture
                                                  : picture.scaled(target, Qt::IgnoreAspectRatio,
                                                                   Qt::SmoothTransformation);
    const char *form = job.target.extension() == ".jpg" ? "JPEG" : "BMP";
    if (!onWhite(small).save(pathToQt(job.target), form))
        return failed(drawn, "The thumbnail can't be written.");
    drawn.done = true;
    return drawn;
}

} // namespace nv
