#include "ui/import/ImportLightBox.h"

#include "platform/qt/QtText.h"
#include "ui/import/LightPalette.h"
#include "ui/import/WizardParts.h"
#include "views/overview/ImportOverview.h"
#include "views/rows/CellText.h"

#include <QBoxLayout>
#include <QEvent>
#include <QLabel>

namespace nv {

namespace {

constexpr int kSignPixels = 40;

void enlarge(QLabel &label, double factor) {
    QFont large = label.font();
    large.setBold(true);
    large.setPointSizeF(large.pointSizeF() * factor);
    label.setFont(large);
}

void letCopyText(QLabel &label) {
    label.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
}

} // namespace

ImportLightBox::ImportLightBox(QWidget *parent)
    : QFrame(parent), m_sign(newWizardLabel("labLightSign")),
      m_headline(newWizardLabel("labHeadline")), m_meaning(newWizardLabel("labLightText")) {
    setObjectName(QStringLiteral("ImportLightBox"));
    setFrameShape(QFrame::Box);
    setLineWidth(2);
    setAutoFillBackground(true);
    enlarge(*m_sign, 2);
    m_sign->setAlignment(Qt::AlignCenter);
    m_sign->setFixedWidth(kSignPixels);
    enlarge(*m_headline, 1.25);
    letCopyText(*m_headline);
    letCopyText(*m_meaning);
    auto *texts = new QVBoxLayout;
    texts->addWidget(m_headline);
    texts->addWidget(m_meaning);
    auto *row = new QHBoxLayout(this);
    row->addWidget(m_sign);
    row->addLayout(texts, 1);
}

void ImportLightBox::take(const ImportOverview &overview) {
    m_light = lightOf(overview);
    const auto text = [](const std::string &value) { return toQt(displayText(value)); };
    m_sign->setText(toQt(std::string(lightSign(m_light))));
    m_headline->setText(text(headlineOf(overview)));
    m_meaning->setText(
        tr("%1. %2").arg(toQt(std::string(lightWord(m_light))), text(lightText(overview))));
    setAccessibleName(m_headline->text() + QStringLiteral(". ") + m_meaning->text());
    paintLight();
}

void ImportLightBox::paintLight() {
    if (m_isPainting)
        return;
    m_isPainting = true;
    const QPalette own = lightPalette(m_light);
    setPalette(own);
    // They would get the program's own when that changes.
    for (QLabel *label : {m_sign, m_headline, m_meaning})
        label->setPalette(own);
    m_isPainting = false;
}

void ImportLightBox::changeEvent(QEvent *event) {
    QFrame::changeEvent(event);
    // A theme comes as both: its palette alone leaves that of a widget with its own as it is.
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        paintLight();
}

} // namespace nv
