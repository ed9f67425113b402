#include "platform/qt/SheetPainter.h"

#include "platform/posix/SheetFile.h"
#include "platform/qt/ImageThumbnailer.h"
#include "platform/qt/QtText.h"

#include <QFile>
#include <QFontDatabase>
#include <QImage>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

namespace nv {

namespace {

// All in pixels.
constexpr int kMargin = 24;
constexpr int kGap = 10;
constexpr int kPadding = 8;
constexpr int kFrame = 3; ///< of a marked tile
constexpr int kTitleSize = 22;
constexpr int kTextSize = 13;
constexpr int kUrlLines = 3;
constexpr int kNarrowest = 4; ///< columns, so that the title has room
/// Tiles are nearly square: this gives a sheet about one and a half times as high as wide.
constexpr double kColumnsPerRow = 0.65;
constexpr std::size_t kMostCaptions = 8;
constexpr QColor kEdge(0xBB, 0xBB, 0xBB);
constexpr qint64 kLargestFile = qint64{16} << 20;

QFont fontOf(int size, QFont::Weight weight) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::GeneralFont);
    font.setPixelSize(size);
    font.setWeight(weight);
    return font;
}

/// Evidence decides nothing about the order of its letters.
QTextOption plainText() {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAnywhere);
    option.setTextDirection(Qt::LeftToRight);
    return option;
}

class Sheet {
  public:
    Sheet(const SheetFile &sheet, const DrawJob &job)
        : m_sheet(sheet), m_picture(job.width, job.height),
          m_source(pathToQt(job.source.parent_path())) {
        const auto count = std::max<std::size_t>(m_sheet.tiles.size(), 1);
        m_columns = std::max(
            kNarrowest,
            static_cast<int>(std::ceil(std::sqrt(static_cast<double>(count) * kColumnsPerRow))));
        m_rows = (static_cast<int>(count) + m_columns - 1) / m_columns;
        const int line = QFontMetrics(m_plain).lineSpacing();
        m_tile = {m_picture.width() + 2 * kPadding,
                  m_picture.height() + 3 * kPadding + line * (mostCaptions() - 1 + kUrlLines)};
        m_head = kMargin + QFontMetrics(m_title).lineSpacing() +
                 line * static_cast<int>(m_sheet.lines.size()) + kGap;
    }

    QImage drawn() {
        QImage image(2 * kMargin + m_columns * m_tile.width() + (m_columns - 1) * kGap,
                     m_head + m_rows * (m_tile.height() + kGap) - kGap + kMargin,
                     QImage::Format_RGB32);
        if (image.isNull())
            return image;
        image.fill(Qt::white);
        QPainter painter(&image);
        drawHead(painter, image.width() - 2 * kMargin);
        for (std::size_t i = 0; i < m_sheet.tiles.size(); ++i)
            drawTile(painter, i);
        return image;
    }

  private:
    int mostCaptions() const {
        std::size_t most = 1;
        for (const SheetFile::Tile &tile : m_sheet.tiles)
            most = std::max(most, tile.captions.size());
        return static_cast<int>(std::min(most, kMostCaptions));
    }

    void drawHead(QPainter &painter, int width) const {
        int top = kMargin;
        const auto line = [&](const QFont &font, const QString &text) {
            const QFontMetrics metrics(font);
            painter.setFont(font);
            painter.drawText(QRect(kMargin, top, width, metrics.lineSpacing()),
                             Qt::AlignLeft | Qt::TextSingleLine,
                             metrics.elidedText(text, Qt::ElideMiddle, width));
            top += metrics.lineSpacing();
        };
        painter.setPen(Qt::black);
        line(m_title, toQt(m_sheet.title));
        for (const std::string &text : m_sheet.lines)
            line(m_plain, toQt(text));
    }

    void drawTile(QPainter &painter, std::size_t place) const {
        const int at = static_cast<int>(place);
        const SheetFile::Tile &tile = m_sheet.tiles[place];
        const QRect frame(kMargin + at % m_columns * (m_tile.width() + kGap),
                          m_head + at / m_columns * (m_tile.height() + kGap), m_tile.width(),
                          m_tile.height());
        const int line = tile.isMarked ? kFrame : 1;
        painter.setPen(QPen(tile.isMarked ? QColor(0xB3, 0, 0) : kEdge, line));
        painter.drawRect(frame.adjusted(line / 2, line / 2, -1 - line / 2, -1 - line / 2));
        drawPicture(painter, {frame.topLeft() + QPoint(kPadding, kPadding), m_picture}, at);
        drawCaptions(painter,
                     {frame.left() + kPadding, frame.top() + 2 * kPadding + m_picture.height(),
                      m_picture.width(), 0},
                     tile.captions);
    }

    void drawPicture(QPainter &painter, const QRect &box, int place) const {
        Drawn ignored;
        const QImage picture =
            ImageThumbnailer().read(m_source + u'/' + QString::number(place), box.size(), ignored);
        if (picture.isNull()) {
            painter.setFont(m_plain);
            painter.setPen(Qt::darkGray);
            painter.drawText(box, Qt::AlignCenter, QStringLiteral("no picture"));
            return;
        }
        const QPoint corner(box.center() - picture.rect().center());
        painter.drawImage(corner, picture);
        painter.setPen(kEdge); // pages are white, as the sheet is
        painter.drawRect(QRect(corner, picture.size()).adjusted(-1, -1, 0, 0));
    }

    void drawCaptions(QPainter &painter, QRect box, const std::vector<std::string> &texts) const {
        painter.setPen(Qt::black);
        const std::size_t count = std::min(texts.size(), kMostCaptions);
        for (std::size_t i = 0; i < count; ++i) {
            const bool isLast = i + 1 == count;
            const QFont &font = i == 0 ? m_bold : m_plain;
            box.setTop(drawWrapped(painter, font, toQt(texts[i]), box, isLast ? kUrlLines : 1));
            painter.setPen(QColor(0x44, 0x44, 0x44));
        }
    }

    /// The place below the text. What is too long loses its middle: URLs differ at their ends.
    int drawWrapped(QPainter &painter, const QFont &font, const QString &text, const QRect &box,
                    int lines) const {
        const QFontMetrics metrics(font);
        // Lines break between letters, so each may lack most of one.
        const int room = lines * box.width() - (lines - 1) * metrics.maxWidth() / 2;
        QTextLayout layout(metrics.elidedText(text, Qt::ElideMiddle, room), font);
        layout.setTextOption(plainText());
        layout.beginLayout();
        int top = 0;
        for (int i = 0; i < lines; ++i) {
            QTextLine line = layout.createLine();
            if (!line.isValid())
                break;
            line.setLineWidth(box.width());
            line.setPosition({0, static_cast<qreal>(top)});
            top += metrics.lineSpacing();
        }
        layout.endLayout();
        layout.draw(&painter, box.topLeft());
        return box.top() + top;
    }

    const SheetFile &m_sheet;
    QSize m_picture; ///< the most that a tile's picture takes
    QString m_source;
    QFont m_title = fontOf(kTitleSize, QFont::Bold);
    QFont m_bold = fontOf(kTextSize, QFont::Bold);
    QFont m_plain = fontOf(kTextSize, QFont::Normal);
    QSize m_tile;
    int m_columns = 1;
    int m_rows = 1;
    int m_head = 0; ///< where the first row begins
};

} // namespace

Drawn SheetPainter::draw(const DrawJob &job) const {
    Drawn drawn;
    QFile file(pathToQt(job.source));
    std::optional<SheetFile> sheet;
    if (file.size() <= kLargestFile && file.open(QIODevice::ReadOnly))
        sheet = sheetOf(file.readAll().toStdString());
    if (!sheet) {
        drawn.failure = "The file is no contact sheet.";
        return drawn;
    }
    const QImage image = Sheet(*sheet, job).drawn();
    drawn.done = !image.isNull() && image.save(pathToQt(job.target), "PNG");
    if (!drawn.done)
        drawn.failure = "The contact sheet can't be written.";
    return drawn;
}

} // namespace nv
