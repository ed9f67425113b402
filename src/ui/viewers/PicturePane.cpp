#include "ui/viewers/PicturePane.h"

#include <QBoxLayout>
#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace nv {

namespace {

constexpr double kStep = 1.25;
constexpr double kSmallest = 0.05;
constexpr double kLargest = 16;
constexpr int kMostShown = 12'000; ///< pixels a side of what is scaled for the screen

QScrollArea *newArea() {
    auto *area = new QScrollArea;
    area->setObjectName(QStringLiteral("pictureArea"));
    area->setAlignment(Qt::AlignCenter);
    area->setFrameShape(QFrame::NoFrame);
    return area;
}

} // namespace

PicturePane::PicturePane(QWidget *parent)
    : ViewerFrame("PicturePane", *newArea(), parent),
      m_area(findChild<QScrollArea *>(QStringLiteral("pictureArea"))) {
    m_picture = newLabel("labPicture");
    m_picture->setAccessibleName(tr("Cached picture"));
    m_picture->setScaledContents(true);
    m_area->setWidget(m_picture);
    m_area->viewport()->installEventFilter(this);
    m_fullSize = new QCheckBox(tr("Full si&ze"));
    m_fullSize->setObjectName(QStringLiteral("chkNoResizePicture"));
    m_fullSize->setToolTip(tr("Show pictures in their own size; otherwise they fit the pane"));
    auto *smaller = new QPushButton(tr("Smaller"));
    smaller->setObjectName(QStringLiteral("btnZoomOut"));
    auto *larger = new QPushButton(tr("Larger"));
    larger->setObjectName(QStringLiteral("btnZoomIn"));
    for (QPushButton *button : {smaller, larger})
        button->setToolTip(tr("The mouse wheel over the picture does the same"));
    m_facts = newLabel("labPictureSize");
    bar().addWidget(m_fullSize);
    bar().addWidget(smaller);
    bar().addWidget(larger);
    bar().addWidget(m_facts, 1);
    connect(m_fullSize, &QCheckBox::toggled, this, [this](bool noResize) {
        m_zoomedByHand = false;
        refit();
        emit noResizeChanged(noResize);
    });
    const auto zoomBy = [this](double factor) {
        m_zoomedByHand = true;
        setZoom(m_zoom * factor);
    };
    connect(smaller, &QPushButton::clicked, this, [zoomBy] { zoomBy(1 / kStep); });
    connect(larger, &QPushButton::clicked, this, [zoomBy] { zoomBy(kStep); });
}

void PicturePane::showPicture(const QImage &drawn, QSize size) {
    m_image = drawn;
    m_size = size;
    m_zoomedByHand = false;
    m_picture->setPixmap(QPixmap::fromImage(m_image));
    showContent();
    refit();
    const bool reduced = m_image.width() < m_size.width() || m_image.height() < m_size.height();
    showNotice(reduced ? tr("The picture is large: it is drawn from %L1 × %L2 pixels of it.")
                             .arg(m_image.width())
                             .arg(m_image.height())
                       : QString());
}

void PicturePane::clear() {
    m_image = {};
    m_size = {};
    m_picture->clear();
    m_facts->clear();
    showReason({});
}

void PicturePane::setNoResize(bool noResize) {
    m_fullSize->setChecked(noResize);
}

/// A picture that is smaller than the pane keeps its size.
double PicturePane::fittingZoom() const {
    const QSize room = m_area->maximumViewportSize();
    if (m_size.isEmpty())
        return 1;
    return std::min(
        {1.0, double(room.width()) / m_size.width(), double(room.height()) / m_size.height()});
}

void PicturePane::setZoom(double zoom) {
    if (m_image.isNull())
        return;
    const double most = double(kMostShown) / std::max(m_size.width(), m_size.height());
    m_zoom = std::clamp(zoom, std::min(kSmallest, most), std::min(kLargest, std::max(most, 0.01)));
    const auto side = [this](int pixels) {
        return std::max(1, static_cast<int>(std::floor(pixels * m_zoom)));
    };
    m_picture->resize(side(m_size.width()), side(m_size.height()));
    m_facts->setText(tr("%1 × %2 pixels, shown at %3 %")
                         .arg(m_size.width())
                         .arg(m_size.height())
                         .arg(std::lround(m_zoom * 100)));
}

void PicturePane::refit() {
    if (!m_zoomedByHand)
        setZoom(m_fullSize->isChecked() ? 1 : fittingZoom());
}

void PicturePane::resizeEvent(QResizeEvent *event) {
    ViewerFrame::resizeEvent(event);
    refit();
}

bool PicturePane::eventFilter(QObject *watched, QEvent *event) {
    if (watched == m_area->viewport() && event->type() == QEvent::Resize)
        refit();
    if (watched != m_area->viewport() || event->type() != QEvent::Wheel || m_image.isNull())
        return ViewerFrame::eventFilter(watched, event);
    const int turned = static_cast<QWheelEvent *>(event)->angleDelta().y();
    if (turned != 0) {
        m_zoomedByHand = true;
        setZoom(m_zoom * (turned > 0 ? kStep : 1 / kStep));
    }
    return true;
}

} // namespace nv
