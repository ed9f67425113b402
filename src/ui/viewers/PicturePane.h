#pragma once

#include "ui/viewers/ViewerFrame.h"

#include <QImage>

class QCheckBox;
class QScrollArea;

namespace nv {

/// A picture, fitted to the pane or in a size of its own.
class PicturePane final : public ViewerFrame {
    Q_OBJECT

  public:
    /// Pictures are drawn no larger than this, in pixels a side.
    static constexpr int kMostPixels = 4096;

    explicit PicturePane(QWidget *parent = nullptr);

    /// `size` is that of the picture itself, which may be larger than what was drawn of it.
    void showPicture(const QImage &drawn, QSize size);
    void clear();
    /// Full size instead of fitted.
    void setNoResize(bool noResize);
    /// Of the picture's own size, 1 for full size.
    double zoom() const { return m_zoom; }

  signals:
    void noResizeChanged(bool noResize);

  protected:
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    double fittingZoom() const;
    void setZoom(double zoom);
    void refit();

    QScrollArea *m_area = nullptr;
    QLabel *m_picture = nullptr;
    QCheckBox *m_fullSize = nullptr;
    QLabel *m_facts = nullptr;
    QImage m_image;
    QSize m_size;
    double m_zoom = 1;
    bool m_zoomedByHand = false;
};

} // namespace nv
