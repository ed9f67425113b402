#include "ui/viewers/HitBar.h"

#include "base/DisplayText.h"
#include "platform/qt/QtText.h"
#include "ui/viewers/HitViewer.h"

#include <QBoxLayout>
#include <QLabel>
#include <QToolButton>

namespace nv {

namespace {

/// A piece of evidence is never markup, and shows no signs that turn a line around.
QString escaped(std::string_view text) {
    return toQt(displayText(std::string(text), 1000)).toHtmlEscaped();
}

} // namespace

HitBar::HitBar(QWidget *parent) : QWidget(parent) {
    setObjectName(QStringLiteral("HitBar"));
    m_text = new QLabel;
    m_text->setObjectName(QStringLiteral("labSnippet"));
    m_text->setTextFormat(Qt::RichText);
    m_text->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_count = new QLabel;
    m_count->setObjectName(QStringLiteral("labHitCount"));
    m_count->setTextFormat(Qt::PlainText);
    m_stop = newButton("btnStopHits", Qt::NoArrow, tr("Stop looking for further hits"));
    m_stop->setText(tr("Stop"));
    m_stop->hide();
    connect(m_stop, &QToolButton::clicked, this, &HitBar::stopWanted);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(6, 2, 6, 2);
    QToolButton *previous = newButton("btnPreviousHit", Qt::UpArrow, tr("Previous hit (Shift+F8)"));
    QToolButton *next = newButton("btnNextHit", Qt::DownArrow, tr("Next hit (F8)"));
    row->addWidget(previous);
    row->addWidget(next);
    row->addWidget(m_text, 1);
    row->addWidget(m_count);
    row->addWidget(m_stop);
    connect(previous, &QToolButton::clicked, this, &HitBar::previousWanted);
    connect(next, &QToolButton::clicked, this, &HitBar::nextWanted);
    hide();
}

QToolButton *HitBar::newButton(const char *name, Qt::ArrowType arrow, const QString &text) {
    auto *button = new QToolButton;
    button->setObjectName(QLatin1String(name));
    button->setArrowType(arrow);
    button->setAccessibleName(text);
    button->setToolTip(text);
    button->setFocusPolicy(Qt::TabFocus);
    button->setAutoRaise(true);
    return button;
}

void HitBar::showSnippet(const QString &field, const Snippet &snippet) {
    const std::string_view text = snippet.text;
    const auto [at, length] = snippet.mark;
    const QString html =
        QStringLiteral("<b>%1:</b> %2<span style=\"background-color:%5;color:black\">%3</span>"
                       "%4")
            .arg(field, escaped(text.substr(0, at)), escaped(text.substr(at, length)),
                 escaped(text.substr(at + length)), kHitGround.name());
    m_text->setText(html);
    m_text->setToolTip(html);
}

void HitBar::showCount(const QString &text, bool isWorking) {
    m_count->setText(text);
    m_stop->setVisible(isWorking);
}

void HitBar::showNote(const QString &text) {
    m_text->setText(text.toHtmlEscaped());
    m_text->setToolTip({});
}

} // namespace nv
