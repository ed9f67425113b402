#pragma once

#include <QFocusFrame>
#include <QObject>
#include <QPointer>

namespace nv {

/// A line in the accent's colour around a widget of its window; it goes with the window.
class FocusRing final : public QFocusFrame {
    Q_OBJECT

  public:
    /// `width` in pixels.
    FocusRing(QWidget &around, int width);

  protected:
    void paintEvent(QPaintEvent *event) override;

  private:
    int m_width;
};

/// Shows in every window which control has the keys, as long as keys are what is used: whoever
/// clicks knows where. The style marks some controls, others (lists, texts, bars of our own) not.
class FocusRings final : public QObject {
    Q_OBJECT

  public:
    /// For the whole program, once; calls after the first do nothing.
    static void show();

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    explicit FocusRings(QObject *parent);
    void setByKeys(bool byKeys);
    void look();

    bool m_byKeys = false;
    QPointer<FocusRing> m_ring;
};

} // namespace nv
