#pragma once

#include <QLayout>

#include <vector>

namespace nv {

/// Widgets one after another, in as many lines as the width asks for. The last one of a line that
/// can grow takes what is left of it.
class FlowLayout final : public QLayout {
    Q_OBJECT

  public:
    using QLayout::QLayout;
    ~FlowLayout() override;
    FlowLayout(const FlowLayout &) = delete;
    FlowLayout &operator=(const FlowLayout &) = delete;

    /// Widgets get narrower, down to their least width, before one of them takes another line.
    void setShrinking(bool shrinks) { m_shrinks = shrinks; }

    void addItem(QLayoutItem *item) override;
    int count() const override { return static_cast<int>(m_items.size()); }
    QLayoutItem *itemAt(int index) const override;
    QLayoutItem *takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return Qt::Horizontal; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override;
    QSize minimumSize() const override;
    void setGeometry(const QRect &place) override;

  private:
    struct Line {
        std::vector<QLayoutItem *> items;
        int width = 0;
        int height = 0;
    };
    int gap() const;
    int leastWidth(const QLayoutItem &item) const;
    std::vector<int> widthsIn(const Line &line, int room) const;
    std::vector<Line> linesFor(int width) const;
    void placeLine(const Line &line, const QRect &place) const;

    std::vector<QLayoutItem *> m_items; ///< owned
    bool m_shrinks = false;
};

} // namespace nv
