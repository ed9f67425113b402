#pragma once

#include <QWidget>

namespace nv {

/// A progress bar as the status window draws it: a plain rectangle as wide as its percentage.
class ProgressBox final : public QWidget {
    Q_OBJECT

  public:
    explicit ProgressBox(QWidget *parent = nullptr);

    int percent() const { return m_percent; }
    void setPercent(int percent);

  protected:
    void paintEvent(QPaintEvent *event) override;

  private:
    int m_percent = 0;
};

} // namespace nv
