#include "ui/frame/PaneWindow.h"

#include "platform/qt/WithinScreen.h"

#include <QBoxLayout>
#include <QCloseEvent>
#include <QShortcut>

namespace nv {

PaneWindow::PaneWindow(QWidget &pane, const QString &title, QWidget *owner)
    : QWidget(owner, Qt::Window), m_pane(pane) {
    setObjectName(QStringLiteral("PaneWindow"));
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("%1 - Norvelane").arg(title));
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(&pane);
    pane.show();
    resizeWithinScreen(*this, {900, 700});
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
    connect(new QShortcut(Qt::SHIFT | Qt::Key_F11, this), &QShortcut::activated, this,
            &QWidget::close);
}

void PaneWindow::closeEvent(QCloseEvent *event) {
    layout()->removeWidget(&m_pane);
    emit leaving();
    event->accept();
}

} // namespace nv
