#pragma once

#include <QHeaderView>

#include <functional>
#include <optional>
#include <vector>

namespace nv {

/// Headings some of which stay in sight at the near edge while the others scroll away under them.
class PinnedHeader final : public QHeaderView {
    Q_OBJECT

  public:
    /// `isPinned` tells the sections that stay in sight.
    explicit PinnedHeader(std::function<bool(int section)> isPinned, QWidget *parent = nullptr);

    struct Stuck {
        int section;
        int left;  ///< pixels from the edge where lines begin
        int width; ///< pixels
    };
    /// The sections that would be out of sight, in their order. They never take more than two
    /// thirds of the width.
    std::vector<Stuck> stuck() const;
    /// Pixels that they cover.
    int stuckWidth() const;
    /// Where the section's column is drawn over the others, in the view's pixels; nothing when it
    /// isn't stuck.
    std::optional<QRect> stuckColumn(int section) const;
    /// The section that is seen at this place of the view, -1 when none is.
    int sectionAt(int x) const;

  protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;

  private:
    QRect rectOf(const Stuck &each) const;
    std::optional<Stuck> stuckAt(int x) const;
    int shiftAt(int x) const;

    std::function<bool(int)> m_isPinned;
    int m_shift = 0; ///< pixels from where a pressed section is seen to where it would be
};

} // namespace nv
