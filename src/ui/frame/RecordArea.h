#pragma once

#include <QSplitter>

namespace nv {

class ViewerTabs;

/// What shows the current record: its card and the viewers. They stand beside each other in a wide
/// window, below each other in a high one; in one that is neither, the card is the first tab.
class RecordArea final : public QSplitter {
    Q_OBJECT

  public:
    static constexpr int kWide = 1200; ///< pixels of the window, from which it is wide
    static constexpr int kHigh = 960;  ///< and high

    /// Takes both into itself. `window` is looked at for its size.
    RecordArea(QWidget &card, ViewerTabs &viewers, QWidget &window);

    bool eventFilter(QObject *watched, QEvent *event) override;
    /// Only the viewers are shown.
    void setFullSize(bool full);

  private:
    void arrange();
    void share();

    QWidget &m_card;
    ViewerTabs &m_viewers;
    QWidget &m_window;
    bool m_isFull = false;
};

} // namespace nv
