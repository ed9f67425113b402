#include "platform/qt/Icons.h"

#include "platform/qt/QtText.h"

#include <QFileInfo>
#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPalette>
#include <QPixmapCache>
#include <QSvgRenderer>

// Has to stand outside of any namespace: the resources of a static library are linked only on call.
static void loadImages() {
    Q_INIT_RESOURCE(images);
}

namespace nv {

namespace {

/// Draws the picture at the size that is asked for, in the palette of that moment.
class SvgEngine final : public QIconEngine {
  public:
    explicit SvgEngine(QString file) : m_file(std::move(file)) {}

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State) override {
        QFile file(m_file);
        if (!file.open(QIODevice::ReadOnly))
            return;
        QSvgRenderer renderer(file.readAll().replace("currentColor", inkOf(mode).toLatin1()));
        painter->save();
        painter->setOpacity(mode == QIcon::Disabled ? 0.45 : 1.0);
        renderer.render(painter, rect);
        painter->restore();
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override {
        const QString key =
            QStringLiteral("%1 %2x%3 %4 %5")
                .arg(m_file, QString::number(size.width()), QString::number(size.height()),
                     inkOf(mode), QString::number(mode));
        QPixmap result;
        if (QPixmapCache::find(key, &result))
            return result;
        result = QPixmap(size);
        result.fill(Qt::transparent);
        QPainter painter(&result);
        paint(&painter, QRect(QPoint(), size), mode, state);
        painter.end();
        QPixmapCache::insert(key, result);
        return result;
    }

    QIconEngine *clone() const override { return new SvgEngine(m_file); }
    bool isNull() override { return false; }

  private:
    static QString inkOf(QIcon::Mode mode) {
        const auto role =
            mode == QIcon::Selected ? QPalette::HighlightedText : QPalette::WindowText;
        return QGuiApplication::palette().color(QPalette::Active, role).name();
    }

    QString m_file;
};

} // namespace

QIcon icon(std::string_view name) {
    loadImages();
    const QString stem = QFileInfo(toQt(name).replace(u'\\', u'/')).completeBaseName();
    const QString file = QStringLiteral(":/images/%1.svg").arg(stem);
    return QFileInfo::exists(file) ? QIcon(new SvgEngine(file)) : QIcon();
}

} // namespace nv
