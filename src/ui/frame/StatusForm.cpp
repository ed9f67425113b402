#include "ui/frame/StatusForm.h"

#include "platform/qt/Icons.h"
#include "platform/qt/QtText.h"
#include "ui/frame/ProgressBox.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QPushButton>

namespace nv {

namespace {

constexpr int kIconPixels = 32;

} // namespace

StatusForm::StatusForm(QWidget *parent, std::chrono::milliseconds showAfter)
    : QDialog(parent), m_showAfter(showAfter) {
    setObjectName(QStringLiteral("StatusForm"));
    // It waits for nobody, but while it is up only its Cancel button is live, also above a dialog
    // such as the import wizard.
    setWindowModality(Qt::ApplicationModal);
    setMinimumWidth(460);

    auto *column = new QVBoxLayout(this);
    column->addLayout(messageRow());
    m_top = addBar(*column, 1);
    m_bottom = addBar(*column, 2);
    column->addStretch();
    column->addLayout(buttonRow());
}

QLabel *StatusForm::addLabel(const char *name) {
    auto *label = new QLabel(this);
    label->setObjectName(QLatin1String(name));
    // Messages quote paths and URLs of evidence, which are never rendered as rich text.
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

QBoxLayout *StatusForm::messageRow() {
    auto *row = new QHBoxLayout;
    m_icon = addLabel("imgIcon");
    m_icon->setFixedSize(kIconPixels, kIconPixels);
    row->addWidget(m_icon, 0, Qt::AlignTop);

    auto *texts = new QVBoxLayout;
    constexpr const char *kNames[] = {"labMsg1", "labMsg2", "labMsg3"};
    for (int i = 0; i < 3; ++i) {
        m_messages[i] = addLabel(kNames[i]);
        texts->addWidget(m_messages[i]);
    }
    QFont bold = font();
    bold.setBold(true);
    m_messages[0]->setFont(bold);
    row->addLayout(texts, 1);
    return row;
}

StatusForm::Bar StatusForm::addBar(QBoxLayout &column, int number) {
    Bar bar;
    bar.message = addLabel(number == 1 ? "labBar1Msg" : "labBar2Msg");
    bar.box = new ProgressBox(this);
    bar.box->setObjectName(QStringLiteral("picBar%1").arg(number));
    bar.counter = addLabel(number == 1 ? "labBar1" : "labBar2");
    bar.counter->setAlignment(Qt::AlignCenter);
    bar.counter->setParent(bar.box);
    auto *inside = new QVBoxLayout(bar.box);
    inside->setContentsMargins(4, 0, 4, 0);
    inside->addWidget(bar.counter);
    column.addWidget(bar.message);
    column.addWidget(bar.box);
    return bar;
}

QBoxLayout *StatusForm::buttonRow() {
    auto *row = new QHBoxLayout;
    m_elapsed = addLabel("labTimeElapsed");
    m_left = addLabel("labTimeLeft");
    m_left->setWordWrap(false);
    m_cancel = new QPushButton(this);
    m_cancel->setObjectName(QStringLiteral("btnCancel"));
    connect(m_cancel, &QPushButton::clicked, this, &StatusForm::cancel);
    row->addWidget(m_elapsed);
    row->addWidget(m_left);
    row->addStretch();
    row->addWidget(m_cancel);
    return row;
}

void StatusForm::open() {
    m_running = true;
    m_cancel->setText(tr("Cancel"));
    m_cancel->setEnabled(true);
    m_sinceOpen.start();
}

void StatusForm::close() {
    m_running = false;
    hide();
}

void StatusForm::reject() {
    if (m_running)
        cancel();
    else
        QDialog::reject();
}

void StatusForm::cancel() {
    if (!m_cancel->isEnabled())
        return;
    m_cancel->setEnabled(false);
    m_cancel->setText(tr("Cancelling..."));
    emit cancelled();
}

void StatusForm::update(const TaskStatus &status) {
    setWindowTitle(toQt(status.windowTitle()));
    m_messages[0]->setText(toQt(status.msg1));
    m_messages[1]->setText(toQt(status.msg2));
    m_messages[2]->setText(toQt(status.msg3));
    showIcon(status);
    showBar(m_top, status.topBar());
    showBar(m_bottom, status.bottomBar());
    m_elapsed->setVisible(status.showTimeElapsed);
    m_elapsed->setText(toQt(status.getTimeElapsed()));
    const QString left = toQt(status.getTimeLeft());
    m_left->setVisible(status.showTimeElapsed && !left.isEmpty());
    m_left->setText(QStringLiteral("- ") + left);
}

/// A picture is drawn in the colours of its moment; the window outlives their theme.
void StatusForm::changeEvent(QEvent *event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        m_iconPath.clear();
}

void StatusForm::showIcon(const TaskStatus &status) {
    if (status.iconPath != m_iconPath) {
        m_iconPath = status.iconPath;
        m_icon->setPixmap(
            icon(m_iconPath).pixmap(QSize(kIconPixels, kIconPixels), devicePixelRatio()));
    }
    m_icon->setVisible(status.showIcon && !m_icon->pixmap(Qt::ReturnByValue).isNull());
}

void StatusForm::showBar(const Bar &bar, const StatusBar &values) {
    bar.message->setVisible(values.visible);
    bar.box->setVisible(values.visible);
    bar.box->setPercent(values.percent);
    bar.message->setText(toQt(values.message) + QStringLiteral(" (%1%)").arg(values.percent));
    bar.counter->setText(values.total > 0 ? tr("%L1 of %L2").arg(values.counter).arg(values.total)
                                          : QString());
}

void StatusForm::centreOnActiveWindow() {
    const QWidget *under = QApplication::activeWindow();
    if (!under)
        under = parentWidget();
    adjustSize();
    if (under)
        move(under->frameGeometry().center() - rect().center());
}

void StatusForm::pump() {
    if (m_running && !isVisible() && m_sinceOpen.elapsed() >= m_showAfter.count()) {
        centreOnActiveWindow();
        show();
        m_cancel->setFocus();
    }
    QCoreApplication::processEvents();
}

} // namespace nv
