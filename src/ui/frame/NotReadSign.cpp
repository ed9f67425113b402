#include "ui/frame/NotReadSign.h"

#include "ui/import/LightPalette.h"
#include "views/overview/ImportOverview.h"

#include <QEvent>
#include <QScopedValueRollback>

namespace nv {

NotReadSign::NotReadSign(QWidget *parent) : QToolButton(parent) {
    setObjectName(QStringLiteral("btnNotReadSign"));
    setFocusPolicy(Qt::TabFocus);
    setToolTip(tr("Files and folders of the evidence that are not in the project, or only in "
                  "part: opens the list of them"));
    paintLight();
    hide();
}

void NotReadSign::setCount(std::uint64_t things) {
    setText(things == 1 ? tr("1 thing not read: what?")
                        : tr("%L1 things not read: what?").arg(things));
    setVisible(things > 0);
}

void NotReadSign::paintLight() {
    if (m_isPainting)
        return;
    const QScopedValueRollback painting(m_isPainting, true);
    QPalette own = lightPalette(ImportLight::amber);
    own.setColor(QPalette::Button, own.color(QPalette::Window));
    own.setColor(QPalette::ButtonText, own.color(QPalette::WindowText));
    setPalette(own);
}

void NotReadSign::changeEvent(QEvent *event) {
    QToolButton::changeEvent(event);
    // A theme comes as both, and leaves the colours of a button that has its own.
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::StyleChange)
        paintLight();
}

} // namespace nv
