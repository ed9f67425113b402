#pragma once

#include "base/FailureLog.h"
#include "views/hex/HexHits.h"
#include "views/hex/HexSource.h"

#include <QAbstractScrollArea>

#include <memory>

namespace nv {

/// The bytes of a file of any size: offset, hexadecimal and characters. Only the rows on the screen
/// are read and painted.
class HexGrid final : public QAbstractScrollArea {
    Q_OBJECT

  public:
    /// `log` must outlive this.
    explicit HexGrid(FailureLog &log, QWidget *parent = nullptr);

    /// Null shows nothing.
    void setSource(std::shared_ptr<HexSource> source);
    std::shared_ptr<const HexSource> source() const { return m_source; }
    /// The byte with the cursor.
    std::uint64_t cursor() const { return m_cursor; }
    void goTo(std::uint64_t offset);
    void select(const HexMatch &match);
    /// Bytes that spell one of these are marked wherever they come on the screen.
    void setMarked(const std::vector<std::string> &forms);
    /// The chosen bytes, the one with the cursor among them.
    HexMatch selection() const;
    /// As "4A 46"; what is more than a megabyte is left out.
    QString selectedText() const;

  signals:
    void cursorMoved();
    void sourceChanged();
    /// The choice was longer than what is copied.
    void copyCut(std::uint64_t chosen, std::uint64_t copied);
    /// The file can't be read any more: it isn't shown from now on.
    void unreadable(const QString &reason);

  protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    bool event(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

  private:
    enum class Anchor { moves, stays };
    int charWidth() const;
    int rowHeight() const;
    int hexLeft() const;
    int charsLeft() const;
    std::uint64_t firstRow() const;
    std::uint64_t visibleRows() const;
    std::uint64_t last() const;
    std::uint64_t byteAt(QPoint place) const;
    std::optional<std::uint64_t> placeAfter(const QKeyEvent &key) const;
    void setCursorAt(std::uint64_t offset, Anchor anchor);
    void scrollToCursor();
    void updateScrollBars();
    void copySelection();
    void paintRows(QPainter &painter);
    void paintRow(QPainter &painter, std::uint64_t row, int top,
                  const std::vector<HexMatch> &marked);
    std::vector<HexMatch> markedOnScreen() const;

    FailureLog &m_log;
    std::shared_ptr<HexSource> m_source;
    HexHits m_marked{std::vector<std::string>()};
    std::uint64_t m_cursor = 0;
    std::uint64_t m_anchor = 0;
    std::uint64_t m_rowsAStep = 1; ///< of the scroll bar, which counts in 31 bits
};

} // namespace nv
