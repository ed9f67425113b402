#include "ui/import/ImportNetwork.h"

#include "app/messages/NetworkMessages.h"
#include "app/program/NetworkSwitch.h"
#include "platform/qt/QtText.h"
#include "ui/import/LightPalette.h"
#include "ui/import/WizardParts.h"
#include "views/overview/ImportOverview.h"

#include <QAccessible>
#include <QBoxLayout>
#include <QEvent>

#include <utility>

namespace nv {

ImportNetwork::ImportNetwork(Program &program, QWidget *parent)
    : QFrame(parent), m_program(program), m_sign(newWizardLabel("labNetworkSign")),
      m_title(newWizardLabel("labNetworkTitle")), m_text(newWizardLabel("labNetworkText")),
      m_disable(newWizardButton("btnDisableNetwork", tr("&Disable the Connection"))) {
    setObjectName(QStringLiteral("ImportNetwork"));
    setFrameShape(QFrame::Box);
    setAutoFillBackground(true);
    QFont bold = m_title->font();
    bold.setBold(true);
    m_title->setFont(bold);
    m_sign->setFont(bold);
    m_sign->setWordWrap(false);
    m_disable->setToolTip(tr("Other programs on this computer lose it too"));
    m_disable->setAutoDefault(false);
    connect(m_disable, &QPushButton::clicked, this, &ImportNetwork::disable);
    auto *texts = new QVBoxLayout;
    texts->setSpacing(0);
    texts->addWidget(m_title);
    texts->addWidget(m_text);
    auto *row = new QHBoxLayout(this);
    constexpr int kMargin = 6; // pixels
    row->setContentsMargins(kMargin, kMargin, kMargin, kMargin);
    row->addWidget(m_sign, 0, Qt::AlignTop);
    row->addLayout(texts, 1);
    row->addWidget(m_disable, 0, Qt::AlignVCenter);
    hide();
}

void ImportNetwork::look() {
    const bool warned = std::exchange(m_warns, networkConnectionStatus(m_program) == "ENABLED");
    const Message warning = messages::networkDetected();
    m_title->setText(toQt(warning.title));
    m_text->setText(toQt(messages::networkWarning()));
    setAccessibleName(m_title->text() + QStringLiteral(". ") + m_text->text());
    m_sign->setText(toQt(lightSign(ImportLight::amber)));
    m_disable->setAccessibleDescription(m_text->text());
    m_disable->show();
    paintLight();
    setVisible(m_warns);
    if (m_warns && !warned) { // a reader of the screen says it, as it would a message
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void ImportNetwork::disable() {
    if (!toggleNetworkConnection(m_program, ConnectionState::disabled, Quiet::no))
        return look();
    m_warns = false;
    const Message done = messages::networkDisabled();
    m_title->setText(toQt(done.title));
    m_text->setText(toQt(done.text));
    setAccessibleName(m_title->text() + QStringLiteral(". ") + m_text->text());
    m_sign->setText(toQt(lightSign(ImportLight::green)));
    m_disable->hide();
    paintLight();
}

/// Labels would get the program's own palette when that changes.
void ImportNetwork::paintLight() {
    if (m_isPainting)
        return;
    m_isPainting = true;
    const QPalette own = lightPalette(m_warns ? ImportLight::amber : ImportLight::green);
    setPalette(own);
    for (QLabel *label : {m_sign, m_title, m_text})
        label->setPalette(own);
    m_isPainting = false;
}

void ImportNetwork::changeEvent(QEvent *event) {
    QFrame::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        paintLight();
}

} // namespace nv
