#include "ui/window/ViewerTabs.h"

namespace nv {

namespace {
constexpr int kAgain = 50; ///< milliseconds after which a locked window is asked again
}

ViewerTabs::ViewerTabs(RunCommand run, std::function<bool()> isBusy, QWidget *parent)
    : QTabWidget(parent), m_run(std::move(run)), m_isBusy(std::move(isBusy)) {
    setObjectName(QStringLiteral("viewerTabs"));
    setDocumentMode(true);
    m_soon.setSingleShot(true);
    connect(&m_soon, &QTimer::timeout, this, &ViewerTabs::showFront);
    connect(this, &QTabWidget::currentChanged, this, &ViewerTabs::refresh);
}

void ViewerTabs::addPane(QWidget &widget, RecordPane &pane, const QString &title,
                         const char *procedure) {
    m_panes.push_back({&widget, &pane, procedure});
    addTab(&widget, title);
}

void ViewerTabs::setRecord(std::optional<UrlId> id) {
    m_id = id;
    if (!m_id)
        m_soon.stop();
    for (const Entry &entry : m_panes)
        if (!m_id || entry.widget != currentWidget())
            entry.pane->clear();
    refresh();
}

void ViewerTabs::refresh() {
    if (m_id)
        m_soon.start(0);
}

void ViewerTabs::showFront() {
    if (m_isBusy())
        return m_soon.start(kAgain);
    if (!m_id || !isVisibleTo(parentWidget()))
        return;
    for (const Entry &entry : m_panes)
        if (entry.widget == currentWidget())
            m_run(entry.procedure, [&] { entry.pane->showRecord(*m_id); });
}

} // namespace nv
