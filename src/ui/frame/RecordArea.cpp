#include "ui/frame/RecordArea.h"

#include "ui/frame/ViewerTabs.h"

#include <QEvent>

namespace nv {

RecordArea::RecordArea(QWidget &card, ViewerTabs &viewers, QWidget &window)
    : QSplitter(Qt::Horizontal), m_card(card), m_viewers(viewers), m_window(window) {
    setObjectName(QStringLiteral("recordSplitter"));
    setChildrenCollapsible(false);
    // Above the viewers it must not keep the window from getting so low that it becomes a tab.
    card.setMinimumHeight(1);
    addWidget(&card);
    addWidget(&viewers);
    setStretchFactor(0, 2);
    setStretchFactor(1, 3);
    connect(&viewers, &ViewerTabs::fullSizeWanted, this, &RecordArea::setFullSize);
    window.installEventFilter(this);
    share();
    arrange();
}

bool RecordArea::eventFilter(QObject *watched, QEvent *event) {
    // When it is shown, a way of standing that was kept of another size may have come back.
    if (watched == &m_window && (event->type() == QEvent::Resize || event->type() == QEvent::Show))
        arrange();
    return QSplitter::eventFilter(watched, event);
}

/// Two fifths are the card's, until the examiner gives it others.
void RecordArea::share() {
    setSizes({400, 600});
}

void RecordArea::setFullSize(bool full) {
    m_isFull = full;
    arrange();
}

void RecordArea::arrange() {
    const bool isWide = m_window.width() >= kWide;
    const bool isTab = !isWide && m_window.height() < kHigh;
    const bool wasTab = m_viewers.indexOf(&m_card) >= 0;
    if (isTab != wasTab)
        m_viewers.setCardTab(isTab ? &m_card : nullptr);
    if (!isTab && wasTab)
        insertWidget(0, &m_card);
    const Qt::Orientation stands = isWide ? Qt::Horizontal : Qt::Vertical;
    if (stands != orientation() || isTab != wasTab) {
        setOrientation(stands);
        share();
    }
    if (!isTab)
        m_card.setVisible(!m_isFull);
}

} // namespace nv
