#include "ui/viewers/HexGrid.h"

#include "base/Trap.h"
#include "platform/qt/QtText.h"
#include "ui/viewers/HitViewer.h"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>

namespace nv {

namespace {

constexpr int kMargin = 6; ///< pixels
constexpr std::uint64_t kMostSteps = std::uint64_t{1} << 30;
constexpr std::uint64_t kMostCopied = std::uint64_t{1} << 20;

bool isIn(const HexMatch &match, std::uint64_t place) {
    return place >= match.offset && place - match.offset < match.length;
}

} // namespace

HexGrid::HexGrid(FailureLog &log, QWidget *parent) : QAbstractScrollArea(parent), m_log(log) {
    setObjectName(QStringLiteral("HexGrid"));
    setAccessibleName(tr("Bytes of the file"));
    setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::NoFrame);
    viewport()->setBackgroundRole(QPalette::Base);
    viewport()->setCursor(Qt::IBeamCursor);
}

void HexGrid::setSource(std::shared_ptr<HexSource> source) {
    m_source = std::move(source);
    m_cursor = m_anchor = 0;
    updateScrollBars();
    verticalScrollBar()->setValue(0);
    viewport()->update();
    emit cursorMoved();
    emit sourceChanged();
}

void HexGrid::setMarked(const std::vector<std::string> &forms) {
    m_marked = HexHits(forms);
    viewport()->update();
}

void HexGrid::goTo(std::uint64_t offset) {
    setCursorAt(std::min(offset, last()), Anchor::moves);
}

void HexGrid::select(const HexMatch &match) {
    goTo(match.offset);
    // The cursor stays at the start, where the next search goes on from.
    m_anchor = std::min(match.offset + std::max<std::uint64_t>(match.length, 1) - 1, last());
    viewport()->update();
    emit cursorMoved();
}

HexMatch HexGrid::selection() const {
    if (!m_source || m_source->size() == 0)
        return {};
    const auto [first, behind] = std::minmax(m_cursor, m_anchor);
    return {first, behind - first + 1};
}

QString HexGrid::selectedText() const {
    const HexMatch chosen = selection();
    if (chosen.length == 0)
        return {};
    const Bytes bytes = m_source->file().read(chosen.offset, std::min(chosen.length, kMostCopied));
    return toQt(hexBytes(ByteView(bytes)));
}

void HexGrid::copySelection() {
    QApplication::clipboard()->setText(selectedText());
    if (const std::uint64_t chosen = selection().length; chosen > kMostCopied)
        emit copyCut(chosen, kMostCopied);
}

int HexGrid::charWidth() const {
    return fontMetrics().horizontalAdvance(u'0');
}

int HexGrid::rowHeight() const {
    return fontMetrics().height() + 2;
}

int HexGrid::hexLeft() const {
    return kMargin + ((m_source ? m_source->offsetDigits() : 8) + 2) * charWidth();
}

int HexGrid::charsLeft() const {
    return hexLeft() + (static_cast<int>(kHexRowBytes) * 3 + 1) * charWidth();
}

std::uint64_t HexGrid::firstRow() const {
    return static_cast<std::uint64_t>(verticalScrollBar()->value()) * m_rowsAStep;
}

std::uint64_t HexGrid::visibleRows() const {
    return static_cast<std::uint64_t>(std::max(1, viewport()->height() / rowHeight()));
}

std::uint64_t HexGrid::last() const {
    return m_source && m_source->size() > 0 ? m_source->size() - 1 : 0;
}

void HexGrid::updateScrollBars() {
    const std::uint64_t rows = m_source ? m_source->rowCount() : 0;
    m_rowsAStep = rows / kMostSteps + 1;
    const std::uint64_t hidden = rows > visibleRows() ? rows - visibleRows() : 0;
    // Rounded up: the last rows must come into view.
    verticalScrollBar()->setRange(0, static_cast<int>((hidden + m_rowsAStep - 1) / m_rowsAStep));
    verticalScrollBar()->setPageStep(static_cast<int>(visibleRows()));
    const int width = charsLeft() + static_cast<int>(kHexRowBytes) * charWidth() + kMargin;
    horizontalScrollBar()->setRange(0, std::max(0, width - viewport()->width()));
    horizontalScrollBar()->setPageStep(viewport()->width());
}

void HexGrid::resizeEvent(QResizeEvent *event) {
    QAbstractScrollArea::resizeEvent(event);
    updateScrollBars();
}

/// A drive that went away would fail again with every painting, so the file is let go.
void HexGrid::paintEvent(QPaintEvent *) {
    QPainter painter(viewport());
    if (!m_source)
        return;
    const auto failure = failureOf(m_log, "HexGrid.paintEvent()", [&] { paintRows(painter); });
    if (failure)
        QTimer::singleShot(0, this, [this, reason = toQt(*failure)] {
            setSource(nullptr);
            emit unreadable(reason);
        });
}

void HexGrid::paintRows(QPainter &painter) {
    painter.setFont(font());
    painter.translate(-horizontalScrollBar()->value(), 0);
    const std::uint64_t first = firstRow();
    const std::vector<HexMatch> marked = markedOnScreen();
    for (std::uint64_t row = 0; row <= visibleRows() && first + row < m_source->rowCount(); ++row)
        paintRow(painter, first + row, static_cast<int>(row) * rowHeight(), marked);
}

/// Some begin above the first row, and end below the last one.
std::vector<HexMatch> HexGrid::markedOnScreen() const {
    if (m_marked.isEmpty())
        return {};
    const std::uint64_t first = firstRow() * kHexRowBytes;
    const std::uint64_t from = first - std::min(first, m_marked.longest());
    const std::uint64_t starts = first - from + (visibleRows() + 1) * kHexRowBytes;
    const Bytes bytes = m_source->file().read(from, starts + m_marked.longest());
    return m_marked.in(ByteView(bytes).raw(), from, static_cast<std::size_t>(starts));
}

void HexGrid::paintRow(QPainter &painter, std::uint64_t row, int top,
                       const std::vector<HexMatch> &marked) {
    const Bytes bytes = m_source->row(row);
    const std::string chars = hexChars(ByteView(bytes));
    const int baseline = top + fontMetrics().ascent() + 1;
    const int width = charWidth();
    const HexMatch chosen = selection();
    const QPalette::ColorGroup group = hasFocus() ? QPalette::Active : QPalette::Inactive;
    const std::uint64_t at = row * kHexRowBytes;
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(kMargin, baseline, toQt(hexOffset(at, m_source->offsetDigits())));
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const bool isChosen = isIn(chosen, at + i);
        const bool isMarked =
            std::ranges::any_of(marked, [&](const HexMatch &match) { return isIn(match, at + i); });
        const int column = static_cast<int>(i);
        const int hexAt = hexLeft() + column * 3 * width;
        const int charAt = charsLeft() + column * width;
        if (isChosen || isMarked) {
            const QColor ground = isMarked ? (isChosen ? kChosenHitGround : kHitGround)
                                           : palette().color(group, QPalette::Highlight);
            painter.fillRect(hexAt, top, 2 * width, rowHeight(), ground);
            painter.fillRect(charAt, top, width, rowHeight(), ground);
        }
        painter.setPen(isMarked ? QColor(Qt::black)
                                : palette().color(group, isChosen ? QPalette::HighlightedText
                                                                  : QPalette::Text));
        painter.drawText(hexAt, baseline, toQt(hexBytes(ByteView(bytes).sub(i, 1))));
        painter.drawText(charAt, baseline, QString(QLatin1Char(chars[i])));
    }
}

std::uint64_t HexGrid::byteAt(QPoint place) const {
    const int x = place.x() + horizontalScrollBar()->value();
    const int column =
        x < charsLeft() ? (x - hexLeft()) / (3 * charWidth()) : (x - charsLeft()) / charWidth();
    const int most = static_cast<int>(kHexRowBytes) - 1;
    const auto row = firstRow() + static_cast<std::uint64_t>(std::max(0, place.y() / rowHeight()));
    return std::min(row * kHexRowBytes + static_cast<std::uint64_t>(std::clamp(column, 0, most)),
                    last());
}

void HexGrid::mousePressEvent(QMouseEvent *event) {
    if (m_source && event->button() == Qt::LeftButton)
        setCursorAt(byteAt(event->pos()),
                    event->modifiers() & Qt::ShiftModifier ? Anchor::stays : Anchor::moves);
}

void HexGrid::mouseMoveEvent(QMouseEvent *event) {
    if (m_source && event->buttons() & Qt::LeftButton)
        setCursorAt(byteAt(event->pos()), Anchor::stays);
}

std::optional<std::uint64_t> HexGrid::placeAfter(const QKeyEvent &key) const {
    const bool whole = key.modifiers() & Qt::ControlModifier;
    const std::uint64_t page = visibleRows() * kHexRowBytes;
    const std::uint64_t inRow = m_cursor % kHexRowBytes;
    const auto back = [this](std::uint64_t bytes) {
        return m_cursor >= bytes ? m_cursor - bytes : m_cursor;
    };
    const auto on = [this](std::uint64_t bytes) {
        return last() - m_cursor >= bytes ? m_cursor + bytes : m_cursor;
    };
    switch (key.key()) {
    case Qt::Key_Left:
        return back(1);
    case Qt::Key_Right:
        return on(1);
    case Qt::Key_Up:
        return back(kHexRowBytes);
    case Qt::Key_Down:
        return on(kHexRowBytes);
    case Qt::Key_PageUp:
        return m_cursor >= page ? m_cursor - page : inRow;
    case Qt::Key_PageDown:
        return last() - m_cursor >= page ? m_cursor + page : last();
    case Qt::Key_Home:
        return whole ? 0 : m_cursor - inRow;
    case Qt::Key_End:
        return whole ? last() : std::min(m_cursor - inRow + kHexRowBytes - 1, last());
    default:
        return std::nullopt;
    }
}

void HexGrid::keyPressEvent(QKeyEvent *event) {
    if (!m_source)
        return QAbstractScrollArea::keyPressEvent(event);
    if (event->matches(QKeySequence::Copy)) {
        copySelection();
        return;
    }
    const auto place = placeAfter(*event);
    if (!place) {
        event->ignore();
        return;
    }
    setCursorAt(*place, event->modifiers() & Qt::ShiftModifier ? Anchor::stays : Anchor::moves);
}

/// The table's own Copy has the same key.
bool HexGrid::event(QEvent *event) {
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent *>(event)->matches(QKeySequence::Copy)) {
        event->accept();
        return true;
    }
    return QAbstractScrollArea::event(event);
}

void HexGrid::setCursorAt(std::uint64_t offset, Anchor anchor) {
    m_cursor = offset;
    if (anchor == Anchor::moves)
        m_anchor = offset;
    scrollToCursor();
    viewport()->update();
    emit cursorMoved();
}

void HexGrid::scrollToCursor() {
    const std::uint64_t row = m_cursor / kHexRowBytes;
    const std::uint64_t first = firstRow();
    if (row < first)
        verticalScrollBar()->setValue(static_cast<int>(row / m_rowsAStep));
    else if (row >= first + visibleRows())
        verticalScrollBar()->setValue(
            static_cast<int>((row - visibleRows() + m_rowsAStep) / m_rowsAStep));
}

} // namespace nv
