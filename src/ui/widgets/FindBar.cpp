#include "ui/widgets/FindBar.h"

#include <QBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace nv {

FindBar::FindBar(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("FindBar"));
    m_text = new QLineEdit;
    m_text->setObjectName(QStringLiteral("txtFind"));
    m_text->setAccessibleName(tr("Find in the columns that are shown"));
    m_text->setPlaceholderText(tr("Find in the columns that are shown"));
    m_text->setClearButtonEnabled(true);
    m_result = new QLabel;
    m_result->setObjectName(QStringLiteral("labFindResult"));
    auto *next = new QPushButton(tr("Find &Next"));
    next->setObjectName(QStringLiteral("btnFindNext"));
    auto *hide = new QPushButton(tr("Close"));
    hide->setObjectName(QStringLiteral("btnFindClose"));

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(6, 4, 6, 4);
    row->addWidget(m_text, 1);
    row->addWidget(next);
    row->addWidget(hide);
    row->addWidget(m_result);
    connect(m_text, &QLineEdit::returnPressed, this, &FindBar::nextRequested);
    connect(next, &QPushButton::clicked, this, &FindBar::nextRequested);
    connect(hide, &QPushButton::clicked, this, &FindBar::dismiss);
    hide->setAutoDefault(false);
    setVisible(false);
}

void FindBar::reveal() {
    setVisible(true);
    m_result->clear();
    m_text->setFocus(Qt::ShortcutFocusReason);
    m_text->selectAll();
}

void FindBar::dismiss() {
    setVisible(false);
    emit closed();
}

QString FindBar::text() const {
    return m_text->text();
}

void FindBar::showResult(const QString &text) {
    m_result->setText(text);
}

void FindBar::keyPressEvent(QKeyEvent *event) {
    if (event->key() == Qt::Key_Escape)
        dismiss();
    else
        QWidget::keyPressEvent(event);
}

} // namespace nv
