#pragma once

#include <QScrollArea>

namespace nv {

/// A long form of a dialog: as high as it wants to be where the screen has room, and scrolled where
/// it hasn't. Nothing in it is ever cut.
class FormScroll final : public QScrollArea {
    Q_OBJECT

  public:
    /// Takes `page`, which is to be so many pixels wide.
    FormScroll(QWidget &page, int width, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

  private:
    int m_width = 0;
};

} // namespace nv
