#include "ui/parts/GuidePart.h"

#include "ui/frame/GuideForm.h"

#include <QAction>
#include <QApplication>
#include <QTabWidget>

#include <utility>

namespace nv {

GuidePart::GuidePart(Workbench &bench) : m_bench(bench) {
    connect(bench.actions.guide, &QAction::triggered, this, &GuidePart::show);
}

/// Pages are named like the tabs and panes that they are about, but for those that stand aside.
QString GuidePart::pageOfFocus() const {
    if (!m_bench.isProjectOpen())
        return QStringLiteral("index");
    for (const QWidget *part = QApplication::focusWidget(); part != nullptr;
         part = part->parentWidget())
        for (const auto &[name, page] :
             {std::pair("CardPane", "properties"), std::pair("PlacesPane", "places"),
              std::pair("HostsPane", "hosts")})
            if (part->objectName() == QLatin1String(name))
                return QLatin1String(page);
    const QTabWidget *tabs = m_bench.dataTabs;
    if (m_bench.viewers->isAncestorOf(QApplication::focusWidget()))
        tabs = m_bench.viewers;
    return tabs->tabText(tabs->currentIndex()).toLower();
}

/// The window stays open beside the work; asked again it comes to the front.
void GuidePart::show() {
    const QString page = pageOfFocus();
    if (!m_form) {
        m_form = new GuideForm(m_bench.program.paths.guide(), &m_bench.window);
        m_form->setAttribute(Qt::WA_DeleteOnClose);
    }
    m_form->showPage(page);
    m_form->show();
    m_form->raise();
    m_form->activateWindow();
}

} // namespace nv
