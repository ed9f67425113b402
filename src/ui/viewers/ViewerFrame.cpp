#include "ui/viewers/ViewerFrame.h"

#include "ui/widgets/NoRow.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QStackedWidget>

namespace nv {

ViewerFrame::ViewerFrame(const char *name, QWidget &content, QWidget *parent)
    : QWidget(parent), m_content(&content) {
    setObjectName(QLatin1String(name));
    m_controls = new QWidget;
    m_controls->setObjectName(QStringLiteral("viewerControls"));
    m_bar = new QHBoxLayout(m_controls);
    m_bar->setContentsMargins(6, 4, 6, 4);
    m_reason = newLabel("labViewerReason");
    m_reason->setAlignment(Qt::AlignTop);
    m_reason->setWordWrap(true);
    m_reason->setContentsMargins(8, 6, 8, 6);
    m_notice = newLabel("labViewerNotice");
    m_notice->setWordWrap(true);
    m_notice->setContentsMargins(8, 3, 8, 3);
    m_pages = new QStackedWidget;
    m_pages->addWidget(m_reason);
    m_pages->addWidget(&content);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(m_controls);
    column->addWidget(m_pages, 1);
    column->addWidget(m_notice);
    showReason({});
}

QLabel *ViewerFrame::newLabel(const char *name) {
    auto *label = new QLabel;
    label->setObjectName(QLatin1String(name));
    label->setTextFormat(Qt::PlainText);
    return label;
}

void ViewerFrame::showReason(const QString &text) {
    m_reason->setText(text.isEmpty() ? noRowText() : text);
    m_pages->setCurrentWidget(m_reason);
    m_controls->setEnabled(false);
    showNotice({});
}

void ViewerFrame::showContent() {
    m_pages->setCurrentWidget(m_content);
    m_controls->setEnabled(true);
}

bool ViewerFrame::showsContent() const {
    return m_pages->currentWidget() == m_content;
}

void ViewerFrame::showNotice(const QString &text) {
    m_notice->setText(text);
    m_notice->setVisible(!text.isEmpty());
}

/// The window's own actions have these keys; whoever has the focus is asked before they get them.
bool ViewerFrame::event(QEvent *event) {
    const bool isOverride = event->type() == QEvent::ShortcutOverride;
    if (!showsContent() || (!isOverride && event->type() != QEvent::KeyPress))
        return QWidget::event(event);
    const auto *key = static_cast<QKeyEvent *>(event);
    const bool find = key->matches(QKeySequence::Find);
    if (!find && !key->matches(QKeySequence::FindNext))
        return QWidget::event(event);
    event->accept();
    if (!isOverride && find)
        openFind();
    else if (!isOverride)
        findNext();
    return true;
}

} // namespace nv
