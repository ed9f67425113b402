#pragma once

#include <QTableView>

#include <functional>

namespace nv {

class PinnedHeader;

/// A grid some columns of which stay in sight while it scrolls sideways, drawn over the others.
class PinnedGrid : public QTableView {
    Q_OBJECT

  public:
    /// `isPinned` tells the sections that stay in sight.
    explicit PinnedGrid(std::function<bool(int section)> isPinned, QWidget *parent = nullptr);

    // Of what is seen: a column that stays in sight lies over others.
    QModelIndex indexAt(const QPoint &place) const override;
    QRect visualRect(const QModelIndex &index) const override;
    void scrollTo(const QModelIndex &index, ScrollHint hint = EnsureVisible) override;

  protected:
    PinnedHeader &pinnedHeader() const { return *m_header; }
    void paintEvent(QPaintEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;

  private:
    void paintPinned(QPainter &painter, int row) const;

    PinnedHeader *m_header = nullptr;
};

} // namespace nv
