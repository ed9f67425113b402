#pragma once

#include <QLabel>

namespace nv {

/// A line of plain text that gives way where there is little room: its end is left out, with a sign
/// that there is more. Whoever uses it sets a tool tip of the whole.
class ElidedLabel final : public QLabel {
    Q_OBJECT

  public:
    explicit ElidedLabel(const QString &text = {}, QWidget *parent = nullptr);

    QSize minimumSizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace nv
