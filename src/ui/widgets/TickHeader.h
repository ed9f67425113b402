#pragma once

#include <QHeaderView>

namespace nv {

/// Headings of a list, the first of which holds a tick box.
class TickHeader final : public QHeaderView {
    Q_OBJECT

  public:
    explicit TickHeader(QWidget *parent = nullptr);

    bool isTicked() const { return m_ticked; }
    /// Without telling anybody.
    void setTicked(bool ticked);

  signals:
    /// The examiner flipped the tick.
    void flipped(bool ticked);

  protected:
    void paintSection(QPainter *painter, const QRect &place, int section) const override;
    QSize sectionSizeFromContents(int section) const override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

  private:
    void flip();

    bool m_ticked = false;
};

} // namespace nv
