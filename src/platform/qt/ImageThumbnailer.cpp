#include "platform/qt/ImageThumbnailer.h"

#include "platform/qt/QtText.h"

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

} // namespace

ImageThumbnailer::ImageThumbnailer() {
    QImageReader::setAllocationLimit(kMostMegabytes);
}

QImage ImageThumbnailer::read(const QString &file, QSize box, Drawn &drawn) const {
    QImageReader reader(file);
    reader.setDecideFormatFromContent(true);
    // Before anything else is asked: afterwards the reader no longer looks at the content.
    if (!isDrawn(reader.format())) {
        drawn.failure = "The file is no picture that can be drawn.";
        return {};
    }
    reader.setAutoTransform(true);
    const QSize size = reader.size(); // as stored
    if (size.isValid()) {
        drawn.pictureWidth = size.width();
        drawn.pictureHeight = size.height();
        if (pixelsOf(size) > kMostPixels) {
            drawn.failure = "The picture has too many pixels to be drawn.";
            return {};
        }
        // The decoder then makes the small picture itself, which takes half the time. It is turned
        // afterwards.
        const bool isOnItsSide = reader.transformation() & QImageIOHandler::TransformationRotate90;
        reader.setScaledSize(fitted(size, isOnItsSide ? box.transposed() : box));
    }
    const QImage picture = reader.read();
    if (picture.isNull()) {
        drawn.failure = fromQt(reader.errorString());
        return {};
    }
    if (!size.isValid()) {
        drawn.pictureWidth = picture.width();
        drawn.pictureHeight = picture.height();
    }
    const QSize target = fitted(picture.size(), box);
    return onWhite(target == picture.size()
                       ? picture
                       : picture.scaled(target, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

Drawn ImageThumbnailer::draw(const DrawJob &job) const {
    Drawn drawn;
    const QImage small = read(pathToQt(job.source), {job.width, job.height}, drawn);
    if (small.isNull())
        return drawn;
    const char *form = job.target.extension() == ".jpg" ? "JPEG" : "BMP";
    drawn.done = small.save(pathToQt(job.target), form);
    if (!drawn.done)
        drawn.failure = kTargetNotWritten;
    return drawn;
}

} // namespace nv
